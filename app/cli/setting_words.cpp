#include "app/cli/setting_words.h"

#include "core/text/text.h"

namespace tarvex {

bool ReadSettingWords(const std::vector<std::string>& words, std::vector<Settings::Entry>& entries,
                      std::string& problem) {
  std::string shown;
  for (const std::string& word : words) {
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos) {
      if (shown.empty()) shown = word;
      continue;
    }
    entries.push_back(
        {.key = std::string(WithoutOuterBlanks(word.substr(0, equals))),
         .value = OneLine(WithoutOuterBlanks(std::string_view(word).substr(equals + 1)))});
  }
  if (entries.empty() || shown.empty()) return true;
  problem = "\"" + shown + "\" has no value: give " + shown + "=VALUE, or show it by itself.";
  return false;
}

}  // namespace tarvex
