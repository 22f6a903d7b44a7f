#include "app/workflow/alignment_target.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr int kShownDecimals = 3;
constexpr double kHalfCircle = 1e-6;  // radians about a half circle, where the centre has no side
constexpr double kAtAnEnd = 1e-4;     // a station this far beyond an end is still on it

double Cross(const PlanPoint& a, const PlanPoint& b) {
  return a.northing * b.easting - a.easting * b.northing;
}

PlanPoint From(const PlanPoint& center, const StakeDesign& point) {
  return {point.northing - center.northing, point.easting - center.easting};
}

CenterlineElement Node(const StakeDesign& point, double station) {
  CenterlineElement node;
  node.northing = point.northing;
  node.easting = point.easting;
  node.station = station;
  return node;
}

std::optional<PlainAlignment> Build(const std::array<CenterlineElement, 2>& chain,
                                    const StakeDesign& start, const StakeDesign& end,
                                    const CheckLimits& limits, std::string& problem) {
  auto made = Alignment::FromChain(chain, limits);
  if (!made) {
    problem = "The points " + start.name + " and " + end.name + " are one place.";
    return std::nullopt;
  }
  PlainAlignment plain{.alignment = std::move(*made),
                       .startElevation = start.elevation,
                       .endElevation = end.elevation};
  plain.length = plain.alignment.endStation();
  return plain;
}

}  // namespace

AlignmentTarget::AlignmentTarget(const Alignment& alignment, AlignmentPlace place)
    : alignment_(alignment), place_(std::move(place)) {
  name_ = place_.station ? PlaceName(*place_.station, place_.offset) : place_.name;
}

std::string AlignmentTarget::PlaceName(double station, double offset) const {
  return (place_.name.empty() ? "" : place_.name + " ") + place_.stationText(station) + " " +
         OffsetText(offset, kShownDecimals);
}

std::optional<double> AlignmentTarget::ElevationAt(double station) const {
  return place_.elevation ? place_.elevation(station) : std::nullopt;
}

std::optional<StakeDesign> AlignmentTarget::place() const {
  if (!place_.station) return std::nullopt;
  const auto at = alignment_.PointAt(*place_.station, place_.offset);
  if (!at) return std::nullopt;
  return StakeDesign{.name = name_,
                     .northing = at->at.northing,
                     .easting = at->at.easting,
                     .elevation = ElevationAt(*place_.station)};
}

std::optional<StakeRelation> AlignmentTarget::Relate(const StakePosition& at,
                                                     const StakeHeading& heading) {
  const PlanPoint here{at.northing, at.easting};
  const auto beside =
      stationBefore_ ? alignment_.Follow(here, *stationBefore_) : alignment_.Closest(here);
  if (!beside) return std::nullopt;
  // Beyond an end of a line one goes back to the end.
  const double station = place_.station.value_or(
      std::clamp(beside->station, alignment_.startStation(), alignment_.endStation()));
  const std::optional<double> design = ElevationAt(station);
  const RoadTarget target{station, place_.offset, at.elevation ? design : std::nullopt};
  const GridPoint current{at.northing, at.easting, at.elevation.value_or(0.0)};
  const auto stake = StakeRoadPoint(alignment_, target, current, stationBefore_);
  if (!stake) return std::nullopt;
  stationBefore_ = stake->current.station;
  StakeRelation relation;
  relation.design = {.name = PlaceName(station, place_.offset),
                     .northing = stake->target.northing,
                     .easting = stake->target.easting,
                     .elevation = design};
  relation.deltas =
      heading.chosen ? DeltasTo(current, stake->target, heading.azimuth) : stake->deltas;
  relation.reference = heading.chosen ? heading.reference : StakeReference::Alignment;
  relation.cut = stake->cut;
  relation.current = stake->current;
  relation.currentText = place_.stationText(stake->current.station) + " " +
                         OffsetText(stake->current.offset, kShownDecimals);
  relation.stationToGo = stake->stationToGo;
  relation.offsetToGo = stake->offsetToGo;
  relation.outsideLimits = place_.outsideLimits && place_.outsideLimits(stake->current.station);
  relation.sound = stake->sound;
  relation.slope = NextSlope(stake->current.offset, at);
  return relation;
}

// The catch point is looked for at the position, whatever its station.
std::optional<SlopeStep> AlignmentTarget::NextSlope(double offset, const StakePosition& at) {
  if (!place_.slope || !at.elevation) return std::nullopt;
  const SlopeSearch& search = *place_.slope;
  const SlopeShot shot{search.side == Side::Right ? offset : -offset, *at.elevation};
  const auto step = NextSlopeStep(search.section, search.design, search.side, shot, shotBefore_);
  shotBefore_ = shot;
  return step;
}

std::optional<double> PlainAlignment::ElevationAt(double station) const {
  if (!startElevation || !endElevation || !(length > 0.0)) return std::nullopt;
  if (station < -kAtAnEnd || station > length + kAtAnEnd) return std::nullopt;
  return *startElevation + (*endElevation - *startElevation) * (station / length);
}

std::optional<PlainAlignment> LineBetween(const StakeDesign& start, const StakeDesign& end,
                                          const CheckLimits& limits, std::string& problem) {
  const double length = std::hypot(end.northing - start.northing, end.easting - start.easting);
  return Build({Node(start, 0.0), Node(end, length)}, start, end, limits, problem);
}

std::optional<PlainAlignment> ArcBetween(const ArcPoints& points, const CheckLimits& limits,
                                         std::string& problem) {
  const PlanPoint a = From(points.center, points.start);
  const PlanPoint b = From(points.center, points.end);
  const double radius = std::hypot(a.northing, a.easting);
  const double difference = std::hypot(b.northing, b.easting) - radius;
  if (std::fabs(difference) > limits.refuse) {
    problem = "The centre is not equally far from " + points.start.name + " and " +
              points.end.name + ": the two radii differ by " +
              FixedNumber(std::fabs(difference), kShownDecimals) + ".";
    return std::nullopt;
  }
  double turned = std::atan2(Cross(a, b), a.northing * b.northing + a.easting * b.easting);
  if (std::numbers::pi - std::fabs(turned) < kHalfCircle) {
    if (!points.turn) {
      problem = "The arc is half a circle, and its centre does not tell on which side it lies.";
      return std::nullopt;
    }
    turned = std::copysign(std::numbers::pi, *points.turn * (points.longWay ? -1.0 : 1.0));
  }
  // The short way turns as the centre's angle does; the long one against it.
  const double angle =
      points.longWay ? turned - std::copysign(2.0 * std::numbers::pi, turned) : turned;
  CenterlineElement start = Node(points.start, 0.0);
  start.radius = radius;
  start.angle = angle;
  start.centerNorthing = points.center.northing;
  start.centerEasting = points.center.easting;
  auto plain = Build({start, Node(points.end, radius * std::fabs(angle))}, points.start, points.end,
                     limits, problem);
  if (plain && plain->alignment.elements().front().shape != ElementShape::Arc) {
    problem = "The points " + points.start.name + " and " + points.end.name + " are no arc.";
    return std::nullopt;
  }
  return plain;
}

std::optional<PlanPoint> CenterOfArc(const StakeDesign& start, const StakeDesign& end,
                                     double radius, bool longWay) {
  const double north = end.northing - start.northing;
  const double east = end.easting - start.easting;
  const double chord = std::hypot(north, east);
  const double rise = radius * radius - 0.25 * chord * chord;
  if (!(chord > 0.0) || !(rise >= 0.0)) return std::nullopt;
  // The centre of a short arc that curves right lies right of the chord.
  const double toRight = std::copysign(std::sqrt(rise), radius) * (longWay ? -1.0 : 1.0) / chord;
  return PlanPoint{start.northing + 0.5 * north - east * toRight,
                   start.easting + 0.5 * east + north * toRight};
}

}  // namespace tarvex
