// What is to be set out, and where a position is against it. A point is here; a line, an arc and a
// road, which are staked by station and offset, are in alignment_target.h. Nothing here is words:
// each face says in its own way where to go.
//
// Coordinates, stations and offsets in the job's unit; azimuths in radians from north clockwise.
#pragma once

#include <optional>
#include <string>

#include "core/raw_data/stake_record.h"
#include "roads/stakeout.h"

namespace tarvex {

/// The present position of the mark; without an elevation there is no cut or fill.
struct StakePosition {
  double northing = 0.0;
  double easting = 0.0;
  std::optional<double> elevation;
};

/// The place where a stake belongs.
struct StakeDesign {
  std::string name;  ///< "12", "1+210.000 3.600 L"
  double northing = 0.0;
  double easting = 0.0;
  std::optional<double> elevation;
};

/// What "forward" means.
enum class StakeReference { North, Travel, TowardPoint, Alignment };

/// Which way is forward, and whether a person chose it: what has a direction of its own (a line)
/// takes no other unless it was chosen.
struct StakeHeading {
  StakeReference reference = StakeReference::North;
  double azimuth = 0.0;
  bool chosen = false;
};

/// A position against a target.
struct StakeRelation {
  StakeDesign design;
  StakeDeltas deltas;  ///< forward and right of `reference`
  StakeReference reference = StakeReference::North;
  std::optional<double> cut;             ///< where both elevations are known
  std::optional<StationOffset> current;  ///< along the alignment, where there is one
  std::string currentText;               ///< "1+209.996 3.606 L"; empty without an alignment
  double stationToGo = 0.0;
  double offsetToGo = 0.0;
  bool outsideLimits = false;      ///< the present station, of a road whose limits are used
  bool sound = true;               ///< false on an element that should not be staked
  std::optional<SlopeStep> slope;  ///< when a catch point is looked for
};

/// What the raw file says of a stake at `found` that was to be where `relation` says.
StakeRecord StakeRecordOf(const StakeRelation& relation, const GridPoint& found,
                          const StakeTolerance& tolerance, bool good);

/// "12 C 0.02": the description of a stake for which nobody gave another one.
std::string StakeDescription(const StakeRelation& relation);

class StakeTarget {
 public:
  virtual ~StakeTarget() = default;

  /// The name by which a person chooses it.
  virtual const std::string& name() const = 0;
  /// Where the position is against it; nothing for a position that is not finite. A target may
  /// follow the rover from one call to the next.
  virtual std::optional<StakeRelation> Relate(const StakePosition& at,
                                              const StakeHeading& heading) = 0;
  /// The one place that it has; nothing for a line that is staked wherever the rover is beside it.
  virtual std::optional<StakeDesign> place() const = 0;
};

class PointTarget final : public StakeTarget {
 public:
  explicit PointTarget(StakeDesign design) : design_(std::move(design)) {}

  const std::string& name() const override { return design_.name; }
  std::optional<StakeRelation> Relate(const StakePosition& at,
                                      const StakeHeading& heading) override;
  std::optional<StakeDesign> place() const override { return design_; }

 private:
  StakeDesign design_;
};

/// Which way a rover walks, told from its last movement of at least `least`: standing still turns
/// nothing. A jump between two kinds of solution is no movement.
class TravelDirection {
 public:
  explicit TravelDirection(double least) : least_(least) {}

  void Take(const StakePosition& at, int solution);
  /// Nothing before the first movement.
  const std::optional<double>& azimuth() const { return azimuth_; }

 private:
  double least_;
  std::optional<StakePosition> from_;
  int solution_ = 0;
  std::optional<double> azimuth_;
};

}  // namespace tarvex
