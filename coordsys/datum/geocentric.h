// Geodetic positions and earth-centred cartesian coordinates of one ellipsoid.
//
// Radians (north and east positive) and metres; longitude comes back in -pi..pi. The way back is
// one step of Bowring's formula from a start that uses the geocentric radius at the point's own
// latitude: no iteration, and nothing special at the poles. Against 80-bit iteration its position
// is within 6e-9 m for heights of -11 to +100 km and 3e-7 m up to 20,000 km; within 50 km of the
// earth's centre it has no meaning.
// Source: B. R. Bowring, Survey Review 23 (1976), with the start of Survey Review 28 (1985).
#pragma once

#include <cmath>

#include "coordsys/coordinates.h"
#include "coordsys/ellipsoids.h"

namespace tarvex {

/// The constants of an ellipsoid that both directions need.
class GeocentricFrame {
 public:
  explicit GeocentricFrame(const Ellipsoid& ellipsoid) noexcept;

  Geocentric ToGeocentric(const Geodetic& position) const noexcept;
  Geodetic ToGeodetic(const Geocentric& point) const noexcept;

  /// A direction of the normal given by its tangent and the plane's distance, as the kernels of
  /// datum shifts pass it on: the latitude is atan2(north, out).
  struct Meridian {
    double north;    ///< proportional to the sine of the latitude
    double out;      ///< proportional to its cosine
    double heightM;  ///< above the ellipsoid
  };

  /// Earth-centred coordinates from the sines and cosines of latitude and longitude.
  Geocentric FromDirection(double sinLat, double cosLat, double sinLon, double cosLon,
                           double heightM) const noexcept {
    const double nu = a_ / std::sqrt(1.0 - e2_ * sinLat * sinLat);
    const double out = (nu + heightM) * cosLat;
    return {out * cosLon, out * sinLon, (nu * (1.0 - e2_) + heightM) * sinLat};
  }

  /// Bowring's step in the meridian plane at the square root of `p2` from the axis and `zM` from
  /// the equator.
  Meridian InMeridian(double p2, double zM) const noexcept {
    const double pM = std::sqrt(p2);
    const double r2 = p2 + zM * zM;
    const double r = std::sqrt(r2);
    const double radius = b_ * (1.0 + 0.5 * e2_ * p2 / r2);
    double s = b_ * zM * (r + ep2_ * radius);
    double c = a_ * pM * r;
    const double unit = 1.0 / std::sqrt(s * s + c * c);
    s *= unit;
    c *= unit;
    const double north = zM + ep2_ * b_ * s * s * s;
    const double out = pM - e2_ * a_ * c * c * c;
    const double w = 1.0 / std::sqrt(north * north + out * out);
    const double sinLat = north * w;
    const double height = pM * out * w + zM * sinLat - a_ * std::sqrt(1.0 - e2_ * sinLat * sinLat);
    return {north, out, height};
  }

 private:
  double a_;    // semi-major axis, metres
  double b_;    // semi-minor axis, metres
  double e2_;   // first eccentricity squared
  double ep2_;  // second eccentricity squared
};

}  // namespace tarvex
