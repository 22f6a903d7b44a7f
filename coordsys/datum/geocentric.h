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
    double north;     ///< proportional to the sine of the latitude
    double out;       ///< proportional to its cosine
    double height_m;  ///< above the ellipsoid
  };

  /// Earth-centred coordinates from the sines and cosines of latitude and longitude.
  Geocentric FromDirection(double sin_lat, double cos_lat, double sin_lon, double cos_lon,
                           double height_m) const noexcept {
    const double nu = a_ / std::sqrt(1.0 - e2_ * sin_lat * sin_lat);
    const double out = (nu + height_m) * cos_lat;
    return {out * cos_lon, out * sin_lon, (nu * (1.0 - e2_) + height_m) * sin_lat};
  }

  /// Bowring's step in the meridian plane at `p_m` from the axis and `z_m` from the equator.
  Meridian InMeridian(double p_m, double z_m) const noexcept {
    const double r2 = p_m * p_m + z_m * z_m;
    const double r = std::sqrt(r2);
    const double radius = b_ * (1.0 + 0.5 * e2_ * p_m * p_m / r2);
    double s = b_ * z_m * (r + ep2_ * radius);
    double c = a_ * p_m * r;
    const double unit = 1.0 / std::sqrt(s * s + c * c);
    s *= unit;
    c *= unit;
    const double north = z_m + ep2_ * b_ * s * s * s;
    const double out = p_m - e2_ * a_ * c * c * c;
    const double w = 1.0 / std::sqrt(north * north + out * out);
    const double sin_lat = north * w;
    const double height =
        p_m * out * w + z_m * sin_lat - a_ * std::sqrt(1.0 - e2_ * sin_lat * sin_lat);
    return {north, out, height};
  }

 private:
  double a_;    // semi-major axis, metres
  double b_;    // semi-minor axis, metres
  double e2_;   // first eccentricity squared
  double ep2_;  // second eccentricity squared
};

}  // namespace tarvex
