#include "app/cli/template_opening.h"

#include <utility>

#include "app/cli/number_entry.h"
#include "roads/template_file.h"

namespace tarvex {

std::optional<RoadTemplate> OpenTemplate(Program& program, const std::string& path) {
  Road road;
  switch (LoadTemplate(program.files, road, path)) {
    case LoadTemplateResult::Loaded:
      break;
    case LoadTemplateResult::TooLarge:
      (void)program.Fail(path + " is too large to be a template.");
      return std::nullopt;
    case LoadTemplateResult::NotOpened:
      (void)program.Fail("The template " + path + " cannot be opened.");
      return std::nullopt;
  }
  if (road.section->lineOutOfRange > 0) {
    (void)program.Fail(path + " line " + std::to_string(road.section->lineOutOfRange) +
                       ": a number is out of range.");
    return std::nullopt;
  }
  if (road.section->text.find("*SURFACE") != std::string::npos) return std::move(road.section);
  (void)program.Fail(path +
                     " is not a template: it has neither a *SURFACEL nor a *SURFACER section.");
  return std::nullopt;
}

std::optional<std::pair<double, double>> ParseNumberPair(std::string_view text) {
  const std::size_t comma = text.find(',');
  if (comma == std::string_view::npos) return std::nullopt;
  const NumberEntry first = ReadNumberEntry(text.substr(0, comma));
  const NumberEntry second = ReadNumberEntry(text.substr(comma + 1));
  if (!first.problem.empty() || !second.problem.empty()) return std::nullopt;
  return std::pair(first.value, second.value);
}

std::optional<Superelevation> EnteredSuperelevation(Program& program, std::string_view text) {
  const auto grades = ParseNumberPair(text);
  if (grades) return Superelevation{grades->first, grades->second};
  (void)program.Misuse("The superelevation is LEFT,RIGHT in percent, positive rising outward.");
  return std::nullopt;
}

}  // namespace tarvex
