// Lines, curves and spirals as other programs describe them, and the key points of a centerline
// that say the same.
#pragma once

#include <vector>

#include "roads/centerline.h"
#include "roads/plan_point.h"

namespace tarvex {

enum class PlanShape { Line, Curve, Spiral };

/// One element of a document's geometry, as numbers.
struct PlanElement {
  PlanShape shape = PlanShape::Line;
  PlanPoint start;
  PlanPoint end;
  PlanPoint center;
  double turn = 1.0;         ///< +1 right, clockwise
  double radiusStart = 0.0;  ///< 0 for a straight end
  double radiusEnd = 0.0;
  double length = 0.0;
  double station = 0.0;

  bool IsEntry() const {
    return shape == PlanShape::Spiral && radiusStart == 0.0 && radiusEnd > 0.0;
  }
  bool IsExit() const {
    return shape == PlanShape::Spiral && radiusStart > 0.0 && radiusEnd == 0.0;
  }
};

/// Centre of the arc from start to end that turns less than half a circle.
PlanPoint CenterOfShortArc(const PlanPoint& start, const PlanPoint& end, double radius,
                           double turn);

/// How far an arc turns, 0 to 2 pi.
double SweepOf(const PlanElement& arc);

/// The records of a centerline file for elements that join: spiral - curve - spiral of one radius
/// becomes a group, any other spiral an "SP". There is at least one element.
std::vector<CenterlineElement> KeyPointsOf(const std::vector<PlanElement>& elements);

}  // namespace tarvex
