#include "gnss/receivers/binary_position.h"

#include <cmath>

#include "core/units/units.h"

namespace tarvex {

GnssReadResult TakeBinaryPosition(const Geodetic& position, GnssPositionState& state) {
  constexpr double kHighest = 30000.0;
  const double latitude = position.latitudeRad * kDegreesPerRadian;
  const double longitude = position.longitudeRad * kDegreesPerRadian;
  // Written so that a value that is not a number is refused as well.
  if (!(std::abs(latitude) <= 90.0) || !(std::abs(longitude) <= 180.0) ||
      !(std::abs(position.heightM) <= kHighest)) {
    return GnssReadResult::InvalidData;
  }
  state.latitude = latitude;
  state.longitude = longitude;
  state.height = position.heightM;
  state.heightKnown = true;
  state.geoidSeparation = 0.0;
  return GnssReadResult::Accepted;
}

}  // namespace tarvex
