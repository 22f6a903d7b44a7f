// What a grid or geoid file is, for people and as JSON.
#pragma once

#include <string>

#include "app/cli/json_text.h"
#include "coordsys/catalogue/grid_file_info.h"

namespace tarvex {

/// Kind, use and every grid of the file with its extent, spacing and nodes, a line each.
std::string GridFileText(const std::string& path, const GridFileInfo& info);

/// The same; "chosen_by" is null when nothing chooses a file of this name.
Json GridFileJson(const std::string& path, const GridFileInfo& info);

}  // namespace tarvex
