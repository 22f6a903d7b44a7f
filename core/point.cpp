#include "core/point.h"

#include <cmath>

namespace tarvex {

bool IsEmptySlot(const Point& point) {
  constexpr double kZero = 1e-6;
  const GridPoint& at = point.at;
  const bool atZero = std::fabs(at.northing) < kZero && std::fabs(at.easting) < kZero &&
                      std::fabs(at.elevation) < kZero;
  return atZero && point.description.view().find_first_not_of(' ') == std::string_view::npos;
}

}  // namespace tarvex
