// Positions of makes that send binary packets: the result of such a packet.
#pragma once

#include "coordsys/coordinates.h"
#include "gnss/position/position_state.h"
#include "gnss/position/read_result.h"

namespace tarvex {

/// Takes latitude, longitude (degrees = radians times 57.29577951308232) and height into the state.
/// InvalidData, with the state untouched, beyond 90 and 180 degrees and 30000 m.
GnssReadResult TakeBinaryPosition(const Geodetic& position, GnssPositionState& state);

}  // namespace tarvex
