// Reading a position: lines come from the receiver's port, the sentences that the settings select
// go into the state, and the position that is complete goes through the finishing step.
#pragma once

#include <string>

#include "gnss/position/position_state.h"
#include "gnss/position/read_result.h"
#include "gnss/receivers/gnss_connection.h"

namespace tarvex {

/// Reads until a position is complete or the line budget is spent; blocks up to 1000 ms a line.
/// `receiverType` is the code of the make (gnss/receivers/receiver_make.h). What a receiver sent
/// without a reading for more than two seconds is dropped first, so that no position of the past is
/// taken for a current one; a recording is read from where it is.
GnssReadResult ReadGnssPosition(GnssPositionState& state, GnssConnection& connection,
                                int receiverType);

/// The sentence for people about a reading; the connection tells apart what a number does not: a
/// link that is lost, a log that has ended, a receiver that was set up.
std::string ResultSentence(GnssReadResult result, const GnssConnection& connection);

/// Whether the precision of the position that was just read may still come: no whole epoch of this
/// receiver has been seen yet, and many send GST behind their position. Whoever stores a point as
/// well measured as it is waits for one more epoch.
bool PrecisionMayFollow(const GnssPositionState& state, const GnssConnection& connection,
                        int receiverType);

/// Milliseconds since the receiver sent anything at all; -1 before the first line.
std::int64_t SilentForMs(const GnssPositionState& state, Clock& clock);

/// Whether a reading came to nothing only because the next position is not due yet, or a moment
/// late, at the pace that the receiver has shown (once a second until then): nothing that a person
/// need be told.
bool NextSentenceIsDue(GnssReadResult result, const GnssPositionState& state, Clock& clock);

}  // namespace tarvex
