// NovAtel receivers: one BESTPOSA on request, and the set-up that a reading may turn out to need.
#pragma once

#include "gnss/position/read_result.h"
#include "gnss/receivers/gnss_connection.h"
#include "gnss/receivers/receiver_make.h"

namespace tarvex {

/// Asks for one BESTPOSA, at least 400 ms after the last time, and awaits it for 1500 ms. A geoid
/// undulation that the receiver applies is switched off (InvalidData), another datum than WGS84 is
/// set back (DatumReset): read again then.
GnssReadResult ReadNovAtelPosition(GnssPositionState& state, GnssConnection& connection,
                                   const ReceiverMake& make);

}  // namespace tarvex
