// JSON output: what every command prints with --json.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "core/point.h"

namespace tarvex {

using Json = nlohmann::ordered_json;

/// UTF-8 JSON with the control characters escaped that JSON lets pass (U+007F to U+009F): a
/// terminal obeys them.
inline std::string WithoutControls(const std::string& json) {
  constexpr char kHex[] = "0123456789abcdef";
  std::string text;
  text.reserve(json.size() + 1);
  for (std::size_t i = 0; i < json.size(); ++i) {
    auto code = static_cast<unsigned char>(json[i]);
    const bool control = code == 0xC2 && (static_cast<unsigned char>(json[i + 1]) & 0xE0U) == 0x80;
    if (control) code = static_cast<unsigned char>(json[++i]);
    if (control || code == 0x7F) {
      text += std::string("\\u00") + kHex[code >> 4] + kHex[code & 15U];
    } else {
      text += json[i];
    }
  }
  return text;
}

/// One line, without a line end; bytes that are not UTF-8 are replaced.
inline std::string JsonLine(const Json& json) {
  return WithoutControls(json.dump(-1, ' ', false, Json::error_handler_t::replace));
}

/// Indented, one line end behind it; bytes that are not UTF-8 are replaced, so that it always
/// parses.
inline std::string JsonText(const Json& json) {
  return WithoutControls(json.dump(2, ' ', false, Json::error_handler_t::replace)) + "\n";
}

inline Json PointJson(const Point& point) {
  return {{"id", point.id.view()},
          {"northing", point.at.northing},
          {"easting", point.at.easting},
          {"elevation", point.at.elevation},
          {"description", point.description.view()}};
}

}  // namespace tarvex
