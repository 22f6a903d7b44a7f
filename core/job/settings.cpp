#include "core/job/settings.h"

#include <algorithm>

#include "core/text/text.h"

namespace tarvex {
namespace {

// The value when `line` is a setting of this key.
std::optional<std::string_view> ValueOf(std::string_view line, std::string_view key) {
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos || line.starts_with('#')) return std::nullopt;
  if (WithoutOuterBlanks(line.substr(0, equals)) != key) return std::nullopt;
  return WithoutOuterBlanks(line.substr(equals + 1));
}

auto IsSettingOf(std::string_view key) {
  return [key](const std::string& line) { return ValueOf(line, key).has_value(); };
}

}  // namespace

Settings::Settings(std::string_view text) {
  while (const auto line = TakeLine(text)) lines_.emplace_back(*line);
}

std::optional<std::string> Settings::Get(std::string_view key) const {
  const auto last = std::find_if(lines_.rbegin(), lines_.rend(), IsSettingOf(key));
  if (last == lines_.rend()) return std::nullopt;
  return std::string(*ValueOf(*last, key));
}

std::string Settings::GetOr(std::string_view key, std::string_view fallback) const {
  return Get(key).value_or(std::string(fallback));
}

void Settings::Set(std::string_view key, std::string_view value) {
  const std::string line = std::string(key) + "=" + OneLine(value);
  const auto last = std::find_if(lines_.rbegin(), lines_.rend(), IsSettingOf(key));
  if (last == lines_.rend()) {
    lines_.push_back(line);
  } else {
    *last = line;
  }
}

void Settings::Remove(std::string_view key) {
  std::erase_if(lines_, IsSettingOf(key));
}

std::string Settings::Text() const {
  std::string text;
  for (const std::string& line : lines_) text += line + "\n";
  return text;
}

std::vector<Settings::Entry> Settings::Entries() const {
  std::vector<Entry> entries;
  for (const std::string& line : lines_) {
    const std::string_view key =
        WithoutOuterBlanks(std::string_view(line).substr(0, line.find('=')));
    if (const auto value = ValueOf(line, key)) {
      entries.push_back({.key = std::string(key), .value = std::string(*value)});
    }
  }
  return entries;
}

}  // namespace tarvex
