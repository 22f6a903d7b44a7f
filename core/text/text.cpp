#include "core/text/text.h"

#include <algorithm>

namespace tarvex {
namespace {

bool IsSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool IsContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

// How many bytes the UTF-8 character that starts with `c` has; 1 for anything else.
std::size_t CharacterLength(char c) {
  const auto byte = static_cast<unsigned char>(c);
  if (byte >= 0xF0 && byte < 0xF8) return 4;
  if (byte >= 0xE0) return byte < 0xF0 ? 3 : 1;
  return byte >= 0xC0 ? 2 : 1;
}

}  // namespace

std::string UpperCase(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = UpperCase(c);
  return result;
}

std::string LowerCase(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = LowerCase(c);
  return result;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return UpperCase(x) == UpperCase(y); });
}

std::size_t FindIgnoringCase(std::string_view text, std::string_view part) {
  if (part.empty()) return 0;
  const char first = UpperCase(part.front());
  for (std::size_t at = 0; at + part.size() <= text.size(); ++at) {
    if (UpperCase(text[at]) != first) continue;
    if (EqualsIgnoringCase(text.substr(at, part.size()), part)) return at;
  }
  return std::string_view::npos;
}

std::string_view WithoutLeadingBlanks(std::string_view text) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  return text;
}

std::string_view WithoutOuterBlanks(std::string_view text) {
  text = WithoutLeadingBlanks(text);
  while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view CutAtCharacter(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) return text;
  std::size_t start = limit;  // back over the continuation bytes to the start of the character
  while (start > 0 && limit - start < 3 && IsContinuation(text[start])) --start;
  const bool inside = start < limit && start + CharacterLength(text[start]) > limit;
  return text.substr(0, inside ? start : limit);
}

std::string OneLine(std::string_view text) {
  std::string line(text);
  for (char& c : line) {
    if (IsControl(c)) c = ' ';
  }
  return line;
}

std::optional<std::string_view> TakeLine(std::string_view& rest) {
  if (rest.empty()) return std::nullopt;
  const std::size_t end = rest.find('\n');
  std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

}  // namespace tarvex
