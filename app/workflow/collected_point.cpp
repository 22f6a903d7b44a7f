#include "app/workflow/collected_point.h"

#include <cmath>

#include "core/number_text.h"
#include "core/raw_records.h"

namespace tarvex {
namespace {

constexpr int kDecimals = 4;

std::string Metres(double value_m, DistanceUnit unit) {
  return FixedNumber(FromMetres(value_m, unit), kDecimals);
}

// What each step of the calculator did to the height, metres. With a geoid the elevation is that of
// the WGS84 height above it, and the datum shift's height is not used.
struct HeightParts {
  double datum_shift = 0.0;
  double geoid = 0.0;
  double grid_correction = 0.0;
  double localization = 0.0;
};

HeightParts PartsOf(const CalculationReport& steps) {
  HeightParts parts;
  double height = 0.0;
  for (const ExplainedStep& step : steps.steps) {
    const double after = step.values[2];
    switch (step.step) {
      case CalculationStep::Wgs84:
        height = after;
        break;
      case CalculationStep::DatumShift:
        parts.datum_shift = after - height;
        height = after;
        break;
      case CalculationStep::Geoid:
        if (step.outcome.status != StepStatus::Done) break;
        height -= parts.datum_shift + step.values[0];
        parts.datum_shift = 0.0;
        parts.geoid = step.values[0];
        break;
      case CalculationStep::GridCorrection:
        parts.grid_correction = after - height;
        height = after;
        break;
      case CalculationStep::Localization:
        parts.localization = after - height;
        height = after;
        break;
      case CalculationStep::Projection:
      case CalculationStep::JobUnit:
        break;
    }
  }
  return parts;
}

std::string HeightText(const CollectedPoint& point, const CalculationReport& steps,
                       double antenna_height, double elevation, DistanceUnit unit) {
  constexpr double kShownM = 0.00005;
  const HeightParts parts = PartsOf(steps);
  const auto when_there = [unit](const char* name, double value_m) {
    return std::abs(value_m) < kShownM ? ""
                                       : std::string(", ") + name + " " + Metres(value_m, unit);
  };
  return "Heights: ellipsoid " + Metres(point.state.height, unit) + ", antenna " +
         FixedNumber(antenna_height, kDecimals) + when_there("datum shift", parts.datum_shift) +
         ", geoid " + Metres(parts.geoid, unit) +
         when_there("grid correction", parts.grid_correction) + ", localization " +
         Metres(parts.localization, unit) + ", elevation " + FixedNumber(elevation, kDecimals);
}

std::string MeanText(const AveragedPosition& mean, DistanceUnit unit) {
  return "Average: " + std::to_string(mean.epochs) + " epochs" +
         (mean.weighted ? ", weighted" : "") + ", scatter N " + Metres(mean.scatter_north, unit) +
         ", E " + Metres(mean.scatter_east, unit) + ", EL " + Metres(mean.scatter_up, unit) +
         ", farthest " + Metres(mean.farthest, unit);
}

}  // namespace

std::vector<std::string> CollectionRecords(const CollectedPoint& point,
                                           const CalculationReport& steps, double antenna_height,
                                           double elevation, DistanceUnit unit) {
  std::vector<std::string> records;
  if (point.state.height_known) {
    records.push_back(CommentRecord(HeightText(point, steps, antenna_height, elevation, unit)));
  }
  if (point.mean) records.push_back(CommentRecord(MeanText(*point.mean, unit)));
  if (!point.overridden.empty()) {
    records.push_back(CommentRecord("Stored against the limits: " + point.overridden));
  }
  return records;
}

}  // namespace tarvex
