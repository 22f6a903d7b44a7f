// A place in the plane of the grid, and what is asked of two of them: distance, azimuth.
//
// Azimuths are from north clockwise, radians.
#pragma once

#include <cmath>
#include <numbers>

namespace tarvex {

inline constexpr double kFullCircle = 2.0 * std::numbers::pi;

/// A position in the plane of the grid.
struct PlanPoint {
  double northing = 0.0;
  double easting = 0.0;

  bool operator==(const PlanPoint&) const = default;
};

inline bool IsFinite(const PlanPoint& point) {
  return std::isfinite(point.northing) && std::isfinite(point.easting);
}

inline double Distance(const PlanPoint& a, const PlanPoint& b) {
  return std::hypot(a.northing - b.northing, a.easting - b.easting);
}

/// -pi to pi; 0 for one and the same place.
inline double Azimuth(const PlanPoint& from, const PlanPoint& to) {
  return std::atan2(to.easting - from.easting, to.northing - from.northing);
}

/// The angle between -pi and pi.
inline double WrapAngle(double angle) {
  return std::remainder(angle, kFullCircle);
}

/// The angle between 0 and 2 pi.
inline double FullAngle(double angle) {
  const double wrapped = std::fmod(angle, kFullCircle);
  return wrapped < 0.0 ? wrapped + kFullCircle : wrapped;
}

}  // namespace tarvex
