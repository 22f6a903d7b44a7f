// The commands of the program, each in a file of its own here. Adding one: its file, its row in
// commands.cpp and its line in app/CMakeLists.txt.
#pragma once

#include <span>

#include "app/cli/command_line.h"

namespace tarvex {

/// In the order of the help.
std::span<const CommandRow> ProgramCommands();

}  // namespace tarvex
