// Settings as lines "key=value": UTF-8, one a line, `#` comments. Lines that are not understood,
// keys that are not asked for and the order of the lines are kept when the text is written again.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvex {

class Settings {
 public:
  Settings() = default;
  explicit Settings(std::string_view text);

  /// The value of the last line with this key; keys are compared with their letter case.
  std::optional<std::string> Get(std::string_view key) const;
  std::string GetOr(std::string_view key, std::string_view fallback) const;
  /// Replaces the value, or adds a line. A value is kept on one line.
  void Set(std::string_view key, std::string_view value);
  void Remove(std::string_view key);

  std::string Text() const;

  struct Entry {
    std::string key;
    std::string value;
  };
  /// Every setting in the order of the lines; a key that occurs twice is given twice.
  std::vector<Entry> Entries() const;

 private:
  std::vector<std::string> lines_;
};

}  // namespace tarvex
