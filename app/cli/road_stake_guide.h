// A place of a road that is set out: each position becomes one line that says where to go.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/cli/road_file.h"
#include "app/workflow/stake_session.h"
#include "roads/section.h"
#include "roads/stakeout.h"

namespace tarvex {

struct RoadStakePlan {
  RoadTarget target;
  std::string elevationFrom;  ///< where the target's elevation comes from, or why it has none
  StakeTolerance tolerance;
  bool json = false;
  /// Slope staking: the section whose catch point is looked for, and the side of it.
  std::optional<RoadTemplate> section;
  std::optional<DesignSection> design;
  std::optional<Side> slopeSide;
};

class RoadStakeGuide final : public StakeGuide {
 public:
  RoadStakeGuide(Program& program, const OpenedRoad& road, RoadStakePlan plan);

  StakeView Show(const StakePosition& at, bool good, const std::string& name) override;
  double PreciseHrms() const override { return 0.5 * plan_.tolerance.horizontal; }
  void TakeStored(const StakePosition& at) override;
  /// "21+50.000 3.0000 L C 0.02".
  std::string Description() const override;
  std::vector<std::string> Records() const override;

  /// The last position shown.
  const std::optional<StakePosition>& last() const { return last_; }

 private:
  /// Remembers where `at` is against the target; false when it is nowhere near the road.
  bool Relate(const StakePosition& at);
  std::string StakeLine(const RoadStake& stake, bool inside) const;
  Json StakeJson(const RoadStake& stake, bool inside) const;
  void PrintStake(const RoadStake& stake, bool inside, const std::optional<SlopeStep>& slope,
                  const std::string& name);
  std::optional<SlopeStep> NextSlope(const RoadStake& stake, const StakePosition& at);

  Program& program_;
  const OpenedRoad& road_;
  RoadStakePlan plan_;
  ToleranceGate gate_;
  std::optional<double> stationBefore_;
  std::optional<SlopeShot> shotBefore_;
  std::optional<StakePosition> last_;
  std::optional<RoadStake> lastStake_;
};

}  // namespace tarvex
