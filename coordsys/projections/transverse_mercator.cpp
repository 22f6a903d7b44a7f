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
  const Lanes k_re = 2.0 * cos2 * cosh2;
  const Lanes k_im = -2.0 * sin2 * sinh2;
  Complex<Lanes> u0;
  Complex<Lanes> u1;
#pragma GCC unroll 6
  for (int j = 5; j >= 0; --j) {
    const Complex<Lanes> u{
        k_re * u0.re - k_im * u0.im - u1.re + series[static_cast<std::size_t>(j)],
        k_im * u0.re + k_re * u0.im - u1.im};
    u1 = u0;
    u0 = u;
  }
  const Lanes s_re = sin2 * cosh2;
  const Lanes s_im = cos2 * sinh2;
  return {s_re * u0.re - s_im * u0.im, s_re * u0.im + s_im * u0.re};
}

struct Kernel {
  EllipsoidConstants ellipsoid;
  double central_meridian_rad = 0.0;
  double radius_m = 0.0;  ///< k0 times the rectifying radius
  double over_radius = 0.0;
  double origin_xi = 0.0;
  double false_easting_m = 0.0;
  double false_northing_m = 0.0;
  SineSeries alpha = {};
  SineSeries beta = {};

  // Everything comes from the conformal latitude chi and lambda by algebra: tanh eta' is v / length
  // with v = cos chi sin lambda, and q2 = length^2 - v^2 the square of cos chi cos lambda and sin
  // chi. Nothing needs chi at length 1.
  template <typename Points, typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    DirectionOf<Lanes> lambda;
    DirectionOf<Lanes> phi;
    Points::Toward(WrappedLongitude(position.longitude_rad - central_meridian_rad),
                   position.latitude_rad, lambda, phi);
    const DirectionOf<Lanes> chi = ellipsoid.ConformalOfAnyLength(phi);
    const Lanes length2 = chi.sin * chi.sin + chi.cos * chi.cos;
    const Lanes length = SquareRootOf(length2);
    const Lanes v = chi.cos * lambda.sin;
    const Lanes forth = chi.cos * lambda.cos;
    const Lanes q2 = chi.sin * chi.sin + forth * forth;
    const Lanes over_q2 = 1.0 / q2;
    const Lanes xi = AngleOf(chi.sin, forth);
    const Lanes eta = 0.5 * LogarithmOf((length + v) * (length + v) * over_q2);

    const Complex<Lanes> sum = SumOf(alpha, 2.0 * chi.sin * forth * over_q2,
                                     (forth - chi.sin) * (forth + chi.sin) * over_q2,
                                     2.0 * v * length * over_q2, (length2 + v * v) * over_q2);
    point.northing_m = false_northing_m + radius_m * (xi - origin_xi + sum.re);
    point.easting_m = false_easting_m + radius_m * (eta + sum.im);
    return Within(eta, kWidestEta) & Within(xi, kFarthestXi);
  }

  template <typename Points, typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    const Lanes xi = (point.northing_m - false_northing_m) * over_radius + origin_xi;
    const Lanes eta = (point.easting_m - false_easting_m) * over_radius;
    const LaneMask<Lanes> in_reach =
        Within(eta, kWidestEta + 0.01) & Within(xi, kFarthestXi + 0.01);
    const DirectionOf<Lanes> at = Toward(xi);
    const Lanes exp_eta = ExponentialOf(eta);
    const Lanes exp_2eta = exp_eta * exp_eta;
    const Lanes over_exp_eta = 1.0 / exp_eta;
    const Lanes over_exp_2eta = over_exp_eta * over_exp_eta;
    const Complex<Lanes> sum = SumOf(beta, at.Sin2(), at.Cos2(), 0.5 * (exp_2eta - over_exp_2eta),
                                     0.5 * (exp_2eta + over_exp_2eta));
    const Lanes eta_c = eta - sum.im;

    const DirectionOf<Lanes> xi_c = at.Turned(-sum.re);
    const Lanes exp_eta_c = exp_eta + exp_eta * SmallExpm1(-sum.im);
    const Lanes over_exp_eta_c = over_exp_eta + over_exp_eta * SmallExpm1(sum.im);
    const Lanes sinh_eta = 0.5 * (exp_eta_c - over_exp_eta_c);
    const Lanes forth2 = sinh_eta * sinh_eta + xi_c.cos * xi_c.cos;
    const Lanes forth = SquareRootOf(forth2);
    const Lanes norm2 = 1.0 / (1.0 + sinh_eta * sinh_eta);
    const Lanes sin_2chi = 2.0 * xi_c.sin * forth * norm2;
    const Lanes cos_2chi = (forth2 - xi_c.sin * xi_c.sin) * norm2;
    Lanes chi;
    Lanes lambda;
    Points::AnglesOf(DirectionOf<Lanes>{xi_c.sin, forth}, {sinh_eta, xi_c.cos}, chi, lambda);
    position.latitude_rad = chi + tarvex::SumOf(ellipsoid.delta, sin_2chi, cos_2chi);
    position.longitude_rad = WrappedLongitude(central_meridian_rad + lambda);
    return in_reach & Within(eta_c, kWidestEta + kClosing) &
           Within(xi - sum.re, kFarthestXi + kClosing);
  }

  // Karney's formula: the scale of the sphere's projection times that of the series.
  double PointScale(LatLon position) const noexcept {
    const Direction phi = tarvex::Toward(position.latitude_rad);
    const Direction chi = ellipsoid.Conformal(position.latitude_rad);
    const Direction lambda =
        tarvex::Toward(WrappedLongitude(position.longitude_rad - central_meridian_rad));
    const double forth = chi.cos * lambda.cos;
    const std::complex<double> zeta(std::atan2(chi.sin, forth), std::atanh(chi.cos * lambda.sin));
    std::complex<double> derivative = 1.0;
    for (std::size_t j = 0; j < alpha.size(); ++j) {
      const double twice = 2.0 * static_cast<double>(j + 1);
      derivative += twice * alpha[j] * std::cos(twice * zeta);
    }
    const double on_sphere = chi.cos / (phi.cos * std::hypot(chi.sin, forth));
    return radius_m / ellipsoid.a * std::abs(derivative) * on_sphere *
           std::sqrt(1.0 - ellipsoid.e2 * phi.sin * phi.sin);
  }
};

MadeProjection Make(const ProjectionParameters& parameters, bool takes_wgs84) {
  if (!(std::fabs(parameters.latitude_of_origin_rad) <= std::numbers::pi / 2.0)) {
    return {nullptr, ProjectionFault::LatitudeOfOrigin};
  }
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  Kernel kernel;
  kernel.ellipsoid = c;
  kernel.central_meridian_rad = parameters.central_meridian_rad;
  kernel.radius_m = parameters.scale_factor * c.rectifying_radius;
  kernel.over_radius = 1.0 / kernel.radius_m;
  const double phi0 = parameters.latitude_of_origin_rad;
  kernel.origin_xi =
      phi0 + tarvex::SumOf(GeodeticToRectifying(c.n), std::sin(2.0 * phi0), std::cos(2.0 * phi0));
  kernel.false_easting_m = parameters.false_easting_m;
  kernel.false_northing_m = parameters.false_northing_m;
  kernel.alpha = ConformalToRectifying(c.n);
  kernel.beta = RectifyingToConformal(c.n);
  return MakeOf(kernel, takes_wgs84);
}

}  // namespace

MadeProjection MakeTransverseMercator(const ProjectionParameters& parameters) {
  return Make(parameters, false);
}

MadeProjection MakeTransverseMercatorOfWgs84(const ProjectionParameters& parameters) {
  return Make(parameters, true);
}

}  // namespace tarvex
