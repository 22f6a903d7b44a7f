// Tables on a terminal: columns of characters, whatever bytes these have.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace tarvex {

/// How many columns a text takes: one a character.
inline std::size_t Columns(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
  }));
}

/// Padded with blanks to `width` columns, the text at the right end or at the left one.
inline std::string Right(const std::string& text, std::size_t width) {
  return std::string(width - std::min(width, Columns(text)), ' ') + text;
}
inline std::string Left(const std::string& text, std::size_t width) {
  return text + std::string(width - std::min(width, Columns(text)), ' ');
}

}  // namespace tarvex
