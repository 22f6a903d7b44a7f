#include "core/points/point.h"

#include <algorithm>
#include <cmath>

#include "core/text/text.h"

namespace tarvex {

bool IsFinite(const GridPoint& at) {
  return std::isfinite(at.northing) && std::isfinite(at.easting) && std::isfinite(at.elevation);
}

Description OnOneLine(const Description& description) {
  const std::string_view text = description.view();
  return std::none_of(text.begin(), text.end(), IsControl) ? description
                                                           : Description(OneLine(text));
}

bool IsEmptySlot(const Point& point) {
  constexpr double kZero = 1e-6;
  const GridPoint& at = point.at;
  const bool atZero = std::fabs(at.northing) < kZero && std::fabs(at.easting) < kZero &&
                      std::fabs(at.elevation) < kZero;
  return atZero && point.description.view().find_first_not_of(' ') == std::string_view::npos;
}

}  // namespace tarvex
