// Fields of a text: what is between separators, always views into the text itself. Sentences of
// receivers, lists of casters and the lines of road files are read with it.
#pragma once

#include <cstddef>
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

/// Walks the fields of a text, field 0 first, and knows when they run out: a text without a
/// separator has one field, which may be empty.
class FieldCursor {
 public:
  explicit constexpr FieldCursor(std::string_view text, char separator = ',')
      : rest_(text), separator_(separator) {}

  /// The next field, which may be empty; false, with `field` as it was, when there are no more.
  constexpr bool Take(std::string_view& field) {
    if (atEnd_) return false;
    std::size_t length = 0;
    while (length < rest_.size() && rest_[length] != separator_) ++length;
    field = rest_.substr(0, length);
    atEnd_ = length == rest_.size();
    rest_.remove_prefix(atEnd_ ? length : length + 1);
    return true;
  }

  /// The next field for those to whom a missing one is an empty one.
  constexpr std::string_view Next() {
    std::string_view field;
    (void)Take(field);
    return field;
  }

  /// False when there are fewer.
  constexpr bool Skip(int count) {
    std::string_view skipped;
    while (count > 0 && Take(skipped)) --count;
    return count == 0;
  }

  /// Whether the next field is there and empty.
  constexpr bool NextIsEmpty() const {
    return !atEnd_ && (rest_.empty() || rest_.front() == separator_);
  }

  /// What has not been taken, separators and all.
  constexpr std::string_view rest() const { return rest_; }

 private:
  std::string_view rest_;
  char separator_;
  bool atEnd_ = false;
};

}  // namespace tarvex
