// The reading of makes that send NMEA by themselves: line after line until one completes the
// position.
#pragma once

#include "gnss/nmea/sentence.h"
#include "gnss/position/read_result.h"
#include "gnss/receivers/gnss_connection.h"
#include "gnss/receivers/receiver_make.h"

namespace tarvex {

/// Reads lines until a position is complete (Accepted) or the budget is spent. The port's busy flag
/// is held by the caller.
GnssReadResult ReadNmeaPosition(GnssPositionState& state, GnssConnection& connection,
                                const ReceiverMake& make);

/// One line into the state: what ReadNmeaPosition does with each, for those who have lines already.
/// `previous` is the kind of the line before, and becomes that of this one.
SentenceResult TakeNmeaLine(std::string_view line, const SentenceContext& context,
                            GnssPositionState& state, SentenceKind& previous);

}  // namespace tarvex
