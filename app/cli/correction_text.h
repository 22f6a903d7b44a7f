// The corrections in words, as the program's lines tell them.
#pragma once

#include <string>

#include "gnss/corrections/correction_status.h"
#include "gnss/position/position_state.h"

namespace tarvex {

/// One line for a progress line: "corrections 0.8 s old, base 2003 at 3.2 km".
std::string CorrectionLine(const CorrectionStatus& status, const GnssPositionState& state);

/// What a session came to: "Corrections: 15200 bytes in 608 messages over 3 connections, ...".
std::string CorrectionSummary(const CorrectionStatus& status);

}  // namespace tarvex
