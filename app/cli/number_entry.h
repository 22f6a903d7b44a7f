// Numbers that a person types, in options and in files.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "app/cli/program.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tarvex {

/// No coordinate, station or height on the earth lies beyond this, in any unit.
inline constexpr double kLargestEntry = 1e9;

/// An entered number, or what is wrong with it: `"1,5" is not a number`.
struct NumberEntry {
  double value = 0.0;
  std::string problem;  ///< empty when the number is good
};
NumberEntry ReadNumberEntry(std::string_view text);

/// The number of an argument; nothing after a message that begins with `name` ("The northing").
std::optional<double> EnteredNumber(Program& program, std::string_view name, std::string_view text);

enum class NumberKind { Any, NotNegative, Positive };

/// Adds an option or argument that is such a number; another entry is wrong use.
CLI::Option* AddNumber(CLI::App& sub, const std::string& name, double& value,
                       const std::string& description, NumberKind kind = NumberKind::Any);

}  // namespace tarvex
