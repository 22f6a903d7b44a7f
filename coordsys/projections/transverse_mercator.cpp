#include "coordsys/projections/transverse_mercator.h"

#include <complex>

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kWidestEta = 1.25;
constexpr double kFarthestXi = std::numbers::pi * 110.0 / 180.0;
constexpr double kClosing = 1e-9;  // what an inverse may be over the edge that a forward kept

template <typename Lanes>
struct Complex {
  Lanes re = {};
  Lanes im = {};
};

// sum c_j sin(2 j (xi + i eta)), from the (hyperbolic) sine and cosine of 2 xi and 2 eta.
template <typename Lanes>
inline Complex<Lanes> SumOf(const SineSeries& series, Lanes sin2, Lanes cos2, Lanes sinh2,
                            Lanes cosh2) {
  const Lanes kRe = 2.0 * cos2 * cosh2;
  const Lanes kIm = -2.0 * sin2 * sinh2;
  Complex<Lanes> u0;
  Complex<Lanes> u1;
#pragma GCC unroll 6
  for (int j = 5; j >= 0; --j) {
    const Complex<Lanes> u{kRe * u0.re - kIm * u0.im - u1.re + series[static_cast<std::size_t>(j)],
                           kIm * u0.re + kRe * u0.im - u1.im};
    u1 = u0;
    u0 = u;
  }
  const Lanes sRe = sin2 * cosh2;
  const Lanes sIm = cos2 * sinh2;
  return {sRe * u0.re - sIm * u0.im, sRe * u0.im + sIm * u0.re};
}

struct Kernel {
  EllipsoidConstants ellipsoid;
  double centralMeridianRad = 0.0;
  double radiusM = 0.0;  ///< k0 times the rectifying radius
  double overRadius = 0.0;
  double originXi = 0.0;
  double falseEastingM = 0.0;
  double falseNorthingM = 0.0;
  SineSeries alpha = {};
  SineSeries beta = {};

  // Everything comes from the conformal latitude chi and lambda by algebra: tanh eta' is v / length
  // with v = cos chi sin lambda, and q2 = length^2 - v^2 the square of cos chi cos lambda and sin
  // chi. Nothing needs chi at length 1.
  template <typename Points, typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    DirectionOf<Lanes> lambda;
    DirectionOf<Lanes> phi;
    Points::Toward(WrappedLongitude(position.longitudeRad - centralMeridianRad),
                   position.latitudeRad, lambda, phi);
    const DirectionOf<Lanes> chi = ellipsoid.ConformalOfAnyLength(phi);
    const Lanes length2 = chi.sin * chi.sin + chi.cos * chi.cos;
    const Lanes length = SquareRootOf(length2);
    const Lanes v = chi.cos * lambda.sin;
    const Lanes forth = chi.cos * lambda.cos;
    const Lanes q2 = chi.sin * chi.sin + forth * forth;
    const Lanes overQ2 = 1.0 / q2;
    const Lanes xi = AngleOf(chi.sin, forth);
    const Lanes eta = 0.5 * LogarithmOf((length + v) * (length + v) * overQ2);

    const Complex<Lanes> sum =
        SumOf(alpha, 2.0 * chi.sin * forth * overQ2, (forth - chi.sin) * (forth + chi.sin) * overQ2,
              2.0 * v * length * overQ2, (length2 + v * v) * overQ2);
    point.northingM = falseNorthingM + radiusM * (xi - originXi + sum.re);
    point.eastingM = falseEastingM + radiusM * (eta + sum.im);
    return Within(eta, kWidestEta) & Within(xi, kFarthestXi);
  }

  template <typename Points, typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    const Lanes xi = (point.northingM - falseNorthingM) * overRadius + originXi;
    const Lanes eta = (point.eastingM - falseEastingM) * overRadius;
    const LaneMask<Lanes> inReach = Within(eta, kWidestEta + 0.01) & Within(xi, kFarthestXi + 0.01);
    const DirectionOf<Lanes> at = Toward(xi);
    const Lanes expEta = ExponentialOf(eta);
    const Lanes exp2eta = expEta * expEta;
    const Lanes overExpEta = 1.0 / expEta;
    const Lanes overExp2eta = overExpEta * overExpEta;
    const Complex<Lanes> sum = SumOf(beta, at.Sin2(), at.Cos2(), 0.5 * (exp2eta - overExp2eta),
                                     0.5 * (exp2eta + overExp2eta));
    const Lanes etaC = eta - sum.im;

    const DirectionOf<Lanes> xiC = at.Turned(-sum.re);
    const Lanes expEtaC = expEta + expEta * SmallExpm1(-sum.im);
    const Lanes overExpEtaC = overExpEta + overExpEta * SmallExpm1(sum.im);
    const Lanes sinhEta = 0.5 * (expEtaC - overExpEtaC);
    const Lanes forth2 = sinhEta * sinhEta + xiC.cos * xiC.cos;
    const Lanes forth = SquareRootOf(forth2);
    const Lanes norm2 = 1.0 / (1.0 + sinhEta * sinhEta);
    const Lanes sin2chi = 2.0 * xiC.sin * forth * norm2;
    const Lanes cos2chi = (forth2 - xiC.sin * xiC.sin) * norm2;
    Lanes chi;
    Lanes lambda;
    Points::AnglesOf(DirectionOf<Lanes>{xiC.sin, forth}, {sinhEta, xiC.cos}, chi, lambda);
    position.latitudeRad = chi + tarvex::SumOf(ellipsoid.delta, sin2chi, cos2chi);
    position.longitudeRad = WrappedLongitude(centralMeridianRad + lambda);
    return inReach & Within(etaC, kWidestEta + kClosing) &
           Within(xi - sum.re, kFarthestXi + kClosing);
  }

  // Karney's formula: the scale of the sphere's projection times that of the series.
  double PointScale(LatLon position) const noexcept {
    const Direction phi = tarvex::Toward(position.latitudeRad);
    const Direction chi = ellipsoid.Conformal(position.latitudeRad);
    const Direction lambda =
        tarvex::Toward(WrappedLongitude(position.longitudeRad - centralMeridianRad));
    const double forth = chi.cos * lambda.cos;
    const std::complex<double> zeta(std::atan2(chi.sin, forth), std::atanh(chi.cos * lambda.sin));
    std::complex<double> derivative = 1.0;
    for (std::size_t j = 0; j < alpha.size(); ++j) {
      const double twice = 2.0 * static_cast<double>(j + 1);
      derivative += twice * alpha[j] * std::cos(twice * zeta);
    }
    const double onSphere = chi.cos / (phi.cos * std::hypot(chi.sin, forth));
    return radiusM / ellipsoid.a * std::abs(derivative) * onSphere *
           std::sqrt(1.0 - ellipsoid.e2 * phi.sin * phi.sin);
  }
};

MadeProjection Make(const ProjectionParameters& parameters, bool takesWgs84) {
  if (!(std::fabs(parameters.latitudeOfOriginRad) <= std::numbers::pi / 2.0)) {
    return {nullptr, ProjectionFault::LatitudeOfOrigin};
  }
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  Kernel kernel;
  kernel.ellipsoid = c;
  kernel.centralMeridianRad = parameters.centralMeridianRad;
  kernel.radiusM = parameters.scaleFactor * c.rectifyingRadius;
  kernel.overRadius = 1.0 / kernel.radiusM;
  const double phi0 = parameters.latitudeOfOriginRad;
  kernel.originXi =
      phi0 + tarvex::SumOf(GeodeticToRectifying(c.n), std::sin(2.0 * phi0), std::cos(2.0 * phi0));
  kernel.falseEastingM = parameters.falseEastingM;
  kernel.falseNorthingM = parameters.falseNorthingM;
  kernel.alpha = ConformalToRectifying(c.n);
  kernel.beta = RectifyingToConformal(c.n);
  return MakeOf(kernel, takesWgs84);
}

}  // namespace

MadeProjection MakeTransverseMercator(const ProjectionParameters& parameters) {
  return Make(parameters, false);
}

MadeProjection MakeTransverseMercatorOfWgs84(const ProjectionParameters& parameters) {
  return Make(parameters, true);
}

}  // namespace tarvex
