// The profile of a LandXML alignment: grades, parabolas and circles.
#pragma once

#include <pugixml.hpp>

#include "exchange/landxml_source.h"

namespace tarvex {

/// Takes the first ProfAlign of a Profile node into the alignment; what is left out is reported.
void ReadProfile(LandXmlSource& source, const pugi::xml_node& profile, LandXmlAlignment& alignment);

}  // namespace tarvex
