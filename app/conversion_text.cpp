#include "app/conversion_text.h"

#include "core/number_text.h"
#include "core/string_table.h"
#include "core/units.h"

namespace tarvex {
namespace {

constexpr std::size_t kNameWidth = 19;
constexpr int kDegreeDecimals = 10;
constexpr int kMetreDecimals = 4;

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

}  // namespace

std::string ExplanationText(const CalculationReport& report) {
  if (report.steps.empty()) return {};
  const bool backwards = report.steps.front().step == CalculationStep::JobUnit;
  std::string text;
  for (const ExplainedStep& step : report.steps) {
    std::string line = "  " + std::string(StepName(step.step));
    line.resize(kNameWidth, ' ');
    const bool refused = step.outcome.status == StepStatus::Refused ||
                         step.outcome.status == StepStatus::LibraryMissing;
    line += refused ? std::string("-") : ValueText(step, backwards);
    if (!step.description.empty()) line += "  [" + step.description + "]";
    if (step.outcome.reason != 0) line += "  NOT MADE: " + Strings().Text(step.outcome.reason);
    text += line + "\n";
  }
  return text;
}

std::string UndoneText(const CalculationReport& report) {
  std::string text;
  for (const ExplainedStep& step : report.steps) {
    if (step.outcome.reason == 0) continue;
    if (!text.empty()) text += ' ';
    text += Strings().Text(step.outcome.reason);
    const std::string& what = step.description;
    if (!what.empty() && what != Strings().Text(step.outcome.reason)) text += " (" + what + ")";
  }
  return text;
}

}  // namespace tarvex
