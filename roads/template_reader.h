// From the text of a template file (docs/formats/tpl.md) to its fields.
#pragma once

#include <string_view>

#include "roads/road_template.h"

namespace tarvex {

/// The template of a text. Every text is one; lines of an unknown key are passed over.
RoadTemplate ReadTemplate(std::string_view text);

}  // namespace tarvex
