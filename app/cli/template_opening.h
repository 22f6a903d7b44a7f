// A template file as the road commands open it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "app/cli/program.h"
#include "roads/road_template.h"
#include "roads/section.h"

namespace tarvex {

/// Nothing after a message that names the file: it cannot be read, holds no template, or a
/// number that no road has.
std::optional<RoadTemplate> OpenTemplate(Program& program, const std::string& path);

/// "LEFT,RIGHT" in percent, outward; nothing after a message.
std::optional<Superelevation> EnteredSuperelevation(Program& program, std::string_view text);

/// Two numbers with a comma between them; nothing when it is anything else.
std::optional<std::pair<double, double>> ParseNumberPair(std::string_view text);

}  // namespace tarvex
