#include "core/text/printable.h"

#include "core/text/text.h"

namespace tarvex {
namespace {

unsigned Byte(std::string_view text, std::size_t at) {
  return static_cast<unsigned char>(text[at]);
}

bool IsStrayControl(char c) {
  return (static_cast<unsigned char>(c) & 0xE0U) == 0x80U;
}

struct Character {
  std::size_t length = 1;
  unsigned code = 0;
};

// The UTF-8 character of more than one byte at the front of `text`; of length 1 when there is none
// (RFC 3629: nothing longer than needed, no surrogates, nothing beyond U+10FFFF).
Character FirstCharacter(std::string_view text) {
  const unsigned lead = Byte(text, 0);
  const std::size_t length = lead >= 0xF5 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || length == 1 || text.size() < length) return {};
  unsigned code = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((Byte(text, i) & 0xC0U) != 0x80U) return {};
    code = code << 6 | (Byte(text, i) & 0x3FU);
  }
  const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
  const bool surrogate = code >= 0xD800 && code < 0xE000;
  if (overlong || surrogate || code > 0x10FFFF) return {};
  return {length, code};
}

// Appends what is shown for the character at the front of `rest` and takes it off.
void TakeShown(std::string_view& rest, bool oneLine, std::string& shown) {
  const char c = rest.front();
  std::size_t taken = 1;
  const bool layout = !oneLine && (c == '\n' || c == '\t');
  const bool plain = !IsControl(c) && static_cast<unsigned char>(c) < 0x80;
  if (layout || plain) {
    shown += c;
  } else if (!oneLine && rest.starts_with("\r\n")) {
    shown += "\r\n";
    taken = 2;
  } else if (IsControl(c)) {
    shown += ' ';
  } else if (const Character character = FirstCharacter(rest); character.length > 1) {
    taken = character.length;
    if (character.code < 0xA0) {
      shown += ' ';
    } else {
      shown += rest.substr(0, taken);
    }
  } else {
    shown += IsStrayControl(c) ? '?' : c;
  }
  rest.remove_prefix(taken);
}

std::string Shown(std::string_view text, bool oneLine) {
  std::string shown;
  shown.reserve(text.size());
  while (!text.empty()) TakeShown(text, oneLine, shown);
  return shown;
}

}  // namespace

bool IsPlainText(std::string_view text) {
  unsigned strange = 0;
  for (const char c : text) {
    const bool plain = (c >= ' ' && c <= '~') || c == '\n' || c == '\t';
    strange |= plain ? 0U : 1U;
  }
  return strange == 0;
}

std::string PrintableText(std::string_view text) {
  return Shown(text, false);
}

std::string PrintableLine(std::string_view text) {
  return Shown(text, true);
}

}  // namespace tarvex
