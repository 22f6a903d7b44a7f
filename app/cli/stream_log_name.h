// The name of a stream log: each session can have one of its own.
#pragma once

#include <string>
#include <string_view>

#include "platform/clock.h"

namespace tarvex {

inline constexpr const char* kStreamLogHelp =
    "Keep what the receiver sends in a new file; %Y, %m, %d, %H, %M and %S in its name\n"
    "become date and time, as in site-%Y%m%d-%H%M%S.nmea";

/// `pattern` with %Y (4 digits), %m, %d, %H, %M and %S (2 digits) replaced by those of `now`, and
/// %% by %; anything else is kept.
std::string StreamLogName(std::string_view pattern, const LocalTime& now);

}  // namespace tarvex
