// What is read of RTCM 3 messages: their numbers, and the base station's position (1005 and 1006).
#pragma once

#include <optional>
#include <string_view>

#include "coordsys/coordinates.h"

namespace tarvex {

/// The base station: its antenna reference point in the frame of the corrections.
struct BaseStation {
  int id = 0;
  Geocentric position;
  double antennaHeightM = 0.0;  ///< 1006 only: of the reference point above the mark

  bool operator==(const BaseStation&) const = default;
};

/// The message number (its first twelve bits); 0 when the message is too short to have one.
int RtcmMessageNumber(std::string_view message);

/// The station of a 1005 or 1006; nothing for other messages and for one that is cut short.
std::optional<BaseStation> ReadBaseStation(std::string_view message);

}  // namespace tarvex
