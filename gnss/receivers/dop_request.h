// DOP values on request, for receivers that do not send GSA by themselves.
#pragma once

#include <string_view>

#include "gnss/position/read_result.h"
#include "gnss/receivers/gnss_connection.h"

namespace tarvex {

/// Asks the make for its DOP values and takes them into the state. PortReadFailed when nothing can
/// be sent, NoPositionSentence when no usable reply comes or the make cannot be asked.
GnssReadResult RequestDop(GnssPositionState& state, GnssConnection& connection, int receiverType);

/// "#PSRDOPA,...;gdop,pdop,hdop,htdop,tdop,...": false when a field is missing.
[[nodiscard]] bool ReadPsrdop(std::string_view log, GnssPositionState& state);

/// "$PASHR,PBN,...": PDOP, HDOP, VDOP and TDOP are its fields 13 to 16 behind "PBN".
[[nodiscard]] bool ReadPashrPbn(std::string_view line, GnssPositionState& state);

}  // namespace tarvex
