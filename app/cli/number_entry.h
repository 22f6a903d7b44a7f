// Numbers of options and arguments.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "app/cli/command_line.h"
#include "app/workflow/entered_number.h"

namespace tarvex {

/// The number of an argument; nothing after a message that begins with `name` ("The northing").
std::optional<double> EnteredNumber(Program& program, std::string_view name, std::string_view text);

enum class NumberKind { Any, NotNegative, Positive };

/// Adds an option or argument that is such a number; another entry is wrong use.
Option AddNumber(Command& command, const std::string& name, double& value,
                 const std::string& description, NumberKind kind = NumberKind::Any);

/// The same for a number that need not be given.
Option AddNumber(Command& command, const std::string& name, std::optional<double>& value,
                 const std::string& description);

}  // namespace tarvex
