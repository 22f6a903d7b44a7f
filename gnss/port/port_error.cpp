#include "gnss/port/port_error.h"

#include <array>
#include <utility>

#include "core/text/string_table.h"
#include "gnss/gnss_texts.h"

namespace tarvex {
PortError Report(LastErrorRecord& record, PortError error, std::vector<std::string> arguments) {
  record.Set(static_cast<int>(error), std::move(arguments));
  return error;
}

std::string ErrorSentence(const LastError& error) {
  std::array<std::string_view, 3> given = {"", "", ""};
  for (std::size_t i = 0; i < given.size() && i < error.arguments.size(); ++i) {
    given[i] = error.arguments[i];
  }
  return Strings().Text(kTextFirstPortError + error.code, {given[0], given[1], given[2]});
}

std::string ErrorSentences(const LastErrorRecord& record) {
  std::string text;
  for (const LastError& error : record.History()) {
    if (!text.empty()) text += ' ';
    text += ErrorSentence(error);
  }
  return text;
}

}  // namespace tarvex
