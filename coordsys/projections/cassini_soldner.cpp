#include "coordsys/projections/cassini_soldner.h"

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kQuarter = std::numbers::pi / 2.0;
constexpr double kWidest = 0.1;
constexpr double kWidestLongitude = 0.2;
constexpr double kFarthestLatitude = kQuarter * 89.0 / 90.0;
constexpr int kMostPasses = 4;
constexpr double kClosed_m = 1e-9;

struct Kernel {
  EllipsoidConstants ellipsoid;
  SineSeries zeta = {};  ///< geodetic to rectifying
  SineSeries eta = {};   ///< rectifying to geodetic
  double origin_arc_m = 0.0;
  double central_meridian_rad = 0.0;
  double false_easting_m = 0.0;
  double false_northing_m = 0.0;

  // Easting, and northing from the equator, of a latitude given with its direction.
  PlanePoint Series(double phi_rad, Direction phi, double lambda) const noexcept {
    const double over_cos = 1.0 / phi.cos;
    const double tangent = phi.sin * over_cos;
    const double t = tangent * tangent;
    const double c = ellipsoid.ep2 * phi.cos * phi.cos;
    const double a1 = lambda * phi.cos;
    const double a2 = a1 * a1;
    const double nu = ellipsoid.RadiusOfPrimeVertical(phi.sin);
    const double mu = phi_rad + SumOf(zeta, phi.Sin2(), phi.Cos2());
    const double east = nu * a1 * (1.0 - t * a2 * (1.0 / 6.0 + (8.0 - t + 8.0 * c) * a2 / 120.0));
    const double north = ellipsoid.rectifying_radius * mu +
                         nu * tangent * a2 * (0.5 + (5.0 - t + 6.0 * c) * a2 / 24.0);
    return {north, east};
  }

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept {
    const double lambda = WrappedLongitude(position.longitude_rad - central_meridian_rad);
    const Direction phi = Direction::Of(position.latitude_rad);
    if (!(std::fabs(lambda * phi.cos) <= kWidest && std::fabs(lambda) <= kWidestLongitude &&
          std::fabs(position.latitude_rad) <= kFarthestLatitude)) {
      return ProjectionResult::OutsideDomain;
    }
    const PlanePoint at = Series(position.latitude_rad, phi, lambda);
    point.easting_m = false_easting_m + at.easting_m;
    point.northing_m = false_northing_m + at.northing_m - origin_arc_m;
    return ProjectionResult::Done;
  }

  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept {
    const double north = point.northing_m - false_northing_m + origin_arc_m;
    const double east = point.easting_m - false_easting_m;
    const double mu = north / ellipsoid.rectifying_radius;
    if (!(std::fabs(mu) < kFarthestLatitude + 0.1 &&
          std::fabs(east) < 1.1 * kWidest * ellipsoid.a)) {
      return ProjectionResult::OutsideDomain;
    }
    const Direction at = Direction::Of(mu);
    const double correction = SumOf(eta, at.Sin2(), at.Cos2());
    const Direction foot = at.Turned(correction);
    const double t = foot.sin * foot.sin / (foot.cos * foot.cos);
    const double d = east / ellipsoid.RadiusOfPrimeVertical(foot.sin);
    const double d2 = d * d;
    const double w2 = 1.0 - ellipsoid.e2 * foot.sin * foot.sin;
    const double drop =
        foot.sin / foot.cos * w2 / (1.0 - ellipsoid.e2) * d2 * (0.5 - (1.0 + 3.0 * t) * d2 / 24.0);
    double phi = mu + correction - drop;
    double lambda = d * (1.0 - t * d2 * (1.0 / 3.0 - (1.0 + 3.0 * t) * d2 / 15.0)) / foot.cos;
    if (!Improve(north, east, phi, lambda)) return ProjectionResult::OutsideDomain;
    position.latitude_rad = phi;
    position.longitude_rad = WrappedLongitude(central_meridian_rad + lambda);
    return ProjectionResult::Done;
  }

  // Moves the position until its series meets the point; false where it lies outside.
  bool Improve(double north, double east, double& phi, double& lambda) const noexcept {
    Direction at = Direction::Of(phi);
    for (int pass = 0; pass < kMostPasses; ++pass) {
      if (!(std::fabs(lambda * at.cos) <= kWidest * (1.0 + 1e-9) &&
            std::fabs(lambda) <= kWidestLongitude * (1.0 + 1e-9) &&
            std::fabs(phi) <= kFarthestLatitude + 1e-9)) {
        return false;
      }
      const PlanePoint reached = Series(phi, at, lambda);
      const double d_north = north - reached.northing_m;
      const double d_east = east - reached.easting_m;
      if (std::fabs(d_north) < kClosed_m && std::fabs(d_east) < kClosed_m) break;
      const double w2 = 1.0 - ellipsoid.e2 * at.sin * at.sin;
      const double over_nu = std::sqrt(w2) / ellipsoid.a;
      const double d_phi = d_north * over_nu * w2 / (1.0 - ellipsoid.e2);
      phi += d_phi;
      lambda += d_east * over_nu / at.cos;
      at = at.Turned(d_phi);
    }
    return true;
  }
};

}  // namespace

MadeProjection MakeCassiniSoldner(const ProjectionParameters& parameters) {
  const double phi0 = parameters.latitude_of_origin_rad;
  if (!(std::fabs(phi0) < kFarthestLatitude)) return {nullptr, ProjectionFault::LatitudeOfOrigin};
  Kernel kernel;
  kernel.ellipsoid = ConstantsOf(parameters.ellipsoid);
  kernel.zeta = GeodeticToRectifying(kernel.ellipsoid.n);
  kernel.eta = RectifyingToGeodetic(kernel.ellipsoid.n);
  const Direction origin = Direction::Of(phi0);
  kernel.origin_arc_m = kernel.ellipsoid.rectifying_radius *
                        (phi0 + SumOf(kernel.zeta, origin.Sin2(), origin.Cos2()));
  kernel.central_meridian_rad = parameters.central_meridian_rad;
  kernel.false_easting_m = parameters.false_easting_m;
  kernel.false_northing_m = parameters.false_northing_m;
  return MakeOf(kernel);
}

}  // namespace tarvex
