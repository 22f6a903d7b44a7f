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
#include "coordsys/projections/elementary.h"
#include "coordsys/projections/lanes.h"

namespace tarvex {

/// Coefficients c1 to c6 of sum c_j sin(2 j x).
using SineSeries = std::array<double, 6>;

/// The same sum as sin 2x times a polynomial in cos 2x.
class SinePolynomial {
 public:
  SinePolynomial() = default;
  explicit SinePolynomial(const SineSeries& c)
      : p_{c[0] - c[2] + c[4],
           2.0 * c[1] - 4.0 * c[3] + 6.0 * c[5],
           4.0 * c[2] - 12.0 * c[4],
           8.0 * c[3] - 32.0 * c[5],
           16.0 * c[4],
           32.0 * c[5]} {}

  const SineSeries& coefficients() const { return p_; }

  template <typename T>
  T Sum(T sin2x, T cos2x) const {
    const T square = cos2x * cos2x;
    return sin2x * ((p_[0] + p_[1] * cos2x) +
                    square * ((p_[2] + p_[3] * cos2x) + square * (p_[4] + p_[5] * cos2x)));
  }

 private:
  SineSeries p_ = {};
};

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

template <typename Lanes>
inline DirectionOf<Lanes> Toward(Lanes angleRad) {
  const SineCosine<Lanes> both = SineCosineOf(angleRad);
  return {both.sin, both.cos};
}

/// Two directions at once: those of a single point share the lanes of one computation.
template <typename Lanes>
inline void Toward(Lanes a, Lanes b, DirectionOf<Lanes>& towardA, DirectionOf<Lanes>& towardB) {
  if constexpr (kLanes<Lanes> == 1) {
    const SineCosine<TwoLanes> both = SineCosineOf(TwoLanes{a, b});
    towardA = {both.sin[0], both.cos[0]};
    towardB = {both.sin[1], both.cos[1]};
  } else {
    towardA = Toward(a);
    towardB = Toward(b);
  }
}

/// Two angles at once, of directions of length 1.
template <typename Lanes>
inline void AnglesOf(DirectionOf<Lanes> a, DirectionOf<Lanes> b, Lanes& angleA, Lanes& angleB) {
  if constexpr (kLanes<Lanes> == 1) {
    const TwoLanes both = AngleOf(TwoLanes{a.sin, b.sin}, TwoLanes{a.cos, b.cos});
    angleA = both[0];
    angleB = both[1];
  } else {
    angleA = AngleOf(a.sin, a.cos);
    angleB = AngleOf(b.sin, b.cos);
  }
}

/// What a direction of this length is multiplied with to be of length 1; nothing stays nothing.
template <typename Lanes>
inline Lanes OverLength(Lanes length) {
  constexpr double kNothing = 1e-150;
  return 1.0 / GreaterOf(length, InAll<Lanes>(kNothing));
}

/// An angle brought between -180 and +180 degrees from a few turns away. Most are there already,
/// and nothing then waits for the arithmetic.
template <typename Lanes>
inline Lanes WrappedLongitude(Lanes longitudeRad) {
  constexpr double kTurn = 2.0 * std::numbers::pi;
  const LaneMask<Lanes> outside = ~Within(longitudeRad, std::numbers::pi);
  if (!AnyOf<Lanes>(outside)) return longitudeRad;
  const Lanes turns = (longitudeRad * (1.0 / kTurn) + kRounder) - kRounder;
  return Select(outside, longitudeRad - turns * kTurn, longitudeRad);
}

/// Coefficients of the powers 0 to 7.
using PowerSeries = std::array<double, 8>;

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
  SinePolynomial delta;        ///< conformal to geodetic
  PowerSeries conformal = {};  ///< powers of sin^2 phi from the geodetic sine to the conformal
  std::array<double, 7> eccentric = {};  ///< powers of e2 over 1, 3, 5...

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
    const auto& c = eccentric;
    const T z = sinPhi * sinPhi;
    const T w = z * z;
    return sinPhi *
           ((c[0] + z * c[1]) + w * ((c[2] + z * c[3]) + w * ((c[4] + z * c[5]) + w * c[6])));
  }

  /// Isometric latitude; its hyperbolic sine is the tangent of the conformal latitude.
  template <typename Lanes>
  Lanes Isometric(DirectionOf<Lanes> phi) const {
    const Lanes sphere = LogarithmOf((1.0 + Absolute(phi.sin)) / phi.cos);
    return WithSignOf(sphere, phi.sin) - EccentricPart(phi.sin);
  }
  double Isometric(double phiRad) const { return Isometric(Toward(phiRad)); }

  /// The conformal latitude of a geodetic one, of a length that is not 1.
  template <typename Lanes>
  DirectionOf<Lanes> ConformalOfAnyLength(DirectionOf<Lanes> phi) const {
    const auto& c = conformal;
    const Lanes z = phi.sin * phi.sin;
    const Lanes w = z * z;
    const Lanes low = (c[0] + z * c[1]) + w * (c[2] + z * c[3]);
    const Lanes high = (c[4] + z * c[5]) + w * (c[6] + z * c[7]);
    return {phi.sin + phi.sin * (low + w * w * high), phi.cos};
  }

  /// The conformal latitude of a geodetic one.
  template <typename Lanes>
  DirectionOf<Lanes> Conformal(DirectionOf<Lanes> phi) const {
    const DirectionOf<Lanes> chi = ConformalOfAnyLength(phi);
    const Lanes norm = 1.0 / SquareRootOf(chi.sin * chi.sin + chi.cos * chi.cos);
    return {chi.sin * norm, chi.cos * norm};
  }
  Direction Conformal(double phiRad) const { return Conformal(Toward(phiRad)); }

  /// The conformal latitude of an isometric one; beyond 37 it is a pole.
  template <typename Lanes>
  DirectionOf<Lanes> ConformalFromIsometric(Lanes psi) const {
    const Lanes expPsi = ExponentialOf(Clamped(psi, -37.0, 37.0));
    const Lanes square = expPsi * expPsi;
    const Lanes norm = 1.0 / (square + 1.0);
    return {(square - 1.0) * norm, 2.0 * expPsi * norm};
  }

  /// The geodetic latitude of a conformal one, and the angle of another direction of length 1.
  template <typename Lanes>
  void FromConformal(DirectionOf<Lanes> chi, DirectionOf<Lanes> other, Lanes& phi,
                     Lanes& angle) const {
    AnglesOf(chi, other, phi, angle);
    phi += delta.Sum(chi.Sin2(), chi.Cos2());
  }
};

/// False for anything that is no ellipsoid of the earth: an axis outside 6,300 to 6,450 km or a
/// flattening outside 1/1000 to 1/150.
bool IsEarthEllipsoid(const Ellipsoid& ellipsoid);

EllipsoidConstants ConstantsOf(const Ellipsoid& ellipsoid);

}  // namespace tarvex
