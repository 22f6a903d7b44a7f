#include "coordsys/transverse_mercator.h"

#include "coordsys/auxiliary_latitude.h"
#include "coordsys/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kWidestEta = 1.25;
constexpr double kFarthestXi = std::numbers::pi * 110.0 / 180.0;
constexpr double kClosing = 1e-9;  // what an inverse may be over the edge that a forward kept

struct Complex {
  double re = 0.0;
  double im = 0.0;
};

// sum c_j sin(2 j (xi + i eta)), from the sine and cosine of 2 xi and the same of 2 i eta.
Complex SumOf(const SineSeries& series, double sin2, double cos2, double sinh2, double cosh2) {
  const double k_re = 2.0 * cos2 * cosh2;
  const double k_im = -2.0 * sin2 * sinh2;
  Complex u0;
  Complex u1;
  for (int j = 5; j >= 0; --j) {
    const Complex u{k_re * u0.re - k_im * u0.im - u1.re + series[static_cast<std::size_t>(j)],
                    k_im * u0.re + k_re * u0.im - u1.im};
    u1 = u0;
    u0 = u;
  }
  const double s_re = sin2 * cosh2;
  const double s_im = cos2 * sinh2;
  return {s_re * u0.re - s_im * u0.im, s_re * u0.im + s_im * u0.re};
}

struct Kernel {
  double e = 0.0;
  double central_meridian_rad = 0.0;
  double radius_m = 0.0;  ///< k0 times the rectifying radius
  double origin_xi = 0.0;
  double false_easting_m = 0.0;
  double false_northing_m = 0.0;
  SineSeries alpha = {};
  SineSeries beta = {};
  SineSeries delta = {};

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept {
    const double lambda =
        std::remainder(position.longitude_rad - central_meridian_rad, 2.0 * std::numbers::pi);
    const double tau = std::tan(position.latitude_rad);
    const double sigma = std::sinh(e * std::atanh(e * std::sin(position.latitude_rad)));
    const double tan_chi =
        tau * std::sqrt(1.0 + sigma * sigma) - sigma * std::sqrt(1.0 + tau * tau);
    const double cos_lambda = std::cos(lambda);
    const double q = std::hypot(tan_chi, cos_lambda);
    const double u = std::sin(lambda) / q;  // sinh eta'
    const double xi = std::atan2(tan_chi, cos_lambda);
    const double eta = std::asinh(u);
    if (!(std::fabs(eta) <= kWidestEta && std::fabs(xi) <= kFarthestXi)) {
      return ProjectionResult::OutsideDomain;
    }
    const double sin_xi = tan_chi / q;
    const double cos_xi = cos_lambda / q;
    const Complex sum = SumOf(alpha, 2.0 * sin_xi * cos_xi, (cos_xi - sin_xi) * (cos_xi + sin_xi),
                              2.0 * u * std::sqrt(1.0 + u * u), 1.0 + 2.0 * u * u);
    point.northing_m = false_northing_m + radius_m * (xi - origin_xi + sum.re);
    point.easting_m = false_easting_m + radius_m * (eta + sum.im);
    return ProjectionResult::Done;
  }

  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept {
    const double xi = (point.northing_m - false_northing_m) / radius_m + origin_xi;
    const double eta = (point.easting_m - false_easting_m) / radius_m;
    if (!(std::fabs(eta) <= kWidestEta + 0.1 && std::fabs(xi) <= kFarthestXi + 0.1)) {
      return ProjectionResult::OutsideDomain;
    }
    const Complex sum = SumOf(beta, std::sin(2.0 * xi), std::cos(2.0 * xi), std::sinh(2.0 * eta),
                              std::cosh(2.0 * eta));
    const double xi_c = xi - sum.re;
    const double eta_c = eta - sum.im;
    if (!(std::fabs(eta_c) <= kWidestEta + kClosing && std::fabs(xi_c) <= kFarthestXi + kClosing)) {
      return ProjectionResult::OutsideDomain;
    }
    const double sinh_eta = std::sinh(eta_c);
    const double cos_xi = std::cos(xi_c);
    const double sin_xi = std::sin(xi_c);
    const double cos_chi_cosh = std::hypot(sinh_eta, cos_xi);
    const double cosh_eta = std::sqrt(1.0 + sinh_eta * sinh_eta);
    const double chi = std::atan2(sin_xi, cos_chi_cosh);
    position.latitude_rad = chi + tarvex::SumOf(delta, sin_xi / cosh_eta, cos_chi_cosh / cosh_eta);
    position.longitude_rad =
        std::remainder(central_meridian_rad + std::atan2(sinh_eta, cos_xi), 2.0 * std::numbers::pi);
    return ProjectionResult::Done;
  }
};

}  // namespace

MadeProjection MakeTransverseMercator(const ProjectionParameters& parameters) {
  if (!(std::fabs(parameters.latitude_of_origin_rad) <= std::numbers::pi / 2.0)) {
    return {nullptr, ProjectionFault::LatitudeOfOrigin};
  }
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  Kernel kernel;
  kernel.e = c.e;
  kernel.central_meridian_rad = parameters.central_meridian_rad;
  kernel.radius_m = parameters.scale_factor * c.rectifying_radius;
  const double phi0 = parameters.latitude_of_origin_rad;
  kernel.origin_xi = phi0 + SumOf(GeodeticToRectifying(c.n), std::sin(phi0), std::cos(phi0));
  kernel.false_easting_m = parameters.false_easting_m;
  kernel.false_northing_m = parameters.false_northing_m;
  kernel.alpha = ConformalToRectifying(c.n);
  kernel.beta = RectifyingToConformal(c.n);
  kernel.delta = ConformalToGeodetic(c.n);
  return MakeOf(kernel);
}

}  // namespace tarvex
