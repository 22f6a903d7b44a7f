#include "app/workflow/collected_point.h"

#include "core/number_text.h"
#include "core/raw_records.h"

namespace tarvex {
namespace {

constexpr int kDecimals = 4;

std::string Metres(double value_m, DistanceUnit unit) {
  return FixedNumber(FromMetres(value_m, unit), kDecimals);
}

double GeoidUndulation(const CalculationReport& steps) {
  for (const ExplainedStep& step : steps.steps) {
    if (step.step == CalculationStep::Geoid) return step.values[0];
  }
  return 0.0;
}

// What is left between the height over the geoid and the elevation is the localization's.
std::string HeightText(const CollectedPoint& point, const CalculationReport& steps,
                       double antenna_height, double elevation, DistanceUnit unit) {
  const double ellipsoid = FromMetres(point.state.height, unit);
  const double geoid = FromMetres(GeoidUndulation(steps), unit);
  const double localization = elevation - (ellipsoid - antenna_height - geoid);
  return "Heights: ellipsoid " + FixedNumber(ellipsoid, kDecimals) + ", antenna " +
         FixedNumber(antenna_height, kDecimals) + ", geoid " + FixedNumber(geoid, kDecimals) +
         ", localization " + FixedNumber(localization, kDecimals) + ", elevation " +
         FixedNumber(elevation, kDecimals);
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
