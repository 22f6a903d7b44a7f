// Staking a place of a road: each position becomes one line that says where to go.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/cli/receiver_choice.h"
#include "app/cli/road_file.h"
#include "app/workflow/job_session.h"
#include "coordsys/calculator.h"
#include "gnss/gnss_connection.h"
#include "gnss/position_reader.h"
#include "roads/section.h"
#include "roads/stakeout.h"

namespace tarvex {

struct StakePlan {
  RoadTarget target;
  std::string elevation_from;  ///< where the target's elevation comes from, or why it has none
  StakeTolerance tolerance;
  double antenna_height = 0.0;  ///< job's unit
  long long count = 0;          ///< positions to show; 0: until the receiver ends
  bool json = false;
  /// Slope staking: the section whose catch point is looked for, and the side of it.
  std::optional<RoadTemplate> section;
  std::optional<DesignSection> design;
  std::optional<Side> slope_side;
};

/// Where one stands; without an elevation there is no cut or fill.
struct StakePosition {
  double northing = 0.0;
  double easting = 0.0;
  std::optional<double> elevation;
};

class StakeSession final : private StopRequest {
 public:
  StakeSession(Program& program, const OpenedRoad& road, StakePlan plan);

  /// One position that is known: a point of a job or entered coordinates.
  void ShowPosition(const StakePosition& at, const std::string& name);

  /// Positions from a receiver until the plan's count, its end, or Ctrl-C.
  ExitCode Follow(const ChosenReceiver& receiver, const CTrgCalculator& calculator,
                  DistanceUnit unit);

  /// The last position shown.
  const std::optional<StakePosition>& last() const { return last_; }
  /// "STAKE 21+50.000 3.0000 L C 0.02", for the description of a stored stake.
  std::string StakeText() const;

 private:
  bool StopRequested() override { return InterruptRequested(); }
  bool TakePosition(const GnssPositionState& state, const CTrgCalculator& calculator,
                    DistanceUnit unit);
  void Show(const StakePosition& at, bool good_position, const std::string& name);
  std::string StakeLine(const RoadStake& stake, bool inside) const;
  Json StakeJson(const RoadStake& stake, bool inside) const;
  void PrintStake(const RoadStake& stake, bool inside, const std::optional<SlopeStep>& slope,
                  const std::string& name);
  std::optional<SlopeStep> NextSlope(const RoadStake& stake, const StakePosition& at);

  Program& program_;
  const OpenedRoad& road_;
  StakePlan plan_;
  ToleranceGate gate_;
  std::optional<double> station_before_;
  std::optional<SlopeShot> shot_before_;
  std::optional<StakePosition> last_;
  std::optional<RoadStake> last_stake_;
};

}  // namespace tarvex
