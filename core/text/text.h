// Small questions about text that every room asks: ASCII only, no locale, UTF-8 passes through.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarvex {

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
constexpr bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}
/// Line breaks and other control characters.
constexpr bool IsControl(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}
constexpr char UpperCase(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}
constexpr char LowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

std::string UpperCase(std::string_view text);
std::string LowerCase(std::string_view text);
bool EqualsIgnoringCase(std::string_view a, std::string_view b);
/// Where `part` first occurs in `text`, letter case ignored; npos when it does not.
std::size_t FindIgnoringCase(std::string_view text, std::string_view part);

/// Blanks, tabs and line ends at the front (and at both ends) removed.
std::string_view WithoutLeadingBlanks(std::string_view text);
std::string_view WithoutOuterBlanks(std::string_view text);

/// The longest start of `text` of at most `limit` bytes that does not end inside a UTF-8 character.
/// Bytes that are not UTF-8 count as characters of their own.
std::string_view CutAtCharacter(std::string_view text, std::size_t limit);

/// `text` with every line break and control character made a blank, so that it stays one line and
/// ends no fixed-width field early. For files; what a terminal may see is core/text/printable.h's.
std::string OneLine(std::string_view text);

/// Takes the next line off `rest`: it ends at LF, and a CR before the LF is dropped. The last line
/// may lack its LF. Nothing when `rest` is empty.
std::optional<std::string_view> TakeLine(std::string_view& rest);

}  // namespace tarvex
