// What a terminal sends for the keys that are pressed: one key after the other from single bytes.
#pragma once

#include <optional>

namespace tarvex {

struct Key {
  enum class Kind {
    Byte,  ///< of a character; those of UTF-8 come one by one
    Enter,
    Tab,
    Backspace,
    ClearLine,  ///< Ctrl-U
    Escape,     ///< alone, and Ctrl-D or Ctrl-G, which mean the same here
    Other       ///< arrows and the like, other control characters
  };
  Kind kind = Kind::Other;
  char byte = 0;

  bool operator==(const Key&) const = default;
};

class KeyDecoder {
 public:
  /// Nothing while a key is not complete.
  std::optional<Key> Take(char byte);
  /// Nothing more was sent for a while: an Escape that was none of a sequence is the key itself.
  std::optional<Key> Idle();

 private:
  enum class State { Ground, Escaped, Sequence };
  State state_ = State::Ground;
};

}  // namespace tarvex
