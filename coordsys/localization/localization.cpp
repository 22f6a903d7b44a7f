#include "coordsys/localization/localization.h"

#include <cmath>

#include "coordsys/coordsys_texts.h"
#include "core/text/number_text.h"
#include "core/text/string_table.h"

namespace tarvex {
namespace {

bool Failed(FitResult result) {
  return result != FitResult::Fitted && result != FitResult::NoPoints;
}

// "-0.000" reads like a small turn where there is none.
std::string Signed(double value, int decimals) {
  std::string text = FixedNumber(value, decimals);
  if (text.find_first_not_of("-0.") == std::string::npos && text.front() == '-') text.erase(0, 1);
  return text;
}

// Seconds of arc below a minute, else degrees, minutes and seconds; ASCII, for the raw file.
std::string TurnText(double turnRad) {
  constexpr long long kThousandths = 1000;
  const double turnSec = turnRad * kDegreesPerRadian * 3600.0;
  if (std::abs(turnSec) < 60.0) return Signed(turnSec, 3) + '"';
  const long long whole = std::llround(std::abs(turnSec) * kThousandths);
  const long long minutes = whole / (60 * kThousandths);
  std::string text = turnSec < 0.0 ? "-" : "";
  AppendInteger(text, minutes / 60);
  text += " deg ";
  AppendInteger(text, minutes % 60, 2);
  text += "' ";
  AppendInteger(text, whole / kThousandths % 60, 2);
  text += '.';
  AppendInteger(text, whole % kThousandths, 3);
  return text + '"';
}

// Ground over grid: the distance on the grid is the ground's, taken down to the ellipsoid and drawn
// at the point scale. The radius is that of the mean curvature at the place.
double GroundScale(const Ellipsoid& ellipsoid, const Geodetic& at, double pointScale) {
  const double e2 = ellipsoid.flattening * (2.0 - ellipsoid.flattening);
  const double sine = std::sin(at.latitudeRad);
  const double radiusM = ellipsoid.semiMajorM * std::sqrt(1.0 - e2) / (1.0 - e2 * sine * sine);
  return (1.0 + at.heightM / radiusM) / pointScale;
}

// What kept a point from being converted whole.
std::string WhyNot(CalculationResult result, const CalculationReport& report) {
  for (const ExplainedStep& step : report.steps) {
    if (step.outcome.status != StepStatus::Done) return Strings().Text(step.outcome.reason);
  }
  return CalculationText(result);
}

std::optional<double> PointScaleOf(const CalculationReport& report) {
  for (const ExplainedStep& step : report.steps) {
    if (step.pointScale) return step.pointScale;
  }
  return std::nullopt;
}

}  // namespace

bool LocalizationFit::usable() const {
  if (Failed(horizontal.result) || Failed(vertical.result)) return false;
  return horizontal.result == FitResult::Fitted || vertical.result == FitResult::Fitted;
}

std::string PointCount(int points) {
  return std::to_string(points) + (points == 1 ? " point" : " points");
}

LocalizationFit FitLocalization(const ControlPoints& points, const LocalizationMethod& method) {
  return {.horizontal = FitHorizontal(points, method.horizontal, method.givenScale),
          .vertical = FitVertical(points, method.vertical)};
}

StepOutcome FittedLocalization::ToLocal(GridMetres& point) const {
  const PlanePoint grid = {point.northingM, point.eastingM};
  if (fit_.vertical.result == FitResult::Fitted) point.elevationM += fit_.vertical.plane.At(grid);
  if (fit_.horizontal.result == FitResult::Fitted) {
    const PlanePoint local = fit_.horizontal.similarity.ToLocal(grid);
    point.northingM = local.northingM;
    point.eastingM = local.eastingM;
  }
  return {};
}

StepOutcome FittedLocalization::ToGrid(GridMetres& point) const {
  PlanePoint grid = {point.northingM, point.eastingM};
  if (fit_.horizontal.result == FitResult::Fitted) grid = fit_.horizontal.similarity.ToGrid(grid);
  if (fit_.vertical.result == FitResult::Fitted) point.elevationM -= fit_.vertical.plane.At(grid);
  point.northingM = grid.northingM;
  point.eastingM = grid.eastingM;
  return {};
}

std::string FittedLocalization::Describe() const {
  const PlaneSimilarity& s = fit_.horizontal.similarity;
  std::string text;
  if (fit_.horizontal.result == FitResult::Fitted) {
    text = Strings().Text(kTextHorizontalFit,
                          {PointCount(fit_.horizontal.points), Signed((s.scale() - 1.0) * 1e6, 3),
                           TurnText(-s.rotationRad())});
  }
  if (fit_.vertical.result == FitResult::Fitted) {
    const VerticalPlane& plane = fit_.vertical.plane;
    if (!text.empty()) text += "; ";
    text += Strings().Text(kTextVerticalFit,
                           {PointCount(fit_.vertical.points), Signed(plane.shiftM, 4),
                            Signed(plane.slopeNorth * 1e6, 2), Signed(plane.slopeEast * 1e6, 2)});
  }
  return text;
}

ControlPoints ProjectControl(const CTrgCalculator& calculator, const LocalizationList& list,
                             std::vector<UnusableControl>& unusable) {
  CTrgCalculator toGrid = calculator;
  CalculationSteps steps = calculator.steps();
  steps.localization = nullptr;
  toGrid.SetSteps(std::move(steps));
  toGrid.SetDistanceUnit(DistanceUnit::Metres);
  const DistanceUnit unit = calculator.distanceUnit();
  const Ellipsoid ellipsoid = EllipsoidOf(calculator.record());
  ControlPoints points;
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (!list[i]) continue;
    const LocalizationPoint& from = *list[i];
    GridPoint grid;
    CalculationReport report;
    const CalculationResult result = toGrid.ToGrid(from.gnss, grid, &report);
    if (result != CalculationResult::Done) {
      unusable.push_back({i, result, WhyNot(result, report)});
      continue;
    }
    const auto pointScale = PointScaleOf(report);
    std::optional<double> groundScale;
    if (pointScale) groundScale = GroundScale(ellipsoid, from.gnss, *pointScale);
    points.push_back(
        {.name = from.description.empty() ? "Point " + std::to_string(i + 1) : from.description,
         .grid = {grid.northing, grid.easting, grid.elevation},
         .local = {ToMetres(from.localY, unit), ToMetres(from.localX, unit),
                   ToMetres(from.localZ, unit)},
         .groundScale = groundScale,
         .useHorizontal = from.useHorizontal == 'Y',
         .useVertical = from.useVertical == 'Y'});
  }
  return points;
}

ControlHull HullOf(const ControlPoints& points) {
  std::vector<PlanePoint> used;
  for (const ControlPoint& point : points) {
    if (point.useHorizontal) used.push_back({point.grid.northingM, point.grid.eastingM});
  }
  return ControlHull(std::move(used));
}

}  // namespace tarvex
