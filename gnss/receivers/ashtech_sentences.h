// The sentences of the Ashtech command set, split the way that family is read: at commas, with
// empty fields collapsing, so that later fields move up. Tokens are counted from 1.
#pragma once

#include <string_view>

#include "gnss/position/position_state.h"
#include "gnss/position/read_result.h"

namespace tarvex {

/// Takes tokens off a sentence: runs of commas count as one, and none before the first token.
class TokenCursor {
 public:
  explicit constexpr TokenCursor(std::string_view sentence) : rest_(sentence) {}

  /// False when there are no more tokens.
  constexpr bool Take(std::string_view& token) {
    const std::size_t begin = rest_.find_first_not_of(',');
    if (begin == std::string_view::npos) return false;
    rest_.remove_prefix(begin);
    token = rest_.substr(0, rest_.find(','));
    rest_.remove_prefix(token.size());
    return true;
  }

 private:
  std::string_view rest_;
};

/// "$PASHR,POS,...": NoPositionSentence when it does not begin with '$' (the position is cleared)
/// or ends before its height.
GnssReadResult ReadPashrPos(std::string_view line, int model, GnssPositionState& state);

/// "$GPGGA,..." as this family sends it: quality 2 is FLOAT, 3 FIXED; heights not in metres are in
/// the state's unit (the job's feet). NoPositionSentence for quality 0 and for fewer than 13
/// tokens.
GnssReadResult ReadAshtechGga(std::string_view line, bool ellipsoidHeight,
                              GnssPositionState& state);

}  // namespace tarvex
