// JSON output: what every command prints with --json.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "core/point.h"

namespace tarvex {

using Json = nlohmann::ordered_json;

/// Indented, one line end behind it; bytes that are not UTF-8 are replaced, so that it always
/// parses.
inline std::string JsonText(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

inline Json PointJson(const Point& point) {
  return {{"id", point.id.view()},
          {"northing", point.at.northing},
          {"easting", point.at.easting},
          {"elevation", point.at.elevation},
          {"description", point.description.view()}};
}

}  // namespace tarvex
