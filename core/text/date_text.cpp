#include "core/text/date_text.h"

#include "core/text/number_text.h"

namespace tarvex {

std::string DateText(const LocalTime& time) {
  std::string text;
  AppendInteger(text, time.month, 2);
  text += '-';
  AppendInteger(text, time.day, 2);
  text += '-';
  AppendInteger(text, time.year, 4);
  return text;
}

std::string TimeText(const LocalTime& time) {
  std::string text;
  AppendInteger(text, time.hour, 2);
  text += ':';
  AppendInteger(text, time.minute, 2);
  text += ':';
  AppendInteger(text, time.second, 2);
  return text;
}

}  // namespace tarvex
