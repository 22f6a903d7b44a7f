#include "gnss/position/read_result.h"

#include "core/text/string_table.h"
#include "gnss/gnss_texts.h"

namespace tarvex {

std::string ResultSentence(GnssReadResult result) {
  const int text = result == GnssReadResult::Accepted
                       ? kTextPositionAccepted
                       : kTextFirstReadResult - static_cast<int>(result);
  return Strings().Text(text);
}

}  // namespace tarvex
