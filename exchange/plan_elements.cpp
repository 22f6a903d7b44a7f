#include "exchange/plan_elements.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "roads/curve_piece.h"

namespace tarvex {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kSameRadius = 1e-6;  // relative

}  // namespace

PlanPoint CenterOfShortArc(const PlanPoint& start, const PlanPoint& end, double radius,
                           double turn) {
  const double half = 0.5 * Distance(start, end);
  const double height = std::sqrt(std::max(0.0, radius * radius - half * half));
  const double across = Azimuth(start, end) + turn * 0.5 * kPi;
  return {0.5 * (start.northing + end.northing) + height * std::cos(across),
          0.5 * (start.easting + end.easting) + height * std::sin(across)};
}

double SweepOf(const PlanElement& arc) {
  return FullAngle(arc.turn * (Azimuth(arc.center, arc.end) - Azimuth(arc.center, arc.start)));
}

namespace {

// From elements to key points.
class KeyPointList {
 public:
  explicit KeyPointList(const std::vector<PlanElement>& elements) : elements_(elements) {}

  std::vector<CenterlineElement> Make() {
    for (std::size_t i = 0; i < elements_.size();) i = Take(i);
    const PlanElement& last = elements_.back();
    Add(behind_, last.end, last.station + last.length);
    return std::move(list_);
  }

 private:
  CenterlineElement& Add(KeyPointKind kind, const PlanPoint& at, double station) {
    CenterlineElement element;
    element.record = kind;
    element.northing = at.northing;
    element.easting = at.easting;
    element.station = station;
    list_.push_back(element);
    return list_.back();
  }

  void AddCurve(KeyPointKind kind, const PlanElement& at, const PlanElement& arc) {
    CenterlineElement& element = Add(kind, at.start, at.station);
    element.angle = arc.turn * SweepOf(arc);
    element.centerNorthing = arc.center.northing;
    element.centerEasting = arc.center.easting;
  }

  // INF to R, the arc (or none), R to INF, all of one radius and turn.
  bool IsGroup(std::size_t i, std::size_t exit) const {
    if (exit >= elements_.size()) return false;
    const PlanElement& entry = elements_[i];
    const PlanElement& out = elements_[exit];
    const double radius = entry.radiusEnd;
    const auto same = [&](double other) {
      return std::fabs(other - radius) <= std::max(1e-3, kSameRadius * radius);
    };
    return entry.IsEntry() && out.IsExit() && entry.turn == out.turn && same(out.radiusStart) &&
           (exit == i + 1 ||
            (elements_[i + 1].shape == PlanShape::Curve && elements_[i + 1].turn == entry.turn &&
             same(elements_[i + 1].radiusStart)));
  }

  std::size_t Take(std::size_t i) {
    const PlanElement& element = elements_[i];
    if (element.shape == PlanShape::Line) {
      Add(behind_, element.start, element.station);
      behind_ = KeyPointKind::Line;
      return i + 1;
    }
    if (IsGroup(i, i + 2)) return TakeGroup(i, elements_[i + 1], i + 2);
    if (IsGroup(i, i + 1)) {
      PlanElement none = elements_[i + 1];  // an arc of no length at the top of the spirals
      none.end = none.start;
      none.center = CenterAtTop(elements_[i]);
      return TakeGroup(i, none, i + 1);
    }
    if (element.shape == PlanShape::Curve) {
      AddCurve(KeyPointKind::CurveStart, element, element);
      behind_ = KeyPointKind::CurveEnd;
      return i + 1;
    }
    AddSpiral(element);
    behind_ = KeyPointKind::Line;
    return i + 1;
  }

  std::size_t TakeGroup(std::size_t i, const PlanElement& arc, std::size_t exit) {
    AddCurve(KeyPointKind::TangentSpiral, elements_[i], arc);
    list_.back().tangentAzimuth.reset();
    AddCurve(KeyPointKind::SpiralCurve, arc, arc);
    Add(KeyPointKind::CurveSpiral, elements_[exit].start, elements_[exit].station);
    behind_ = KeyPointKind::SpiralTangent;
    return exit + 1;
  }

  // The centre at the end of an entry spiral, from its own shape between its end points.
  static PlanPoint CenterAtTop(const PlanElement& entry) {
    const double curvature = entry.turn / entry.radiusEnd;
    const LocalFrame end = SpiralEnd(0.0, curvature, entry.length);
    const double azimuth = Azimuth(entry.start, entry.end) - std::atan2(end.y, end.x) +
                           0.5 * curvature * entry.length + entry.turn * 0.5 * kPi;
    return {entry.end.northing + entry.radiusEnd * std::cos(azimuth),
            entry.end.easting + entry.radiusEnd * std::sin(azimuth)};
  }

  void AddSpiral(const PlanElement& spiral) {
    const auto curvature = [](double radius) { return radius > 0.0 ? 1.0 / radius : 0.0; };
    const double k0 = curvature(spiral.radiusStart);
    const double k1 = curvature(spiral.radiusEnd);
    CenterlineElement& element = Add(KeyPointKind::Spiral, spiral.start, spiral.station);
    element.radius = spiral.radiusStart;
    element.spiralParameter = std::sqrt(spiral.length / std::fabs(k1 - k0));
    element.angle = spiral.turn * (k1 > k0 ? 1.0 : 2.0);
  }

  const std::vector<PlanElement>& elements_;
  std::vector<CenterlineElement> list_;
  KeyPointKind behind_ = KeyPointKind::Line;  // what ends at the next key point
};

}  // namespace

std::vector<CenterlineElement> KeyPointsOf(const std::vector<PlanElement>& elements) {
  return KeyPointList(elements).Make();
}

}  // namespace tarvex
