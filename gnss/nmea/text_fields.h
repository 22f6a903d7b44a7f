// Fields of a sentence: text between separators, always views into the line that was read.
#pragma once

#include <string_view>

namespace tarvex {

/// The text after the n-th separator; the whole text when there are fewer.
constexpr std::string_view SkipFields(std::string_view text, char separator, int n) {
  std::string_view rest = text;
  for (; n > 0; --n) {
    const std::size_t at = rest.find(separator);
    if (at == std::string_view::npos) return text;
    rest.remove_prefix(at + 1);
  }
  return rest;
}

/// The text before the first separator; the whole text when there is none.
constexpr std::string_view FirstField(std::string_view text, char separator) {
  return text.substr(0, text.find(separator));
}

/// Walks the comma-separated fields of one sentence, field 0 first, and knows when they run out.
class FieldCursor {
 public:
  explicit constexpr FieldCursor(std::string_view sentence) : rest_(sentence) {}

  /// The next field, which may be empty; false when there are no more.
  constexpr bool Take(std::string_view& field) {
    if (atEnd_) return false;
    std::size_t length = 0;
    while (length < rest_.size() && rest_[length] != ',') ++length;
    field = rest_.substr(0, length);
    atEnd_ = length == rest_.size();
    rest_.remove_prefix(atEnd_ ? length : length + 1);
    return true;
  }

  /// Whether the next field is there and empty.
  constexpr bool NextIsEmpty() const { return !atEnd_ && (rest_.empty() || rest_.front() == ','); }

  constexpr bool Skip(int count) {
    std::string_view skipped;
    while (count > 0 && Take(skipped)) --count;
    return count == 0;
  }

 private:
  std::string_view rest_;
  bool atEnd_ = false;
};

}  // namespace tarvex
