#include "coordsys/projections/lambert_conformal_conic.h"

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kQuarter = std::numbers::pi / 2.0;
constexpr double kFarthestLatitude = kQuarter * 89.0 / 90.0;
constexpr double kSameParallel = 1e-10;
constexpr double kFlattestCone = 1e-6;
constexpr double kPoleCosine = 1e-15;  // 6e-9 m from the pole

double LengthOfParallel(const EllipsoidConstants& c, double phi) {
  const double sin_phi = std::sin(phi);
  return std::cos(phi) / std::sqrt(1.0 - c.e2 * sin_phi * sin_phi);
}

// The constant of the cone through two parallels: how the logarithm of their lengths changes with
// the isometric latitude. Both differences are formed of the difference of the latitudes, so that
// parallels a hand's breadth apart lose nothing.
double ConeConstant(const EllipsoidConstants& c, double phi1, double phi2) {
  const double half = std::sin(0.5 * (phi2 - phi1));
  const double sine_step = 2.0 * half * std::cos(0.5 * (phi1 + phi2));
  const double square_step = std::sin(phi2 - phi1) * std::sin(phi1 + phi2);
  const double cos1 = std::cos(phi1);
  const double cos2 = std::cos(phi2);
  const double sines = std::sin(phi1) * std::sin(phi2);
  const double w2 = 1.0 - c.e2 * std::sin(phi2) * std::sin(phi2);
  const double lengths =
      0.5 * (std::log1p(square_step / (cos2 * cos2)) - std::log1p(c.e2 * square_step / w2));
  const double isometric = std::atanh(sine_step / (cos1 * cos2 + 2.0 * half * half)) -
                           c.e * std::atanh(c.e * sine_step / (1.0 - c.e2 * sines));
  return lengths / isometric;
}

struct Kernel {
  EllipsoidConstants ellipsoid;
  double n = 0.0;
  double over_n = 0.0;
  double sign = 1.0;           ///< of n: towards the pole of the cone
  double widest_theta = 0.0;   ///< beyond it lies the gap of the fan
  double apex_radius_m = 0.0;  ///< radius where psi is 0; negative with n
  double central_meridian_rad = 0.0;
  double false_easting_m = 0.0;
  double apex_northing_m = 0.0;

  template <typename Points, typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    const Lanes phi = position.latitude_rad;
    const Lanes lambda = WrappedLongitude(position.longitude_rad - central_meridian_rad);
    DirectionOf<Lanes> toward;
    DirectionOf<Lanes> theta;
    Points::Toward(phi, n * lambda, toward, theta);
    // The pole itself lies at the apex; on a flat cone the exponential gets there too slowly.
    const Lanes r = Select(AtMost(Absolute(toward.cos), kPoleCosine), InAll<Lanes>(0.0),
                           apex_radius_m * ExponentialOf(-n * ellipsoid.Isometric(toward)));
    point.easting_m = false_easting_m + r * theta.sin;
    point.northing_m = apex_northing_m - r * theta.cos;
    return AtMost(-kFarthestLatitude, sign * phi);
  }

  template <typename Points, typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    // A zero of either sign is +0, so that the apex of a southern cone has no direction either.
    const Lanes x = sign * (point.easting_m - false_easting_m) + 0.0;
    const Lanes y = sign * (apex_northing_m - point.northing_m) + 0.0;
    const Lanes square = (x * x + y * y) / (apex_radius_m * apex_radius_m);
    const Lanes exp_psi = ExponentialOf(-0.5 * over_n * LogarithmOf(square));
    const DirectionOf<Lanes> chi = ellipsoid.ConformalFromExpIsometric(exp_psi);
    Lanes phi;
    Lanes theta;
    ellipsoid.FromConformal<Points>(chi, {x, y}, phi, theta);
    position.latitude_rad = phi;
    position.longitude_rad = WrappedLongitude(central_meridian_rad + theta * over_n);
    const LaneMask<Lanes> in_fan = Within(theta, widest_theta);
    return in_fan & AtMost(-kFarthestLatitude - 1e-9, sign * phi);
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
  kernel.over_n = 1.0 / n;
  kernel.sign = n < 0.0 ? -1.0 : 1.0;
  kernel.widest_theta = std::fabs(n) * std::numbers::pi * (1.0 + 1e-12);
  kernel.apex_radius_m = radius1 * std::exp(n * psi1);
  const double origin_radius =
      polar ? 0.0 : kernel.apex_radius_m * std::exp(-n * c.Isometric(phi0));
  kernel.central_meridian_rad = parameters.central_meridian_rad;
  kernel.false_easting_m = parameters.false_easting_m;
  kernel.apex_northing_m = parameters.false_northing_m + origin_radius;
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
  const bool same = std::fabs(phi1 - phi2) < kSameParallel;
  const double n = same ? std::sin(phi1) : ConeConstant(c, phi1, phi2);
  if (!(std::fabs(n) > kFlattestCone)) return {nullptr, ProjectionFault::StandardParallels};
  if (!(std::fabs(phi0) <= kQuarter) || (n * phi0 < 0.0 && std::fabs(phi0) > kFarthestLatitude)) {
    return {nullptr, ProjectionFault::LatitudeOfOrigin};
  }
  const double scale = parameters.scale_factor == 0.0 ? 1.0 : parameters.scale_factor;
  if (!(scale > 0.5 && scale < 2.0)) return {nullptr, ProjectionFault::ScaleFactor};
  return MakeOf(ConeOf(parameters, c, n, phi1, scale));
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
