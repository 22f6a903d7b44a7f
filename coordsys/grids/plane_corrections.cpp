#include "coordsys/grids/plane_corrections.h"

#include <cmath>

namespace tarvex {
namespace {

constexpr int kOutside = 4151;
constexpr int kNoCorrection = 4152;
constexpr int kMostPasses = 20;
constexpr double kClosed_m = 1e-7;

// The reason that any of several surfaces gives for having no value; 0 when all have one.
int ReasonOf(std::initializer_list<SurfaceValue> values) {
  for (const SurfaceValue& value : values) {
    if (value.answer == SurfaceAnswer::Outside) return kOutside;
    if (value.answer != SurfaceAnswer::Value) return kNoCorrection;
  }
  return 0;
}

}  // namespace

StepOutcome PlaneCorrection::ToGrid(GridMetres& point) const {
  const PlaneShift shift = ShiftAt(point.easting_m, point.northing_m);
  if (shift.reason != 0) return {StepStatus::LeftUndone, shift.reason};
  point.northing_m += shift.north_m;
  point.easting_m += shift.east_m;
  point.elevation_m += shift.up_m;
  return {};
}

StepOutcome PlaneCorrection::ToPlane(GridMetres& point) const {
  GridMetres at = point;
  for (int pass = 0; pass < kMostPasses; ++pass) {
    const PlaneShift shift = ShiftAt(at.easting_m, at.northing_m);
    if (shift.reason != 0) return {StepStatus::LeftUndone, shift.reason};
    const double off_north = point.northing_m - shift.north_m - at.northing_m;
    const double off_east = point.easting_m - shift.east_m - at.easting_m;
    at.northing_m += off_north;
    at.easting_m += off_east;
    at.elevation_m = point.elevation_m - shift.up_m;
    if (std::abs(off_north) + std::abs(off_east) < kClosed_m) break;
  }
  point = at;
  return {};
}

SurfaceValue SurfaceCorrection::Value(const GridSurface& surface, double easting_m,
                                      double northing_m) const {
  return curve_ == SurfaceCurve::Cubic ? surface.CubicAt(easting_m, northing_m)
                                       : surface.At(easting_m, northing_m);
}

PlaneShift SurfaceCorrection::ShiftAt(double easting_m, double northing_m) const {
  const SurfaceValue east = Value(east_, easting_m, northing_m);
  const SurfaceValue north = Value(north_, easting_m, northing_m);
  const SurfaceValue up =
      height_ ? Value(*height_, easting_m, northing_m) : SurfaceValue{SurfaceAnswer::Value, 0.0};
  const double sign = sign_ == SurfaceSign::Added ? 1.0 : -1.0;
  return {.north_m = sign * north.value,
          .east_m = sign * east.value,
          .up_m = sign * up.value,
          .reason = ReasonOf({east, north, up})};
}

PlaneShift Ostn02Correction::ShiftAt(double easting_m, double northing_m) const {
  const SurfaceValue east = east_.At(easting_m, northing_m);
  const SurfaceValue north = north_.At(easting_m, northing_m);
  return {
      .north_m = north.value, .east_m = east.value, .up_m = 0.0, .reason = ReasonOf({east, north})};
}

}  // namespace tarvex
