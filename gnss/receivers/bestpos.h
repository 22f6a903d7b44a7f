// The BESTPOSA log of NovAtel receivers: position, precision and solution type in one line.
#pragma once

#include <string_view>

#include "core/text/fixed_text.h"
#include "gnss/position/position_state.h"
#include "gnss/position/read_result.h"

namespace tarvex {

/// What of a log is not part of the position state.
struct Bestpos {
  double undulationM = 0.0;
  FixedText<19> datum;
  bool omnistarHp = false;
};

/// Takes a log ("#BESTPOSA,...;body*crc") into the state. NoPositionSentence without a header or
/// when a field is missing, NoFix when the receiver has no position. The height is the one above
/// the geoid as sent. The epoch is GPS time of day, not UTC.
GnssReadResult ReadBestpos(std::string_view log, GnssPositionState& state, Bestpos& bestpos);

/// False when the log ends in "*" and eight hexadecimal digits that are not its CRC-32.
bool LogCrcHolds(std::string_view log);

}  // namespace tarvex
