#include "core/azimuth.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarvex {

double GridAzimuth(double delta_northing, double delta_easting) {
  const double distance = std::hypot(delta_northing, delta_easting);
  if (!(distance > 0.0) || std::isinf(distance)) return 0.0;
  const double azimuth = std::acos(std::clamp(delta_northing / distance, -1.0, 1.0));
  return delta_easting < 0.0 ? 2.0 * std::numbers::pi - azimuth : azimuth;
}

}  // namespace tarvex
