#include "coordsys/localization/localization.h"

#include <cmath>

#include "core/number_text.h"
#include "core/string_table.h"

namespace tarvex {
namespace {

bool Failed(FitResult result) {
  return result == FitResult::Coincide || result == FitResult::NotANumber;
}

}  // namespace

bool LocalizationFit::usable() const {
  if (Failed(horizontal.result) || Failed(vertical.result)) return false;
  return horizontal.result == FitResult::Fitted || vertical.result == FitResult::Fitted;
}

LocalizationFit FitLocalization(const ControlPoints& points, const LocalizationMethod& method) {
  return {.horizontal = FitHorizontal(points, method.horizontal, method.given_scale),
          .vertical = FitVertical(points, method.vertical)};
}

StepOutcome FittedLocalization::ToLocal(GridMetres& point) const {
  const PlanePoint grid = {point.northing_m, point.easting_m};
  if (fit_.vertical.result == FitResult::Fitted) point.elevation_m += fit_.vertical.plane.At(grid);
  if (fit_.horizontal.result == FitResult::Fitted) {
    const PlanePoint local = fit_.horizontal.similarity.ToLocal(grid);
    point.northing_m = local.northing_m;
    point.easting_m = local.easting_m;
  }
  return {};
}

StepOutcome FittedLocalization::ToGrid(GridMetres& point) const {
  PlanePoint grid = {point.northing_m, point.easting_m};
  if (fit_.horizontal.result == FitResult::Fitted) grid = fit_.horizontal.similarity.ToGrid(grid);
  if (fit_.vertical.result == FitResult::Fitted) point.elevation_m -= fit_.vertical.plane.At(grid);
  point.northing_m = grid.northing_m;
  point.easting_m = grid.easting_m;
  return {};
}

std::string FittedLocalization::Describe() const {
  const PlaneSimilarity& s = fit_.horizontal.similarity;
  const double clockwise_sec = -s.rotation_rad() * kDegreesPerRadian * 3600.0;
  std::string text;
  if (fit_.horizontal.result == FitResult::Fitted) {
    text = Strings().Text(
        4120, {std::to_string(fit_.horizontal.points), FixedNumber((s.scale() - 1.0) * 1e6, 3),
               FixedNumber(clockwise_sec, 3)});
  }
  if (fit_.vertical.result == FitResult::Fitted) {
    const VerticalPlane& plane = fit_.vertical.plane;
    if (!text.empty()) text += "; ";
    text += Strings().Text(
        4121, {std::to_string(fit_.vertical.points), FixedNumber(plane.shift_m, 4),
               FixedNumber(plane.slope_north * 1e6, 2), FixedNumber(plane.slope_east * 1e6, 2)});
  }
  return text;
}

ControlPoints ProjectControl(const CTrgCalculator& calculator, const LocalizationList& list,
                             std::vector<UnusableControl>& unusable) {
  CTrgCalculator to_grid = calculator;
  CalculationSteps steps = calculator.steps();
  steps.localization = nullptr;
  to_grid.SetSteps(std::move(steps));
  to_grid.SetDistanceUnit(DistanceUnit::Metres);
  const DistanceUnit unit = calculator.distance_unit();
  ControlPoints points;
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (!list[i]) continue;
    const LocalizationPoint& from = *list[i];
    GridPoint grid;
    const CalculationResult result = to_grid.ToGrid(from.gnss, grid);
    if (result != CalculationResult::Done) {
      unusable.push_back({i, result});
      continue;
    }
    points.push_back(
        {.name = from.description.empty() ? "Point " + std::to_string(i + 1) : from.description,
         .grid = {grid.northing, grid.easting, grid.elevation},
         .local = {ToMetres(from.local_y, unit), ToMetres(from.local_x, unit),
                   ToMetres(from.local_z, unit)},
         .use_horizontal = from.use_horizontal == 'Y',
         .use_vertical = from.use_vertical == 'Y'});
  }
  return points;
}

ControlHull HullOf(const ControlPoints& points) {
  std::vector<PlanePoint> used;
  for (const ControlPoint& point : points) {
    if (point.use_horizontal) used.push_back({point.grid.northing_m, point.grid.easting_m});
  }
  return ControlHull(std::move(used));
}

}  // namespace tarvex
