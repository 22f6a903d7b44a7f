#include "coordsys/grids/plane_corrections.h"

#include <cmath>

namespace tarvex {
namespace {

constexpr int kOutside = 4151;
constexpr int kNoCorrection = 4152;
constexpr int kInPart = 4170;  // and 1 for east, 2 for north, 4 for height: what has no value
constexpr int kNotClosing = 4177;
constexpr int kMostPasses = 20;
constexpr double kClosed_m = 1e-7;

bool HasNone(const SurfaceValue& value) {
  return value.answer == SurfaceAnswer::Outside || value.answer == SurfaceAnswer::NoValue;
}

// One correction out of the values of its grids, `up` where there is a third. A grid without a
// value at the place gives 0 by itself; a node marked as one without a correction ends them all.
PlaneShift Together(const SurfaceValue& east, const SurfaceValue& north, const SurfaceValue* up,
                    double sign) {
  for (const SurfaceValue* value : {&east, &north, up}) {
    if (value != nullptr && value->answer == SurfaceAnswer::NoCorrection) {
      return {.reason = kNoCorrection};
    }
  }
  const bool up_lacks = up != nullptr && HasNone(*up);
  const int lacking = (HasNone(east) ? 1 : 0) + (HasNone(north) ? 2 : 0) + (up_lacks ? 4 : 0);
  const bool all = lacking == (up != nullptr ? 7 : 3);
  const bool outside = east.answer == SurfaceAnswer::Outside;
  return {.north_m = sign * north.value,
          .east_m = sign * east.value,
          .up_m = up != nullptr ? sign * up->value : 0.0,
          .reason = lacking == 0 ? 0
                    : !all       ? kInPart + lacking
                                 : (outside ? kOutside : kNoCorrection)};
}

StepOutcome OutcomeOf(const PlaneShift& shift) {
  if (shift.reason == 0) return {};
  return {StepStatus::LeftUndone, shift.reason};
}

}  // namespace

StepOutcome PlaneCorrection::ToGrid(GridMetres& point) const {
  const PlaneShift shift = ShiftAt(point.easting_m, point.northing_m);
  point.northing_m += shift.north_m;
  point.easting_m += shift.east_m;
  point.elevation_m += shift.up_m;
  return OutcomeOf(shift);
}

StepOutcome PlaneCorrection::ToPlane(GridMetres& point) const {
  GridMetres at = point;
  int lacking = 0;
  for (int pass = 0; pass < kMostPasses; ++pass) {
    const PlaneShift shift = ShiftAt(at.easting_m, at.northing_m);
    const double off_north = point.northing_m - shift.north_m - at.northing_m;
    const double off_east = point.easting_m - shift.east_m - at.easting_m;
    at.northing_m += off_north;
    at.easting_m += off_east;
    at.elevation_m = point.elevation_m - shift.up_m;
    if (std::abs(off_north) + std::abs(off_east) < kClosed_m) {
      point = at;
      return OutcomeOf(shift);
    }
    if (shift.reason != 0) lacking = shift.reason;
  }
  // On the edge of a grid the passes may step in and out: the point stays as it is.
  if (lacking != 0) return {StepStatus::LeftUndone, lacking};
  return {StepStatus::Refused, kNotClosing};
}

SurfaceValue SurfaceCorrection::Value(const GridSurface& surface, double easting_m,
                                      double northing_m) const {
  return curve_ == SurfaceCurve::Cubic ? surface.CubicAt(easting_m, northing_m)
                                       : surface.At(easting_m, northing_m);
}

PlaneShift SurfaceCorrection::ShiftAt(double easting_m, double northing_m) const {
  const SurfaceValue east = Value(east_, easting_m, northing_m);
  const SurfaceValue north = Value(north_, easting_m, northing_m);
  const SurfaceValue up = height_ ? Value(*height_, easting_m, northing_m) : SurfaceValue{};
  const double sign = sign_ == SurfaceSign::Added ? 1.0 : -1.0;
  return Together(east, north, height_ ? &up : nullptr, sign);
}

PlaneShift Ostn02Correction::ShiftAt(double easting_m, double northing_m) const {
  const SurfaceValue east = east_.At(easting_m, northing_m);
  const SurfaceValue north = north_.At(easting_m, northing_m);
  return Together(east, north, nullptr, 1.0);
}

}  // namespace tarvex
