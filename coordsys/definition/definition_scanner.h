// The two moves with which a definition text is walked: copy up to a delimiter, and go past one.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace tarvex {

class DefinitionScanner {
 public:
  explicit DefinitionScanner(std::string_view text) : rest_(text) {}

  std::string_view rest() const { return rest_; }
  bool AtStartOf(std::string_view keyword) const { return rest_.starts_with(keyword); }

  /// The characters before the next `delimiter`, which is not passed; nothing when there is none
  /// within `limit` characters.
  std::optional<std::string_view> Before(char delimiter,
                                         std::size_t limit = std::string_view::npos) const {
    const std::size_t at = rest_.find(delimiter);
    if (at == std::string_view::npos || at > limit) return std::nullopt;
    return rest_.substr(0, at);
  }

  /// Goes past the next `delimiter`; false, without moving, when there is none.
  bool Pass(char delimiter) {
    const std::size_t at = rest_.find(delimiter);
    if (at == std::string_view::npos) return false;
    rest_.remove_prefix(at + 1);
    return true;
  }

  /// The text up to `delimiter`, and past it.
  std::optional<std::string_view> Take(char delimiter) {
    const auto text = Before(delimiter);
    if (text) rest_.remove_prefix(text->size() + 1);
    return text;
  }

  /// The next text between two double quotes, and past it; nothing, without moving, when there is
  /// no pair of quotes.
  std::optional<std::string_view> TakeQuoted() {
    DefinitionScanner probe = *this;
    if (!probe.Pass('"')) return std::nullopt;
    const auto text = probe.Take('"');
    if (text) *this = probe;
    return text;
  }

  /// Walks item by item into the brackets until one begins with `keyword`; false when the text
  /// ends before.
  bool WalkInto(std::string_view keyword) {
    while (const auto item = Before('[')) {
      if (item->starts_with(keyword)) return true;
      if (!Pass('[') || !Pass(',')) return false;
    }
    return false;
  }

 private:
  std::string_view rest_;
};

}  // namespace tarvex
