#include "app/cli/number_entry.h"

namespace tarvex {

std::optional<double> EnteredNumber(Program& program, std::string_view name,
                                    std::string_view text) {
  const NumberEntry entry = ReadNumberEntry(text);
  if (entry.problem.empty()) return entry.value;
  (void)program.Misuse(std::string(name) + " " + entry.problem + ".");
  return std::nullopt;
}

Option AddNumber(Command& command, const std::string& name, double& value,
                 const std::string& description, NumberKind kind) {
  const auto take = [&value, kind](const std::string& text) -> std::string {
    const NumberEntry entry = ReadNumberEntry(text);
    if (!entry.problem.empty()) return entry.problem + ".";
    const bool inRange = kind == NumberKind::Any || entry.value > 0.0 ||
                         (kind == NumberKind::NotNegative && entry.value == 0.0);
    if (!inRange) {
      return "\"" + text + "\" is " + (kind == NumberKind::Positive ? "not above" : "below") +
             " 0.";
    }
    value = entry.value;
    return "";
  };
  return command.AddRead(name, take, description).ValueName("NUMBER");
}

Option AddNumber(Command& command, const std::string& name, std::optional<double>& value,
                 const std::string& description) {
  const auto take = [&value](const std::string& text) -> std::string {
    const NumberEntry entry = ReadNumberEntry(text);
    if (!entry.problem.empty()) return entry.problem + ".";
    value = entry.value;
    return "";
  };
  return command.AddRead(name, take, description).ValueName("NUMBER");
}

}  // namespace tarvex
