// The line at the bottom of the terminal while a session runs: what matters most comes first, for a
// narrow terminal cuts it.
#pragma once

#include <string>

#include "app/workflow/session_events.h"

namespace tarvex {

/// "HRMS 0.010, VRMS 0.016", or that they are unknown.
std::string PrecisionText(const GnssPositionState& state);

/// "not stored for 12 s: ...; FIXED, 12 sat, HRMS 0.010, VRMS 0.016, age 1.0 s; 3.214 m from 12;
/// next 13 EP1; 5 stored".
std::string StatusLine(const PositionSeen& seen);

}  // namespace tarvex
