// What every projection takes, before its family's own domain: positions within 90 degrees of
// latitude and 360 of longitude, plane points within 1e9 m.
#pragma once

#include <cmath>
#include <numbers>

#include "coordsys/projections/projection.h"

namespace tarvex {

inline constexpr double kFarthestLatitudeRad = std::numbers::pi / 2.0;
inline constexpr double kFarthestLongitudeRad = 2.0 * std::numbers::pi;
inline constexpr double kFarthestPlaneM = 1e9;

/// False for what is not a number.
inline bool OnEarth(LatLon position) noexcept {
  return std::fabs(position.latitudeRad) <= kFarthestLatitudeRad &&
         std::fabs(position.longitudeRad) <= kFarthestLongitudeRad;
}
inline bool OnPlane(PlanePoint point) noexcept {
  return std::fabs(point.northingM) <= kFarthestPlaneM &&
         std::fabs(point.eastingM) <= kFarthestPlaneM;
}

/// Why a pair of coordinates was refused.
inline ProjectionResult Refusal(double a, double b) noexcept {
  return std::isnan(a) || std::isnan(b) ? ProjectionResult::NotANumber
                                        : ProjectionResult::OutsideDomain;
}

}  // namespace tarvex
