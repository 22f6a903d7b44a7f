// The texts that people see, chosen by number. A language file of lines "IDS_STRING2205=text" can
// replace any of them; %s in a text stands for an argument, taken in order.
#pragma once

#include <initializer_list>
#include <map>
#include <string>
#include <string_view>

namespace tarvex {

class StringTable {
 public:
  /// The text of a number; the number itself in words ("IDS_STRING9999") when it has none.
  std::string Text(int number) const;
  /// The text with each %s replaced by the next argument.
  std::string Text(int number, std::initializer_list<std::string_view> arguments) const;
  /// Takes the lines of a language file; lines of any other form are skipped.
  void Override(std::string_view languageFile);

 private:
  std::map<int, std::string> overridden_;
};

/// The table of the running system.
StringTable& Strings();

}  // namespace tarvex
