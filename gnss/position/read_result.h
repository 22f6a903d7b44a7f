// The result of a reading of a position; the numbers are fixed.
#pragma once

#include <string>

namespace tarvex {

enum class [[nodiscard]] GnssReadResult : int {
  Accepted = 1,
  Declined = 0,
  NotPrepared = -1,  ///< the connection could not be prepared for reading
  PortReadFailed = -5,
  NoPositionSentence = -6,  ///< none within the line budget
  NoFix = -7,               ///< the receiver has no position, or is not connected
  InvalidData = -8,
  DatumReset = -9,  ///< the receiver was reconfigured; read again
};

/// The sentence for people.
std::string ResultSentence(GnssReadResult result);

}  // namespace tarvex
