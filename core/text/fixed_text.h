// Text of a record field: at most N bytes, cut silently when it is longer, never inside a UTF-8
// character.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "core/text/text.h"

namespace tarvex {

/// At most N bytes of text, NUL padded, trivially copyable.
template <std::size_t N>
class FixedText {
 public:
  static constexpr std::size_t kCapacity = N;

  FixedText() = default;
  explicit FixedText(std::string_view text) { Assign(text); }

  /// Text up to its first NUL, cut to N bytes.
  void Assign(std::string_view text) {
    text = CutAtCharacter(text.substr(0, text.find('\0')), N);
    std::memset(bytes_, 0, sizeof bytes_);
    if (!text.empty()) std::memcpy(bytes_, text.data(), text.size());
  }

  /// Takes a file's field of N + 1 bytes as it is; its last byte counts as NUL.
  void TakeField(const char* field) {
    std::memcpy(bytes_, field, N);
    bytes_[N] = '\0';
  }

  std::string_view view() const { return {bytes_, std::strlen(bytes_)}; }
  std::string str() const { return std::string(view()); }
  bool empty() const { return bytes_[0] == '\0'; }

  friend bool operator==(const FixedText& a, const FixedText& b) { return a.view() == b.view(); }

 private:
  char bytes_[N + 1] = {};
};

}  // namespace tarvex
