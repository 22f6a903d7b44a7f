#include "app/cli/keys.h"

#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr char kEscape = '\x1b';

Key::Kind KindOf(char byte) {
  switch (byte) {
    case '\r':
    case '\n':
      return Key::Kind::Enter;
    case '\t':
      return Key::Kind::Tab;
    case '\b':
    case '\x7f':
      return Key::Kind::Backspace;
    case '\x15':
      return Key::Kind::ClearLine;
    case '\x04':
    case '\x07':
      return Key::Kind::Escape;
    default:
      return IsControl(byte) ? Key::Kind::Other : Key::Kind::Byte;
  }
}

}  // namespace

// Escape [ ... letter, or Escape O letter: what a terminal sends for arrows and function keys.
std::optional<Key> KeyDecoder::Take(char byte) {
  switch (state_) {
    case State::Ground:
      break;
    case State::Escaped:
      state_ = byte == '[' || byte == 'O' ? State::Sequence : State::Ground;
      if (state_ == State::Sequence) return std::nullopt;
      return Key{Key::Kind::Other};  // Alt and a key
    case State::Sequence:
      if (byte < '@' || byte > '~') return std::nullopt;
      state_ = State::Ground;
      return Key{Key::Kind::Other};
  }
  if (byte == kEscape) {
    state_ = State::Escaped;
    return std::nullopt;
  }
  const Key::Kind kind = KindOf(byte);
  return Key{kind, kind == Key::Kind::Byte ? byte : '\0'};
}

std::optional<Key> KeyDecoder::Idle() {
  const bool escaped = state_ == State::Escaped;
  state_ = State::Ground;
  return escaped ? std::optional(Key{Key::Kind::Escape}) : std::nullopt;
}

}  // namespace tarvex
