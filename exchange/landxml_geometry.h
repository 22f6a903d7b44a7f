// The plan geometry of a LandXML alignment: lines, arcs and clothoids.
#pragma once

#include <pugixml.hpp>
#include <vector>

#include "exchange/landxml_source.h"
#include "exchange/plan_elements.h"

namespace tarvex {

/// The elements of a CoordGeom node from `station` on; what a centerline cannot hold is refused.
std::vector<PlanElement> ReadPlanGeometry(LandXmlSource& source, const pugi::xml_node& geometry,
                                          double station);

}  // namespace tarvex
