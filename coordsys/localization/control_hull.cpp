#include "coordsys/localization/control_hull.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarvex {
namespace {

// Twice the area of a, b, c: above 0 for a turn to the left.
double Turn(const PlanePoint& a, const PlanePoint& b, const PlanePoint& c) {
  return (b.eastingM - a.eastingM) * (c.northingM - a.northingM) -
         (b.northingM - a.northingM) * (c.eastingM - a.eastingM);
}

double Distance(const PlanePoint& a, const PlanePoint& b) {
  return std::hypot(a.eastingM - b.eastingM, a.northingM - b.northingM);
}

double DistanceToSegment(const PlanePoint& p, const PlanePoint& a, const PlanePoint& b) {
  const double de = b.eastingM - a.eastingM;
  const double dn = b.northingM - a.northingM;
  const double square = de * de + dn * dn;
  if (square == 0.0) return Distance(p, a);
  const double along = (p.eastingM - a.eastingM) * de + (p.northingM - a.northingM) * dn;
  const double t = std::clamp(along / square, 0.0, 1.0);
  return Distance(p, {a.northingM + t * dn, a.eastingM + t * de});
}

// One side of the hull over points in order of easting.
template <typename Iterator>
void AppendSide(Iterator first, Iterator last, std::vector<PlanePoint>& hull) {
  const std::size_t start = hull.size();
  for (; first != last; ++first) {
    while (hull.size() >= start + 2 && Turn(hull[hull.size() - 2], hull.back(), *first) <= 0.0) {
      hull.pop_back();
    }
    hull.push_back(*first);
  }
  hull.pop_back();  // it begins the other side
}

}  // namespace

ControlHull::ControlHull(std::vector<PlanePoint> points) {
  std::sort(points.begin(), points.end(), [](const PlanePoint& a, const PlanePoint& b) {
    return a.eastingM != b.eastingM ? a.eastingM < b.eastingM : a.northingM < b.northingM;
  });
  points.erase(std::unique(points.begin(), points.end()), points.end());
  if (points.size() < 3) {
    corners_ = std::move(points);
    return;
  }
  AppendSide(points.begin(), points.end(), corners_);
  AppendSide(points.rbegin(), points.rend(), corners_);
}

double ControlHull::MetresOutside(const PlanePoint& point) const {
  if (corners_.empty()) return 0.0;
  bool inside = corners_.size() > 2;
  double nearest = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < corners_.size(); ++i) {
    const PlanePoint& a = corners_[i];
    const PlanePoint& b = corners_[(i + 1) % corners_.size()];
    inside = inside && Turn(a, b, point) >= 0.0;
    nearest = std::min(nearest, DistanceToSegment(point, a, b));
  }
  return inside ? 0.0 : nearest;
}

double ControlHull::ExtentM() const {
  double extent = 0.0;
  for (const PlanePoint& a : corners_) {
    for (const PlanePoint& b : corners_) extent = std::max(extent, Distance(a, b));
  }
  return extent;
}

}  // namespace tarvex
