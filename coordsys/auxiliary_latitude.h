// Latitudes that the projections compute through: isometric psi, conformal chi, rectifying mu.
//
// Between them run sine series in the third flattening n, here to n^6: on every ellipsoid of the
// earth they are good to 1e-17 rad. Source: Karney, "Transverse Mercator with an accuracy of a few
// nanometers", J. Geod. 85 (2011), and "On auxiliary latitudes", Survey Review 56 (2024).
#pragma once

#include <array>
#include <cmath>

#include "coordsys/ellipsoids.h"

namespace tarvex {

/// Coefficients c1 to c6 of sum c_j sin(2 j x).
using SineSeries = std::array<double, 6>;

/// The sum of the series, from the sine and cosine of x (Clenshaw).
inline double SumOf(const SineSeries& series, double sin_x, double cos_x) {
  const double k = 2.0 * (cos_x - sin_x) * (cos_x + sin_x);  // 2 cos 2x
  double u0 = 0.0;
  double u1 = 0.0;
  for (int j = 5; j >= 0; --j) {
    const double u = k * u0 - u1 + series[static_cast<std::size_t>(j)];
    u1 = u0;
    u0 = u;
  }
  return u0 * 2.0 * sin_x * cos_x;
}

/// Constants of an ellipsoid, named as in the sources.
struct EllipsoidConstants {
  double a = 0.0;    ///< semi-major axis, metres
  double f = 0.0;    ///< flattening
  double e2 = 0.0;   ///< first eccentricity squared
  double e = 0.0;    ///< first eccentricity
  double ep2 = 0.0;  ///< second eccentricity squared
  double n = 0.0;    ///< third flattening
  double rectifying_radius = 0.0;

  double RadiusOfPrimeVertical(double sin_phi) const {
    return a / std::sqrt(1.0 - e2 * sin_phi * sin_phi);
  }
  double RadiusOfMeridian(double sin_phi) const {
    const double w2 = 1.0 - e2 * sin_phi * sin_phi;
    return a * (1.0 - e2) / (w2 * std::sqrt(w2));
  }
  /// Isometric latitude; sinh of it is the tangent of the conformal latitude.
  double Isometric(double phi) const {
    return std::asinh(std::tan(phi)) - e * std::atanh(e * std::sin(phi));
  }
};

/// False for anything that is no ellipsoid of the earth: an axis outside 6,300 to 6,450 km or a
/// flattening outside 1/1000 to 1/150.
bool IsEarthEllipsoid(const Ellipsoid& ellipsoid);

EllipsoidConstants ConstantsOf(const Ellipsoid& ellipsoid);

SineSeries ConformalToRectifying(double n);
SineSeries RectifyingToConformal(double n);  ///< subtracted from the rectifying latitude
SineSeries ConformalToGeodetic(double n);
SineSeries GeodeticToRectifying(double n);
SineSeries RectifyingToGeodetic(double n);

}  // namespace tarvex
