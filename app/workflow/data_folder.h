// The program's data folder: the user's catalogue, the predefined catalogue, grids and geoids.
#pragma once

#include <string>

#include "app/workflow/workplace.h"

namespace tarvex {

/// The folder that TARVEX_DATA names, else the user's data directory ("~/.local/share/tarvex/"),
/// with its trailing separator. At first start, when the program's own files are newer, and when a
/// copy of the predefined catalogue was cut short, it gets what came with the program: each file
/// whole and durable or not at all, and the catalogue last, so that an interrupted start is made up
/// for by the next. What cannot be copied gives a warning.
std::string DataFolder(const Workplace& work);

}  // namespace tarvex
