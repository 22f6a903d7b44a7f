#include "coordsys/grids/plane_corrections.h"

#include <cmath>

#include "coordsys/coordsys_texts.h"

namespace tarvex {
namespace {

constexpr int kMostPasses = 20;
constexpr double kClosedM = 1e-7;

bool HasNone(const SurfaceValue& value) {
  return value.answer == SurfaceAnswer::Outside || value.answer == SurfaceAnswer::NoValue;
}

// One correction out of the values of its grids, `up` where there is a third. A grid without a
// value at the place gives 0 by itself; a node marked as one without a correction ends them all.
PlaneShift Together(const SurfaceValue& east, const SurfaceValue& north, const SurfaceValue* up,
                    double sign) {
  for (const SurfaceValue* value : {&east, &north, up}) {
    if (value != nullptr && value->answer == SurfaceAnswer::NoCorrection) {
      return {.reason = kTextNoGridValue};
    }
  }
  const bool upLacks = up != nullptr && HasNone(*up);
  const int lacking = (HasNone(east) ? 1 : 0) + (HasNone(north) ? 2 : 0) + (upLacks ? 4 : 0);
  const bool all = lacking == (up != nullptr ? 7 : 3);
  const bool outside = east.answer == SurfaceAnswer::Outside;
  return {.northM = sign * north.value,
          .eastM = sign * east.value,
          .upM = up != nullptr ? sign * up->value : 0.0,
          .reason = lacking == 0 ? 0
                    : !all       ? kTextCorrectionInPart + lacking
                                 : (outside ? kTextOutsideGrid : kTextNoGridValue)};
}

StepOutcome OutcomeOf(const PlaneShift& shift) {
  if (shift.reason == 0) return {};
  return {StepStatus::LeftUndone, shift.reason};
}

}  // namespace

StepOutcome PlaneCorrection::ToGrid(GridMetres& point) const {
  const PlaneShift shift = ShiftAt(point.eastingM, point.northingM);
  point.northingM += shift.northM;
  point.eastingM += shift.eastM;
  point.elevationM += shift.upM;
  return OutcomeOf(shift);
}

StepOutcome PlaneCorrection::ToPlane(GridMetres& point) const {
  GridMetres at = point;
  int lacking = 0;
  for (int pass = 0; pass < kMostPasses; ++pass) {
    const PlaneShift shift = ShiftAt(at.eastingM, at.northingM);
    const double offNorth = point.northingM - shift.northM - at.northingM;
    const double offEast = point.eastingM - shift.eastM - at.eastingM;
    at.northingM += offNorth;
    at.eastingM += offEast;
    at.elevationM = point.elevationM - shift.upM;
    if (std::abs(offNorth) + std::abs(offEast) < kClosedM) {
      point = at;
      return OutcomeOf(shift);
    }
    if (shift.reason != 0) lacking = shift.reason;
  }
  // On the edge of a grid the passes may step in and out: the point stays as it is.
  if (lacking != 0) return {StepStatus::LeftUndone, lacking};
  return {StepStatus::Refused, kTextCorrectionNotClosing};
}

SurfaceValue SurfaceCorrection::Value(const GridSurface& surface, double eastingM,
                                      double northingM) const {
  return curve_ == SurfaceCurve::Cubic ? surface.CubicAt(eastingM, northingM)
                                       : surface.At(eastingM, northingM);
}

PlaneShift SurfaceCorrection::ShiftAt(double eastingM, double northingM) const {
  const SurfaceValue east = Value(east_, eastingM, northingM);
  const SurfaceValue north = Value(north_, eastingM, northingM);
  const SurfaceValue up = height_ ? Value(*height_, eastingM, northingM) : SurfaceValue{};
  const double sign = sign_ == SurfaceSign::Added ? 1.0 : -1.0;
  return Together(east, north, height_ ? &up : nullptr, sign);
}

PlaneShift Ostn02Correction::ShiftAt(double eastingM, double northingM) const {
  const SurfaceValue east = east_.At(eastingM, northingM);
  const SurfaceValue north = north_.At(eastingM, northingM);
  return Together(east, north, nullptr, 1.0);
}

}  // namespace tarvex
