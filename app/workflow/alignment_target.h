// A place beside an alignment to be set out, by station and offset: a road, or a line or an arc
// between points of the job. Forward is the direction of rising stations.
#pragma once

#include <functional>

#include "app/workflow/stake_target.h"
#include "roads/alignment.h"
#include "roads/section.h"

namespace tarvex {

/// The search for the catch point of cut or fill on one side, at whatever station the rover is.
struct SlopeSearch {
  RoadTemplate section;
  DesignSection design;
  Side side = Side::Right;
};

struct AlignmentPlace {
  std::string name;               ///< of a line, in front of its stations; a road has none
  std::optional<double> station;  ///< internal; nothing: wherever the rover is beside it
  double offset = 0.0;            ///< right positive
  /// The design elevation at a station; a place without one has none.
  std::function<std::optional<double>(double station)> elevation;
  /// How a station is shown.
  std::function<std::string(double station)> stationText;
  /// True beyond the limits of a road that uses them.
  std::function<bool(double station)> outsideLimits;
  std::optional<SlopeSearch> slope;
};

class AlignmentTarget final : public StakeTarget {
 public:
  /// `alignment` has to live as long.
  AlignmentTarget(const Alignment& alignment, AlignmentPlace place);

  const std::string& name() const override { return name_; }
  std::optional<StakeRelation> Relate(const StakePosition& at,
                                      const StakeHeading& heading) override;
  std::optional<StakeDesign> place() const override;

 private:
  std::string PlaceName(double station, double offset) const;
  std::optional<double> ElevationAt(double station) const;
  std::optional<SlopeStep> NextSlope(double offset, const StakePosition& at);

  const Alignment& alignment_;
  AlignmentPlace place_;
  std::string name_;
  std::optional<double> stationBefore_;
  std::optional<SlopeShot> shotBefore_;
};

/// A line or an arc between points, as an alignment whose stations count from 0 in the unit.
struct PlainAlignment {
  Alignment alignment;
  double length = 0.0;
  std::optional<double> startElevation;
  std::optional<double> endElevation;

  /// Straight between the elevations of the two ends, where both are known; none beyond them.
  std::optional<double> ElevationAt(double station) const;
};

/// The ends and the centre of an arc, and which way round it goes.
struct ArcPoints {
  StakeDesign start;
  StakeDesign end;
  PlanPoint center;
  bool longWay = false;  ///< the one above half a circle
  /// Positive curves right, negative left: needed for half a circle alone, where the centre does
  /// not tell.
  std::optional<double> turn = {};
};

/// Nothing, with a sentence in `problem`, for points that are no line or no arc: coincident ones, a
/// centre whose distances to the two ends differ by more than `limits` allow.
std::optional<PlainAlignment> LineBetween(const StakeDesign& start, const StakeDesign& end,
                                          const CheckLimits& limits, std::string& problem);
std::optional<PlainAlignment> ArcBetween(const ArcPoints& points, const CheckLimits& limits,
                                         std::string& problem);
/// The centre of the arc of at most half a circle between two points; a positive radius curves
/// right, a negative one left. With `longWay` that of the arc above half a circle. Nothing for a
/// radius below half the distance.
std::optional<PlanPoint> CenterOfArc(const StakeDesign& start, const StakeDesign& end,
                                     double radius, bool longWay);

}  // namespace tarvex
