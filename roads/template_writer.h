// The text of a template file from its fields (docs/formats/tpl.md).
#pragma once

#include <string>

#include "roads/road_template.h"

namespace tarvex {

/// Every section that a new template has, in its order; then subgrades, berm, ditch, curbs and
/// medians when there are any. A template of defaults gives the text of a new, empty one.
///
/// A segment with a ratio is written as the elevation change that it makes: the form of the file
/// knows a grade and a plain number. Lines of keys that the fields do not know are not in it.
std::string TemplateText(const RoadTemplate& section);

}  // namespace tarvex
