// Files that come out of a command.
#pragma once

#include <string>
#include <string_view>

#include "app/cli/program.h"

namespace tarvex {

/// Writes it durably and says so; one that exists is refused unless `overwrite`.
ExitCode WriteResultFile(Program& program, const std::string& path, std::string_view text,
                         bool overwrite);

}  // namespace tarvex
