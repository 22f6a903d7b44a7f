#include "app/cli/number_entry.h"

#include <CLI/CLI.hpp>

namespace tarvex {

std::optional<double> EnteredNumber(Program& program, std::string_view name,
                                    std::string_view text) {
  const NumberEntry entry = ReadNumberEntry(text);
  if (entry.problem.empty()) return entry.value;
  (void)program.Misuse(std::string(name) + " " + entry.problem + ".");
  return std::nullopt;
}

CLI::Option* AddNumber(CLI::App& sub, const std::string& name, double& value,
                       const std::string& description, NumberKind kind) {
  const auto take = [&value, name, kind](const std::string& text) {
    const NumberEntry entry = ReadNumberEntry(text);
    if (!entry.problem.empty()) throw CLI::ValidationError(name, entry.problem + ".");
    const bool inRange = kind == NumberKind::Any || entry.value > 0.0 ||
                         (kind == NumberKind::NotNegative && entry.value == 0.0);
    if (!inRange) {
      throw CLI::ValidationError(
          name,
          "\"" + text + "\" is " + (kind == NumberKind::Positive ? "not above" : "below") + " 0.");
    }
    value = entry.value;
  };
  return sub.add_option_function<std::string>(name, take, description)->type_name("NUMBER");
}

}  // namespace tarvex
