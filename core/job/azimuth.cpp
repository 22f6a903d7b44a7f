#include "core/job/azimuth.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarvex {

double GridAzimuth(double deltaNorthing, double deltaEasting) {
  const double distance = std::hypot(deltaNorthing, deltaEasting);
  if (!(distance > 0.0) || std::isinf(distance)) return 0.0;
  const double azimuth = std::acos(std::clamp(deltaNorthing / distance, -1.0, 1.0));
  return deltaEasting < 0.0 ? 2.0 * std::numbers::pi - azimuth : azimuth;
}

}  // namespace tarvex
