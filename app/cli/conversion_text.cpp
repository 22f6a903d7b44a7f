#include "app/cli/conversion_text.h"

#include "core/text/number_text.h"
#include "core/text/string_table.h"
#include "core/units/units.h"

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

std::string Three(double a, double b, double c, int decimals) {
  return FixedNumber(a, decimals) + ' ' + FixedNumber(b, decimals) + ' ' +
         FixedNumber(c, kMetreDecimals);
}

struct InWords {
  std::string operator()(const Geodetic& at) const {
    return Three(at.latitudeRad * kDegreesPerRadian, at.longitudeRad * kDegreesPerRadian,
                 at.heightM, kDegreeDecimals);
  }
  std::string operator()(const GridMetres& at) const {
    return Three(at.northingM, at.eastingM, at.elevationM, kMetreDecimals);
  }
  std::string operator()(const GridPoint& at) const {
    return Three(at.northing, at.easting, at.elevation, kMetreDecimals);
  }
  std::string operator()(const GeoidUndulation& geoid) const {
    return "undulation " + FixedNumber(geoid.undulationM, kMetreDecimals);
  }
};

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

struct IntoJson {
  Json& json;

  void operator()(const Geodetic& at) const {
    json["latitude"] = at.latitudeRad * kDegreesPerRadian;
    json["longitude"] = at.longitudeRad * kDegreesPerRadian;
    json["height"] = at.heightM;
  }
  void operator()(const GridMetres& at) const { Put(at.northingM, at.eastingM, at.elevationM); }
  void operator()(const GridPoint& at) const { Put(at.northing, at.easting, at.elevation); }
  void operator()(const GeoidUndulation& geoid) const { json["undulation"] = geoid.undulationM; }

 private:
  void Put(double northing, double easting, double elevation) const {
    json["northing"] = northing;
    json["easting"] = easting;
    json["elevation"] = elevation;
  }
};

}  // namespace

std::string ExplanationText(const CalculationReport& report) {
  std::string text;
  for (const ExplainedStep& step : report.steps) {
    std::string line = "  " + std::string(StepName(step.step));
    line.resize(kNameWidth, ' ');
    line += HasValue(step) ? std::visit(InWords{}, step.value) : std::string("-");
    if (step.pointScale) line += "  scale " + FixedNumber(*step.pointScale, kScaleDecimals);
    if (!step.description.empty()) line += "  [" + step.description + "]";
    if (step.outcome.reason != 0) line += "  NOT MADE: " + Strings().Text(step.outcome.reason);
    text += line + "\n";
  }
  return text;
}

Json ExplanationJson(const CalculationReport& report) {
  Json steps = Json::EmptyList();
  for (const ExplainedStep& step : report.steps) {
    Json json = {{"step", StepName(step.step)}, {"status", StatusKey(step.outcome.status)}};
    if (HasValue(step)) std::visit(IntoJson{json}, step.value);
    if (step.pointScale) json["point_scale"] = *step.pointScale;
    if (!step.description.empty()) json["by"] = step.description;
    if (step.outcome.reason != 0) json["reason"] = Strings().Text(step.outcome.reason);
    steps.Add(std::move(json));
  }
  return steps;
}

}  // namespace tarvex
