#include "app/workflow/position_checks.h"

#include <cmath>

#include "core/coordinate_file.h"
#include "core/number_text.h"

namespace tarvex {
namespace {

// Zones are made so that distances are true to a few parts in ten thousand.
constexpr double kOddStretch = 0.005;
constexpr double kOddDistanceM = 50000.0;

// How much longer a short line to the north is on the grid than on the ellipsoid, as a ratio.
double Stretch(const CTrgCalculator& calculator, const GnssPositionState& state,
               const GridPoint& at, DistanceUnit unit) {
  constexpr double kStepRad = 1e-5;  // 64 m
  constexpr double kMetresARadian = 6.371e6;
  GridPoint north;
  const CalculationResult result =
      calculator.ToGrid({.latitude_rad = state.latitude * kRadiansPerDegree + kStepRad,
                         .longitude_rad = state.longitude * kRadiansPerDegree,
                         .height_m = state.height},
                        north);
  if (result != CalculationResult::Done && result != CalculationResult::DoneInPart) return 1.0;
  const double grid = std::hypot(north.northing - at.northing, north.easting - at.easting);
  return ToMetres(grid, unit) / (kStepRad * kMetresARadian);
}

std::string Kilometres(double metres) {
  return FixedNumber(metres / 1000.0, 0) + " km";
}

}  // namespace

std::vector<std::string> SystemWarnings(const CTrgCalculator& calculator) {
  const CalculationSteps& steps = calculator.steps();
  if (steps.geoid || steps.localization) return {};
  return {"Elevations are heights above the ellipsoid: the job has no geoid and no localization."};
}

std::vector<std::string> PlaceWarnings(Job& job, const CTrgCalculator& calculator,
                                       const GnssPositionState& state, const GridPoint& at) {
  std::vector<std::string> warnings;
  // The figure of the earth alone makes 0.6 % between the equator and a pole.
  const double stretch = Stretch(calculator, state, at, job.unit);
  if (!calculator.steps().localization && std::fabs(stretch - 1.0) > 2.0 * kOddStretch) {
    warnings.push_back(
        "The grid makes distances here " + FixedNumber((stretch - 1.0) * 100.0, 1) +
        " % longer than they are: the position is far outside the zone of the job's coordinate "
        "system. Is it the right one?");
  }
  const auto stream = OpenForReading(job);
  Point last;
  if (!stream || stream->record_count() == 0 ||
      !stream->ReadRecord(stream->record_count() - 1, last).ok() || IsEmptySlot(last)) {
    return warnings;
  }
  const double away =
      ToMetres(std::hypot(at.northing - last.at.northing, at.easting - last.at.easting), job.unit);
  if (away > kOddDistanceM) {
    warnings.push_back("The position is " + Kilometres(away) + " from point " + last.id.str() +
                       " of the job. Are the job and its coordinate system the right ones?");
  }
  return warnings;
}

}  // namespace tarvex
