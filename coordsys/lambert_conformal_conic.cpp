#include "coordsys/lambert_conformal_conic.h"

#include "coordsys/auxiliary_latitude.h"
#include "coordsys/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kQuarter = std::numbers::pi / 2.0;
constexpr double kFarthestLatitude = kQuarter * 89.0 / 90.0;
constexpr double kSameParallel = 1e-10;
constexpr double kFlattestCone = 1e-6;

double LengthOfParallel(const EllipsoidConstants& c, double phi) {
  const double sin_phi = std::sin(phi);
  return std::cos(phi) / std::sqrt(1.0 - c.e2 * sin_phi * sin_phi);
}

// Radii are measured from the apex: r = r0 (1 + q), q = expm1(-n (psi - psi0)). The origin of psi0
// is the latitude of origin, or the first parallel when that is a pole (then `apex` is the origin
// of northings).
struct Kernel {
  EllipsoidConstants ellipsoid;
  double n = 0.0;
  double psi0 = 0.0;
  double r0_m = 0.0;
  double central_meridian_rad = 0.0;
  double false_easting_m = 0.0;
  double origin_northing_m = 0.0;  ///< northing where psi is psi0 on the central meridian
  SineSeries delta = {};

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept {
    const double phi = position.latitude_rad;
    if (n * phi < 0.0 && std::fabs(phi) > kFarthestLatitude) return ProjectionResult::OutsideDomain;
    const double lambda =
        std::remainder(position.longitude_rad - central_meridian_rad, 2.0 * std::numbers::pi);
    const double q =
        std::fabs(phi) >= kQuarter ? -1.0 : std::expm1(-n * (ellipsoid.Isometric(phi) - psi0));
    const double r = r0_m * (1.0 + q);
    const double theta = n * lambda;
    const double half = std::sin(theta / 2.0);
    point.easting_m = false_easting_m + r * std::sin(theta);
    point.northing_m = origin_northing_m - r0_m * q + 2.0 * r * half * half;
    return ProjectionResult::Done;
  }

  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept {
    const double x = point.easting_m - false_easting_m;
    const double y = point.northing_m - origin_northing_m;
    const double sign = n < 0.0 ? -1.0 : 1.0;
    const double theta = std::atan2(sign * x, sign * (r0_m - y));
    if (std::fabs(theta) > std::fabs(n) * std::numbers::pi * (1.0 + 1e-12)) {
      return ProjectionResult::OutsideDomain;  // the gap of the fan
    }
    const double w = (x * x + y * y - 2.0 * y * r0_m) / (r0_m * r0_m);
    if (w <= -1.0) {
      position = {sign * kQuarter, central_meridian_rad};
      return ProjectionResult::Done;
    }
    const double psi = psi0 - std::log1p(w) / (2.0 * n);
    const double sinh_psi = std::sinh(psi);
    const double cosh_psi = std::cosh(psi);
    const double chi = std::atan(sinh_psi);
    const double phi = chi + SumOf(delta, sinh_psi / cosh_psi, 1.0 / cosh_psi);
    if (n * phi < 0.0 && std::fabs(phi) > kFarthestLatitude + 1e-9) {
      return ProjectionResult::OutsideDomain;
    }
    position.latitude_rad = phi;
    position.longitude_rad =
        std::remainder(central_meridian_rad + theta / n, 2.0 * std::numbers::pi);
    return ProjectionResult::Done;
  }
};

// The cone of constant `n` with scale k on latitude `phi1`, its origin at `phi0`.
Kernel ConeOf(const ProjectionParameters& parameters, const EllipsoidConstants& c, double n,
              double phi1, double scale) {
  const double phi0 = parameters.latitude_of_origin_rad;
  const bool polar = std::fabs(phi0) >= kQuarter * (1.0 - 1e-12);
  const double psi1 = c.Isometric(phi1);
  const double radius1 = c.a * scale * LengthOfParallel(c, phi1) / n;
  Kernel kernel;
  kernel.ellipsoid = c;
  kernel.n = n;
  kernel.psi0 = polar ? psi1 : c.Isometric(phi0);
  kernel.r0_m = radius1 * std::exp(n * (psi1 - kernel.psi0));
  kernel.central_meridian_rad = parameters.central_meridian_rad;
  kernel.false_easting_m = parameters.false_easting_m;
  kernel.origin_northing_m = parameters.false_northing_m - (polar ? kernel.r0_m : 0.0);
  kernel.delta = ConformalToGeodetic(c.n);
  return kernel;
}

}  // namespace

MadeProjection MakeLambertConformalConic2SP(const ProjectionParameters& parameters) {
  const double phi0 = parameters.latitude_of_origin_rad;
  const double phi1 = parameters.parallel_1_rad;
  const double phi2 = parameters.parallel_2_or_azimuth_rad;
  if (!(std::fabs(phi1) < kFarthestLatitude && std::fabs(phi2) < kFarthestLatitude)) {
    return {nullptr, ProjectionFault::StandardParallels};
  }
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  double n = std::sin(phi1);
  if (std::fabs(phi1 - phi2) >= kSameParallel) {
    n = std::log(LengthOfParallel(c, phi1) / LengthOfParallel(c, phi2)) /
        (c.Isometric(phi2) - c.Isometric(phi1));
  }
  if (!(std::fabs(n) > kFlattestCone)) return {nullptr, ProjectionFault::StandardParallels};
  if (!(std::fabs(phi0) <= kQuarter) || (n * phi0 < 0.0 && std::fabs(phi0) > kFarthestLatitude)) {
    return {nullptr, ProjectionFault::LatitudeOfOrigin};
  }
  return MakeOf(ConeOf(parameters, c, n, phi1, 1.0));
}

MadeProjection MakeLambertConformalConic1SP(const ProjectionParameters& parameters) {
  const double phi0 = parameters.latitude_of_origin_rad;
  const double n = std::sin(phi0);
  if (!(std::fabs(phi0) < kFarthestLatitude && std::fabs(n) > kFlattestCone)) {
    return {nullptr, ProjectionFault::LatitudeOfOrigin};
  }
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  return MakeOf(ConeOf(parameters, c, n, phi0, parameters.scale_factor));
}

}  // namespace tarvex
