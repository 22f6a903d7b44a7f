// The program's data folder: the user's catalogue, the predefined catalogue, grids and geoids.
#pragma once

#include <string>

#include "app/cli/program.h"

namespace tarvex {

/// The folder that TARVEX_DATA names, else the user's data directory ("~/.local/share/tarvex/"),
/// with its trailing separator. At first start it is made and gets what came with the program; a
/// folder that cannot be made is told as a warning.
std::string DataFolder(Program& program);

}  // namespace tarvex
