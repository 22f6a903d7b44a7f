#include "core/settings.h"

#include <ranges>

#include "core/text.h"

namespace tarvex {
namespace {

// The value when `line` is a setting of this key.
std::optional<std::string_view> ValueOf(std::string_view line, std::string_view key) {
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos || line.starts_with('#')) return std::nullopt;
  if (WithoutOuterBlanks(line.substr(0, equals)) != key) return std::nullopt;
  return WithoutOuterBlanks(line.substr(equals + 1));
}

}  // namespace

Settings::Settings(std::string_view text) {
  while (const auto line = TakeLine(text)) lines_.emplace_back(*line);
}

std::optional<std::string> Settings::Get(std::string_view key) const {
  for (const std::string& line : lines_ | std::views::reverse) {
    if (const auto value = ValueOf(line, key)) return std::string(*value);
  }
  return std::nullopt;
}

std::string Settings::GetOr(std::string_view key, std::string_view fallback) const {
  return Get(key).value_or(std::string(fallback));
}

void Settings::Set(std::string_view key, std::string_view value) {
  const std::string line = std::string(key) + "=" + OneLine(value);
  for (std::string& old : lines_ | std::views::reverse) {
    if (!ValueOf(old, key)) continue;
    old = line;
    return;
  }
  lines_.push_back(line);
}

void Settings::Remove(std::string_view key) {
  std::erase_if(lines_, [&](const std::string& line) { return ValueOf(line, key).has_value(); });
}

std::string Settings::Text() const {
  std::string text;
  for (const std::string& line : lines_) text += line + "\n";
  return text;
}

}  // namespace tarvex
