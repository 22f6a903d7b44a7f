// The built-in ellipsoid table.
//
// The flattenings are stored as f itself, to the digits that every file ever made by the system was
// computed with; they differ from the defining ratios by at most 1.1e-12 (6e-6 m in northing).
#pragma once

namespace tarvex {

/// An ellipsoid of revolution.
struct Ellipsoid {
  double semiMajorM = 0.0;
  double flattening = 0.0;

  bool operator==(const Ellipsoid&) const = default;
};

/// The code of a record whose own semi-major axis and flattening hold.
inline constexpr int kUserEllipsoid = 999;

inline constexpr Ellipsoid kWgs84 = {6378137.0, 0.00335281066475};
inline constexpr Ellipsoid kGrs80 = {6378137.0, 0.00335281068118};
inline constexpr Ellipsoid kClarke1866 = {6378206.4, 0.00339007530409};

/// Writes the ellipsoid of `code`, 0 to 14, into the two fields. Code 999 writes nothing: the
/// fields keep what the definition gave. Any other code is WGS 84.
void LookUpEllipsoid(int code, double& semiMajorM, double& flattening);

}  // namespace tarvex
