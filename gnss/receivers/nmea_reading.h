// The reading of makes that send NMEA by themselves: line after line until one completes the
// position.
#pragma once

#include "gnss/position/read_result.h"
#include "gnss/receivers/gnss_connection.h"
#include "gnss/receivers/receiver_make.h"

namespace tarvex {

/// Reads lines until a position is complete (Accepted) or the budget is spent. The port's busy flag
/// is held by the caller.
GnssReadResult ReadNmeaPosition(GnssPositionState& state, GnssConnection& connection,
                                const ReceiverMake& make);

}  // namespace tarvex
