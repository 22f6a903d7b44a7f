#include "app/workflow/collected_point.h"

#include <cmath>

#include "app/workflow/correction_base.h"
#include "core/raw_data/raw_records.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr int kDecimals = 4;

std::string Metres(double valueM, DistanceUnit unit) {
  return FixedNumber(FromMetres(valueM, unit), kDecimals);
}

// What each step of the calculator did to the height, metres. With a geoid the elevation is that of
// the WGS84 height above it, and the datum shift's height is not used.
struct HeightParts {
  double datumShift = 0.0;
  double geoid = 0.0;
  double gridCorrection = 0.0;
  double localization = 0.0;
};

// The height or elevation after a step, metres; of the geoid its undulation.
double HeightAfter(const StepValue& value) {
  if (const auto* position = std::get_if<Geodetic>(&value)) return position->heightM;
  if (const auto* grid = std::get_if<GridMetres>(&value)) return grid->elevationM;
  if (const auto* geoid = std::get_if<GeoidUndulation>(&value)) return geoid->undulationM;
  return std::get<GridPoint>(value).elevation;
}

HeightParts PartsOf(const CalculationReport& steps) {
  HeightParts parts;
  double height = 0.0;
  for (const ExplainedStep& step : steps.steps) {
    const double after = HeightAfter(step.value);
    switch (step.step) {
      case CalculationStep::Wgs84:
        height = after;
        break;
      case CalculationStep::DatumShift:
        parts.datumShift = after - height;
        height = after;
        break;
      case CalculationStep::Geoid:
        if (step.outcome.status != StepStatus::Done) break;
        height -= parts.datumShift + after;
        parts.datumShift = 0.0;
        parts.geoid = after;
        break;
      case CalculationStep::GridCorrection:
        parts.gridCorrection = after - height;
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
                       double antennaHeight, double elevation, DistanceUnit unit) {
  constexpr double kShownM = 0.00005;
  const HeightParts parts = PartsOf(steps);
  const auto whenThere = [unit](const char* name, double valueM) {
    return std::abs(valueM) < kShownM ? "" : std::string(", ") + name + " " + Metres(valueM, unit);
  };
  return "Heights: ellipsoid " + Metres(point.state.height, unit) + ", antenna " +
         FixedNumber(antennaHeight, kDecimals) + whenThere("datum shift", parts.datumShift) +
         ", geoid " + Metres(parts.geoid, unit) +
         whenThere("grid correction", parts.gridCorrection) + ", localization " +
         Metres(parts.localization, unit) + ", elevation " + FixedNumber(elevation, kDecimals);
}

std::string MeanText(const AveragedPosition& mean, DistanceUnit unit) {
  return "Average: " + std::to_string(mean.epochs) + " epochs" +
         (mean.weighted ? ", weighted" : "") + ", scatter N " + Metres(mean.scatterNorth, unit) +
         ", E " + Metres(mean.scatterEast, unit) + ", EL " + Metres(mean.scatterUp, unit) +
         ", farthest " + Metres(mean.farthest, unit);
}

// Of an average its last epoch.
std::string EpochLine(const CollectedPoint& point) {
  constexpr int kAgeDecimals = 1;
  constexpr int kKilometreDecimals = 3;
  const GnssPositionState& state = point.state;
  std::string text = "Epoch: " + EpochText(state);
  if (state.ageOfCorrections >= 0.0) {
    text += ", corrections " + FixedNumber(state.ageOfCorrections, kAgeDecimals) + " s old";
  }
  if (point.base) {
    text += ", base " + std::to_string(point.base->id) + " at " +
            FixedNumber(DistanceToBaseM(*point.base, state) / 1000.0, kKilometreDecimals) + " km";
  }
  return text;
}

}  // namespace

std::vector<std::string> CollectionRecords(const CollectedPoint& point,
                                           const CalculationReport& steps, double antennaHeight,
                                           double elevation, DistanceUnit unit) {
  std::vector<std::string> records{CommentRecord(EpochLine(point))};
  if (point.state.heightKnown) {
    records.push_back(CommentRecord(HeightText(point, steps, antennaHeight, elevation, unit)));
  }
  if (point.mean) records.push_back(CommentRecord(MeanText(*point.mean, unit)));
  if (!point.overridden.empty()) {
    records.push_back(CommentRecord("Stored against the limits: " + point.overridden));
  }
  return records;
}

}  // namespace tarvex
