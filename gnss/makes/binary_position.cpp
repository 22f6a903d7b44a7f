#include "gnss/makes/binary_position.h"

#include <cmath>

#include "core/units.h"

namespace tarvex {

GnssReadResult TakeBinaryPosition(const Geodetic& position, GnssPositionState& state) {
  constexpr double kHighest = 30000.0;
  const double latitude = position.latitude_rad * kDegreesPerRadian;
  const double longitude = position.longitude_rad * kDegreesPerRadian;
  // Written so that a value that is not a number is refused as well.
  if (!(std::abs(latitude) <= 90.0) || !(std::abs(longitude) <= 180.0) ||
      !(std::abs(position.height_m) <= kHighest)) {
    return GnssReadResult::InvalidData;
  }
  state.latitude = latitude;
  state.longitude = longitude;
  state.height = position.height_m;
  state.height_known = true;
  state.geoid_separation = 0.0;
  return GnssReadResult::Accepted;
}

}  // namespace tarvex
