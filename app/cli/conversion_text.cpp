#include "app/cli/conversion_text.h"

#include "core/number_text.h"
#include "core/string_table.h"
#include "core/units.h"

namespace tarvex {
namespace {

constexpr std::size_t kNameWidth = 19;
constexpr int kDegreeDecimals = 10;
constexpr int kMetreDecimals = 4;
constexpr int kScaleDecimals = 9;

std::string_view StepName(CalculationStep step) {
  switch (step) {
    case CalculationStep::Wgs84:
      return "WGS84";
    case CalculationStep::DatumShift:
      return "datum shift";
    case CalculationStep::Projection:
      return "projection";
    case CalculationStep::GridCorrection:
      return "grid correction";
    case CalculationStep::Localization:
      return "localization";
    case CalculationStep::JobUnit:
      return "job";
    case CalculationStep::Geoid:
      break;
  }
  return "geoid";
}

bool IsPosition(const ExplainedStep& step, bool backwards) {
  return step.step == CalculationStep::Wgs84 || step.step == CalculationStep::DatumShift ||
         (backwards && step.step == CalculationStep::Projection);
}

std::string ValueText(const ExplainedStep& step, bool backwards) {
  if (step.step == CalculationStep::Geoid) {
    return "undulation " + FixedNumber(step.values[0], kMetreDecimals);
  }
  const bool position = IsPosition(step, backwards);
  const double factor = position ? kDegreesPerRadian : 1.0;
  const int decimals = position ? kDegreeDecimals : kMetreDecimals;
  return FixedNumber(step.values[0] * factor, decimals) + ' ' +
         FixedNumber(step.values[1] * factor, decimals) + ' ' +
         FixedNumber(step.values[2], kMetreDecimals);
}

const char* StatusKey(StepStatus status) {
  switch (status) {
    case StepStatus::Done:
      return "done";
    case StepStatus::LeftUndone:
      return "left undone";
    case StepStatus::Refused:
      return "refused";
    case StepStatus::LibraryMissing:
      break;
  }
  return "library missing";
}

bool HasValue(const ExplainedStep& step) {
  return step.outcome.status == StepStatus::Done || step.outcome.status == StepStatus::LeftUndone;
}

void PutValue(const ExplainedStep& step, bool backwards, Json& json) {
  if (step.step == CalculationStep::Geoid) {
    json["undulation"] = step.values[0];
  } else if (IsPosition(step, backwards)) {
    json["latitude"] = step.values[0] * kDegreesPerRadian;
    json["longitude"] = step.values[1] * kDegreesPerRadian;
    json["height"] = step.values[2];
  } else {
    json["northing"] = step.values[0];
    json["easting"] = step.values[1];
    json["elevation"] = step.values[2];
  }
}

}  // namespace

std::string ExplanationText(const CalculationReport& report) {
  if (report.steps.empty()) return {};
  const bool backwards = report.steps.front().step == CalculationStep::JobUnit;
  std::string text;
  for (const ExplainedStep& step : report.steps) {
    std::string line = "  " + std::string(StepName(step.step));
    line.resize(kNameWidth, ' ');
    line += HasValue(step) ? ValueText(step, backwards) : std::string("-");
    if (step.pointScale) line += "  scale " + FixedNumber(*step.pointScale, kScaleDecimals);
    if (!step.description.empty()) line += "  [" + step.description + "]";
    if (step.outcome.reason != 0) line += "  NOT MADE: " + Strings().Text(step.outcome.reason);
    text += line + "\n";
  }
  return text;
}

Json ExplanationJson(const CalculationReport& report) {
  Json steps = Json::EmptyList();
  if (report.steps.empty()) return steps;
  const bool backwards = report.steps.front().step == CalculationStep::JobUnit;
  for (const ExplainedStep& step : report.steps) {
    Json json = {{"step", StepName(step.step)}, {"status", StatusKey(step.outcome.status)}};
    if (HasValue(step)) PutValue(step, backwards, json);
    if (step.pointScale) json["point_scale"] = *step.pointScale;
    if (!step.description.empty()) json["by"] = step.description;
    if (step.outcome.reason != 0) json["reason"] = Strings().Text(step.outcome.reason);
    steps.Add(std::move(json));
  }
  return steps;
}

}  // namespace tarvex
