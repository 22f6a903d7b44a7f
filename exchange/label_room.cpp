#include "exchange/label_room.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarvex {
namespace {

constexpr double kAscent = 0.8;  // of the font size
constexpr double kDescent = 0.2;

// True when a side of `a` separates the two boxes.
bool IsSeparated(const LabelBox& a, const LabelBox& b) {
  for (std::size_t side = 0; side < 2; ++side) {
    const auto& from = a.corners[side];
    const auto& to = a.corners[side + 1];
    const double nx = to.x - from.x;
    const double ny = to.y - from.y;
    const auto range = [nx, ny](const LabelBox& box) {
      double low = 1e300;
      double high = -1e300;
      for (const auto& corner : box.corners) {
        const double along = corner.x * nx + corner.y * ny;
        low = std::min(low, along);
        high = std::max(high, along);
      }
      return std::array<double, 2>{low, high};
    };
    const auto mine = range(a);
    const auto theirs = range(b);
    if (mine[1] <= theirs[0] || theirs[1] <= mine[0]) return true;
  }
  return false;
}

}  // namespace

LabelBox LabelBox::Of(double x, double y, double from, double width, double size, double rotation) {
  const double angle = rotation * std::numbers::pi / 180.0;
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  const auto corner = [&](double along, double down) {
    return Corner{x + along * cosine - down * sine, y + along * sine + down * cosine};
  };
  return {{corner(from, -kAscent * size), corner(from + width, -kAscent * size),
           corner(from + width, kDescent * size), corner(from, kDescent * size)}};
}

bool LabelBox::Meets(const LabelBox& other) const {
  return !IsSeparated(*this, other) && !IsSeparated(other, *this);
}

bool LabelBox::Inside(double width, double height) const {
  return std::all_of(corners.begin(), corners.end(), [&](const Corner& corner) {
    return corner.x >= 0.0 && corner.x <= width && corner.y >= 0.0 && corner.y <= height;
  });
}

bool LabelRoom::IsFree(const LabelBox& box) const {
  return std::none_of(taken_.begin(), taken_.end(),
                      [&box](const LabelBox& taken) { return taken.Meets(box); });
}

}  // namespace tarvex
