#include "app/cli/template_opening.h"

#include <utility>

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
  if (road.section->line_out_of_range > 0) {
    (void)program.Fail(path + " line " + std::to_string(road.section->line_out_of_range) +
                       ": a number is out of range.");
    return std::nullopt;
  }
  if (road.section->text.find("*SURFACE") != std::string::npos) return std::move(road.section);
  (void)program.Fail(path + " is no template: it has neither a *SURFACEL nor a *SURFACER section.");
  return std::nullopt;
}

}  // namespace tarvex
