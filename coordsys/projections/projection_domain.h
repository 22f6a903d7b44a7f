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

/// Of a sphere whose longitudes are stretched: beyond it lies the other side of the seam.
inline constexpr double kHalfTurn = std::numbers::pi * (1.0 + 1e-15);
/// How far from the central line an oblique cylinder reaches: sine of 71 degrees, and its atanh.
inline constexpr double kFarthestAcross = 0.95;
inline constexpr double kFarthestAcrossIsometric = 1.83178083;
/// How far from the centre an oblique stereographic plane reaches: 1 + cos of 165 degrees, and the
/// tangent of half of it with a little more.
inline constexpr double kFarthestDenominator = 0.034;
inline constexpr double kFarthestRadius = 7.61;

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
