#include "coordsys/projections/oblique_stereographic.h"

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kFarthestOrigin = std::numbers::pi / 2.0 * 89.0 / 90.0;
constexpr double kFarthestDenominator = 0.034;  // 1 + cos of 165 degrees
constexpr double kFarthestRadius = 7.61;        // tan of half of it, 82.5 degrees and a little

struct Kernel {
  EllipsoidConstants ellipsoid;
  double c = 1.0;  ///< exponent of the sphere
  double over_c = 1.0;
  double k = 0.0;           ///< constant of the isometric latitude on the sphere
  Direction chi0;           ///< latitude of the origin on the sphere
  double diameter_m = 0.0;  ///< 2 R k0
  double central_meridian_rad = 0.0;
  double false_easting_m = 0.0;
  double false_northing_m = 0.0;

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept {
    const double w = c * ellipsoid.Isometric(Direction::Of(position.latitude_rad)) + k;
    const double exp_w = std::exp(w);
    const double square = exp_w * exp_w;
    const double norm = 1.0 / (square + 1.0);
    const Direction chi{(square - 1.0) * norm, 2.0 * exp_w * norm};
    const Direction l =
        Direction::Of(c * WrappedLongitude(position.longitude_rad - central_meridian_rad));
    const double b = 1.0 + chi.sin * chi0.sin + chi.cos * chi0.cos * l.cos;
    if (!(b >= kFarthestDenominator)) return ProjectionResult::OutsideDomain;
    const double scale = diameter_m / b;
    point.easting_m = false_easting_m + scale * chi.cos * l.sin;
    point.northing_m = false_northing_m + scale * (chi.sin * chi0.cos - chi.cos * chi0.sin * l.cos);
    return ProjectionResult::Done;
  }

  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept {
    const double x = (point.easting_m - false_easting_m) / diameter_m;
    const double y = (point.northing_m - false_northing_m) / diameter_m;
    const double square = x * x + y * y;
    if (!(square <= kFarthestRadius * kFarthestRadius)) return ProjectionResult::OutsideDomain;
    const double g = 2.0 / (1.0 + square);
    const double cos_d = 1.0 - square * g;
    const double s = cos_d * chi0.sin + y * g * chi0.cos;
    const double p = chi0.cos * cos_d - y * g * chi0.sin;
    const double v = x * g;
    const double cos2 = p * p + v * v;
    const double sphere = 0.5 * std::log((1.0 + std::fabs(s)) * (1.0 + std::fabs(s)) / cos2);
    const double psi = (std::copysign(sphere, s) - k) * over_c;
    position.latitude_rad = ellipsoid.FromExpIsometric(std::exp(psi));
    position.longitude_rad = WrappedLongitude(central_meridian_rad + std::atan2(v, p) * over_c);
    return ProjectionResult::Done;
  }
};

}  // namespace

MadeProjection MakeObliqueStereographic(const ProjectionParameters& parameters) {
  const double phi0 = parameters.latitude_of_origin_rad;
  if (!(std::fabs(phi0) <= kFarthestOrigin)) return {nullptr, ProjectionFault::LatitudeOfOrigin};
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  const Direction origin = Direction::Of(phi0);
  const double radius =
      std::sqrt(c.RadiusOfMeridian(origin.sin) * c.RadiusOfPrimeVertical(origin.sin));
  const double cos2 = origin.cos * origin.cos;
  Kernel kernel;
  kernel.ellipsoid = c;
  kernel.c = std::sqrt(1.0 + c.ep2 * cos2 * cos2);
  kernel.over_c = 1.0 / kernel.c;
  kernel.chi0.sin = origin.sin / kernel.c;
  kernel.chi0.cos = std::sqrt(1.0 - kernel.chi0.sin * kernel.chi0.sin);
  kernel.k = std::asinh(kernel.chi0.sin / kernel.chi0.cos) - kernel.c * c.Isometric(origin);
  kernel.diameter_m = 2.0 * radius * parameters.scale_factor;
  kernel.central_meridian_rad = parameters.central_meridian_rad;
  kernel.false_easting_m = parameters.false_easting_m;
  kernel.false_northing_m = parameters.false_northing_m;
  return MakeOf(kernel);
}

}  // namespace tarvex
