// Numbers for the person with the stake: how to go from the present position to where the stake
// belongs.
//
// Coordinates in the job's distance unit, azimuths in radians from north clockwise. Deltas say
// where to go: forward along the reference azimuth, right of it, north, east. Cut is positive where
// the ground lies above the design.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/points/point.h"
#include "roads/catch_point.h"
#include "roads/profile.h"
#include "roads/road_geometry.h"
#include "roads/section.h"

namespace tarvex {

struct StakeDeltas {
  double goNorth = 0.0;
  double goEast = 0.0;
  double forward = 0.0;
  double right = 0.0;
  double distance = 0.0;
  double azimuth = 0.0;  ///< to the target, 0 to 2 pi; 0 on the target
  double cut = 0.0;      ///< current minus target elevation
};

StakeDeltas DeltasTo(const GridPoint& current, const GridPoint& target, double referenceAzimuth);

/// "C 0.20", "F 0.15", "0.00".
std::string CutFillText(double cut, int decimals);
/// "12.34 R", "3.50 L", "0.00".
std::string OffsetText(double offset, int decimals);

struct StakeTolerance {
  double horizontal = 0.02;
  double vertical = 0.01;
};

/// Whether the stake may go in. Once inside, it takes 1.5 times the tolerance to leave again, so
/// that a position that trembles does not flicker.
class ToleranceGate {
 public:
  explicit ToleranceGate(const StakeTolerance& tolerance) : tolerance_(tolerance) {}

  /// `goodPosition` is false for a position that is not fixed or not precise enough: then the
  /// answer is never yes. Without `vertical` only the horizontal distance counts.
  bool Update(double distance, std::optional<double> vertical, bool goodPosition);
  bool inside() const { return inside_; }

 private:
  StakeTolerance tolerance_;
  bool inside_ = false;
};

/// A place of the road to stake.
struct RoadTarget {
  double station = 0.0;  ///< internal
  double offset = 0.0;
  std::optional<double> elevation;
};

struct RoadStake {
  GridPoint target;
  StakeDeltas deltas;  ///< the reference is the tangent at the target station
  StationOffset current;
  double stationToGo = 0.0;
  double offsetToGo = 0.0;
  std::optional<double> cut;
  bool sound = true;  ///< false on an element that should not be staked
};

/// `stationBefore` follows the rover through inside corners, see Alignment::Follow.
std::optional<RoadStake> StakeRoadPoint(const Alignment& alignment, const RoadTarget& target,
                                        const GridPoint& current,
                                        std::optional<double> stationBefore = {});

/// The stations to stake from `from` to `to` (internal): displayed stations that are whole
/// multiples of `interval` inside each region, key points of the alignment and the profile,
/// equations and the two ends; rising, each once. Empty for an interval that is not positive or
/// asks for more than kMostStakeStations.
inline constexpr std::size_t kMostStakeStations = 100000;
std::vector<double> StakeStations(const RoadGeometry& road, const Profile* profile, double interval,
                                  double from, double to);

/// Slope staking step by step: the rover is at outward offset `offset` on ground of elevation
/// `ground`.
struct SlopeShot {
  double offset = 0.0;
  double ground = 0.0;
};

struct SlopeStep {
  double design = 0.0;      ///< elevation of the design slope above or below the rover
  double difference = 0.0;  ///< ground minus design
  double goOut = 0.0;       ///< outward distance to where slope and ground should meet
  double ratio = 0.0;       ///< n of n:1 of the row in use
  int row = 0;
  bool caught = false;  ///< |difference| is within the tolerance
  EarthworkKind kind = EarthworkKind::None;
};

/// Where to go next for the catch point, from this shot and the one before it (which tells how the
/// ground falls). `start` holds the hinge and the start of the slope for the kind of earthwork at
/// hand. Nothing when the table has no slope.
std::optional<SlopeStep> NextSlopeStep(const RoadTemplate& section, const DesignSection& design,
                                       Side side, const SlopeShot& shot,
                                       const std::optional<SlopeShot>& before,
                                       double tolerance = 0.03);

}  // namespace tarvex
