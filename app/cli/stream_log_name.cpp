#include "app/cli/stream_log_name.h"

#include "core/text/number_text.h"

namespace tarvex {

std::string StreamLogName(std::string_view pattern, const LocalTime& now) {
  std::string name;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char letter = pattern[i] == '%' && i + 1 < pattern.size() ? pattern[i + 1] : '\0';
    ++i;
    switch (letter) {
      case 'Y':
        AppendInteger(name, now.year, 4);
        break;
      case 'm':
        AppendInteger(name, now.month, 2);
        break;
      case 'd':
        AppendInteger(name, now.day, 2);
        break;
      case 'H':
        AppendInteger(name, now.hour, 2);
        break;
      case 'M':
        AppendInteger(name, now.minute, 2);
        break;
      case 'S':
        AppendInteger(name, now.second, 2);
        break;
      case '%':
        name += '%';
        break;
      default:
        name += pattern[--i];
    }
  }
  return name;
}

}  // namespace tarvex
