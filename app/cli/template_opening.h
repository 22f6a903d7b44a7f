// A template file as the road commands open it.
#pragma once

#include <optional>
#include <string>

#include "app/cli/program.h"
#include "roads/road_template.h"

namespace tarvex {

/// Nothing after a message that names the file: it cannot be read, holds no template, or a
/// number that no road has.
std::optional<RoadTemplate> OpenTemplate(Program& program, const std::string& path);

}  // namespace tarvex
