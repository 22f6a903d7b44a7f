// Reading a position: lines come from the receiver's port, the sentences that the settings select
// go into the state, and the position that is complete goes through the finishing step.
#pragma once

#include <string>

#include "gnss/gnss_connection.h"
#include "gnss/position_state.h"

namespace tarvex {

enum class [[nodiscard]] GnssReadResult : int{
    Accepted = 1,
    Declined = 0,
    NotPrepared = -1,  ///< the connection could not be prepared for reading
    PortReadFailed = -5,
    NoPositionSentence = -6,  ///< none within the line budget
    NoFix = -7,               ///< the receiver has no position, or is not connected
    InvalidData = -8,
    DatumReset = -9,  ///< the receiver was reconfigured; read again
};

/// Reads until a position is complete or the line budget is spent; blocks up to 1000 ms a line.
/// `receiverType` is the code of the make (gnss/receiver_make.h). What a receiver sent while
/// nobody read for more than two seconds is dropped first, so that no position of the past is
/// taken for a current one; a recording is read from where it stands.
GnssReadResult ReadGnssPosition(GnssPositionState& state, GnssConnection& connection,
                                int receiverType);

/// The sentence for people.
std::string ResultSentence(GnssReadResult result);

/// What a person should know of a position that was not measured; empty when it was.
std::string OriginSentence(PositionOrigin origin);

/// Milliseconds since the receiver sent anything at all; -1 before the first line.
std::int64_t SilentForMs(const GnssPositionState& state, Clock& clock);

/// Whether a reading came to nothing only because the next sentence of a receiver that sends once a
/// second is a moment late: nothing that a person need be told.
bool NextSentenceIsDue(GnssReadResult result, const GnssPositionState& state, Clock& clock);

}  // namespace tarvex
