// Latitudes that the projections compute through: isometric psi, conformal chi, rectifying mu.
//
// Between them run sine series in the third flattening n, here to n^6: on every ellipsoid of the
// earth they are good to 1e-17 rad. Source: Karney, "Transverse Mercator with an accuracy of a few
// nanometers", J. Geod. 85 (2011), and "On auxiliary latitudes", Survey Review 56 (2024).
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "coordsys/ellipsoids.h"
#include "coordsys/projections/lanes.h"

namespace tarvex {

/// Coefficients c1 to c6 of sum c_j sin(2 j x).
using SineSeries = std::array<double, 6>;

/// The sum of the series, from the sine and cosine of 2x (Clenshaw).
template <typename T>
inline T SumOf(const SineSeries& series, T sin2x, T cos2x) {
  const T k = 2.0 * cos2x;
  T u0 = {};
  T u1 = {};
#pragma GCC unroll 6
  for (int j = 5; j >= 0; --j) {
    const T u = k * u0 - u1 + series[static_cast<std::size_t>(j)];
    u1 = u0;
    u0 = u;
  }
  return u0 * sin2x;
}

/// exp(w) - 1 for |w| below 0.01 to the last bit of exp(w).
template <typename T>
inline T SmallExpm1(T w) {
  return w + w * w *
                 (1.0 / 2.0 +
                  w * (1.0 / 6.0 + w * (1.0 / 24.0 + w * (1.0 / 120.0 + w * (1.0 / 720.0)))));
}

/// Sine and cosine of an angle, as a value of their own.
template <typename T>
struct DirectionOf {
  T sin = {};
  T cos = {};

  T Sin2() const { return 2.0 * sin * cos; }
  T Cos2() const { return (cos - sin) * (cos + sin); }

  /// Turned by a small angle, below 0.01 rad, to the last bit.
  DirectionOf Turned(T smallRad) const {
    const T d2 = smallRad * smallRad;
    const T sinD =
        smallRad - smallRad * d2 * (1.0 / 6.0 - d2 * (1.0 / 120.0 - d2 * (1.0 / 5040.0)));
    const T cosDLess1 = -d2 * (1.0 / 2.0 - d2 * (1.0 / 24.0 - d2 * (1.0 / 720.0)));
    return {sin + (cos * sinD + sin * cosDLess1), cos + (cos * cosDLess1 - sin * sinD)};
  }
};

using Direction = DirectionOf<double>;

inline Direction Toward(double angleRad) {
  return {std::sin(angleRad), std::cos(angleRad)};
}
template <typename Lanes>
inline DirectionOf<Lanes> Toward(Lanes angleRad) {
  const SineCosine<Lanes> both = SineCosineOf(angleRad);
  return {both.sin, both.cos};
}

/// How a kernel takes its lanes: a point in each of them, or one point in all. With one point, two
/// angles share the lanes of one computation; every lane gives the same bits either way.
struct PointInEach {
  template <typename Lanes>
  static void Toward(Lanes a, Lanes b, DirectionOf<Lanes>& towardA, DirectionOf<Lanes>& towardB) {
    towardA = tarvex::Toward(a);
    towardB = tarvex::Toward(b);
  }
  template <typename Lanes>
  static void AnglesOf(DirectionOf<Lanes> a, DirectionOf<Lanes> b, Lanes& angleA, Lanes& angleB) {
    angleA = AngleOf(a.sin, a.cos);
    angleB = AngleOf(b.sin, b.cos);
  }
};

struct OnePoint {
  using Lanes = TwoLanes;
  static void Toward(Lanes a, Lanes b, DirectionOf<Lanes>& towardA, DirectionOf<Lanes>& towardB) {
    const SineCosine<Lanes> both = SineCosineOf(Lanes{a[0], b[0]});
    towardA = {InAll<Lanes>(both.sin[0]), InAll<Lanes>(both.cos[0])};
    towardB = {InAll<Lanes>(both.sin[1]), InAll<Lanes>(both.cos[1])};
  }
  static void AnglesOf(DirectionOf<Lanes> a, DirectionOf<Lanes> b, Lanes& angleA, Lanes& angleB) {
    const Lanes both = AngleOf(Lanes{a.sin[0], b.sin[0]}, Lanes{a.cos[0], b.cos[0]});
    angleA = InAll<Lanes>(both[0]);
    angleB = InAll<Lanes>(both[1]);
  }
};

/// An angle brought between -180 and +180 degrees from a few turns away.
template <typename T>
inline T WrappedLongitude(T longitudeRad) {
  constexpr double kTurn = 2.0 * std::numbers::pi;
  return longitudeRad - ((longitudeRad * (1.0 / kTurn) + kRounder) - kRounder) * kTurn;
}

SineSeries ConformalToRectifying(double n);
SineSeries RectifyingToConformal(double n);  ///< subtracted from the rectifying latitude
SineSeries ConformalToGeodetic(double n);
SineSeries GeodeticToRectifying(double n);
SineSeries RectifyingToGeodetic(double n);

/// Constants of an ellipsoid, named as in the sources, and the latitudes on it.
struct EllipsoidConstants {
  double a = 0.0;    ///< semi-major axis, metres
  double f = 0.0;    ///< flattening
  double e2 = 0.0;   ///< first eccentricity squared
  double e = 0.0;    ///< first eccentricity
  double ep2 = 0.0;  ///< second eccentricity squared
  double n = 0.0;    ///< third flattening
  double rectifyingRadius = 0.0;
  SineSeries delta = {};  ///< conformal to geodetic

  double RadiusOfPrimeVertical(double sinPhi) const {
    return a / std::sqrt(1.0 - e2 * sinPhi * sinPhi);
  }
  double RadiusOfMeridian(double sinPhi) const {
    const double w2 = 1.0 - e2 * sinPhi * sinPhi;
    return a * (1.0 - e2) / (w2 * std::sqrt(w2));
  }

  /// e atanh(e sin phi): what the ellipsoid takes off the isometric latitude of the sphere.
  template <typename T>
  T EccentricPart(T sinPhi) const {
    const T z = e2 * sinPhi * sinPhi;
    const T w = z * z;
    return e2 * sinPhi *
           ((1.0 + z * (1.0 / 3.0)) + w * ((1.0 / 5.0 + z * (1.0 / 7.0)) +
                                           w * (1.0 / 9.0 + z * (1.0 / 11.0) + w * (1.0 / 13.0))));
  }

  /// Isometric latitude; its hyperbolic sine is the tangent of the conformal latitude.
  template <typename Lanes>
  Lanes Isometric(DirectionOf<Lanes> phi) const {
    const Lanes sphere = LogarithmOf((1.0 + Absolute(phi.sin)) / phi.cos);
    return WithSignOf(sphere, phi.sin) - EccentricPart(phi.sin);
  }
  double Isometric(double phiRad) const { return Isometric(Toward(InAll<TwoLanes>(phiRad)))[0]; }

  /// The conformal latitude of a geodetic one, of a length that is not 1.
  template <typename Lanes>
  DirectionOf<Lanes> ConformalOfAnyLength(DirectionOf<Lanes> phi) const {
    const Lanes w = EccentricPart(phi.sin);
    const Lanes w2 = w * w;
    const Lanes sinhW = w * (1.0 + w2 * (1.0 / 6.0 + w2 * (1.0 / 120.0)));
    const Lanes coshLess1 = w2 * (0.5 + w2 * (1.0 / 24.0 + w2 * (1.0 / 720.0)));
    return {phi.sin + (phi.sin * coshLess1 - sinhW), phi.cos};
  }

  /// The conformal latitude of a geodetic one.
  template <typename Lanes>
  DirectionOf<Lanes> Conformal(DirectionOf<Lanes> phi) const {
    const DirectionOf<Lanes> chi = ConformalOfAnyLength(phi);
    const Lanes norm = 1.0 / SquareRootOf(chi.sin * chi.sin + chi.cos * chi.cos);
    return {chi.sin * norm, chi.cos * norm};
  }
  Direction Conformal(double phiRad) const {
    const DirectionOf<TwoLanes> chi = Conformal(Toward(InAll<TwoLanes>(phiRad)));
    return {chi.sin[0], chi.cos[0]};
  }

  /// The conformal latitude whose isometric latitude is the logarithm of `expPsi`; beyond 1e16 and
  /// below 1e-16 it is a pole.
  template <typename Lanes>
  DirectionOf<Lanes> ConformalFromExpIsometric(Lanes expPsi) const {
    expPsi = Clamped(expPsi, 1e-16, 1e16);
    const Lanes square = expPsi * expPsi;
    const Lanes norm = 1.0 / (square + 1.0);
    return {(square - 1.0) * norm, 2.0 * expPsi * norm};
  }

  /// The geodetic latitude of a conformal one, and the angle of another direction.
  template <typename Points, typename Lanes>
  void FromConformal(DirectionOf<Lanes> chi, DirectionOf<Lanes> other, Lanes& phi,
                     Lanes& angle) const {
    Points::AnglesOf(chi, other, phi, angle);
    phi += SumOf(delta, chi.Sin2(), chi.Cos2());
  }
};

/// False for anything that is no ellipsoid of the earth: an axis outside 6,300 to 6,450 km or a
/// flattening outside 1/1000 to 1/150.
bool IsEarthEllipsoid(const Ellipsoid& ellipsoid);

EllipsoidConstants ConstantsOf(const Ellipsoid& ellipsoid);

}  // namespace tarvex
