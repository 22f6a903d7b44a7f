// Ashtech receivers: a position on request.
#pragma once

#include "gnss/position/read_result.h"
#include "gnss/receivers/gnss_connection.h"
#include "gnss/receivers/receiver_make.h"

namespace tarvex {

/// Asks for one position: the models that answer with "$PASHR,POS" are sent the query, the others
/// have their GGA output switched on for one line and off again.
GnssReadResult ReadAshtechPosition(GnssPositionState& state, GnssConnection& connection,
                                   const ReceiverMake& make);

}  // namespace tarvex
