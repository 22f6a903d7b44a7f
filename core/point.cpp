#include "core/point.h"

#include <cmath>

namespace tarvex {

bool IsEmptySlot(const GridPoint& at, std::string_view description) {
  constexpr double kZero = 1e-6;
  const bool at_zero = std::fabs(at.northing) < kZero && std::fabs(at.easting) < kZero &&
                       std::fabs(at.elevation) < kZero;
  return at_zero && description.find_first_not_of(' ') == std::string_view::npos;
}

}  // namespace tarvex
