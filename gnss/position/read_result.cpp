#include "gnss/position/read_result.h"

#include "core/string_table.h"

namespace tarvex {

std::string ResultSentence(GnssReadResult result) {
  constexpr int kFirstText = 3400;
  constexpr int kAcceptedText = 3420;
  const int text =
      result == GnssReadResult::Accepted ? kAcceptedText : kFirstText - static_cast<int>(result);
  return Strings().Text(text);
}

}  // namespace tarvex
