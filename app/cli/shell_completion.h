// What a shell completes behind "tarvex": commands, options, the words and files that they take.
#pragma once

#include <string>

#include "app/cli/command_description.h"

namespace tarvex {

/// A script that bash reads.
std::string BashCompletion(const CommandDescription& program);
/// One for zsh, which runs the script of bash.
std::string ZshCompletion(const CommandDescription& program);
/// One for fish.
std::string FishCompletion(const CommandDescription& program);

}  // namespace tarvex
