#include "coordsys/projections/stereographic.h"

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kQuarter = std::numbers::pi / 2.0;
constexpr double kAtPole = kQuarter * (1.0 - 1e-12);
constexpr double kFarthestDenominator = 0.034;  // 1 + cos of 165 degrees
constexpr double kFarthestSine = -0.966;        // of 75 degrees beyond the equator
constexpr double kFarthestRadius = 7.61;        // tan of half of it, 82.5 degrees and a little

struct ObliqueKernel {
  EllipsoidConstants ellipsoid;
  Direction chi0;
  double diameter_m = 0.0;  ///< 2 a k0 m(phi0) / cos chi0
  double over_diameter = 0.0;
  double central_meridian_rad = 0.0;
  double false_easting_m = 0.0;
  double false_northing_m = 0.0;

  template <typename Points, typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    DirectionOf<Lanes> phi;
    DirectionOf<Lanes> l;
    Points::Toward(position.latitude_rad,
                   WrappedLongitude(position.longitude_rad - central_meridian_rad), phi, l);
    const DirectionOf<Lanes> chi = ellipsoid.Conformal(phi);
    const Lanes b = 1.0 + chi.sin * chi0.sin + chi.cos * chi0.cos * l.cos;
    const Lanes scale = diameter_m / b;
    point.easting_m = false_easting_m + scale * chi.cos * l.sin;
    point.northing_m = false_northing_m + scale * (chi.sin * chi0.cos - chi.cos * chi0.sin * l.cos);
    return AtMost(kFarthestDenominator, b);
  }

  template <typename Points, typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    const Lanes x = (point.easting_m - false_easting_m) * over_diameter;
    const Lanes y = (point.northing_m - false_northing_m) * over_diameter;
    const Lanes square = x * x + y * y;
    const Lanes g = 2.0 / (1.0 + square);
    const Lanes cos_d = 1.0 - square * g;
    const Lanes p = chi0.cos * cos_d - y * g * chi0.sin;
    const Lanes v = x * g;
    const DirectionOf<Lanes> chi{cos_d * chi0.sin + y * g * chi0.cos, SquareRootOf(p * p + v * v)};
    Lanes l;
    ellipsoid.FromConformal<Points>(chi, {v, p}, position.latitude_rad, l);
    position.longitude_rad = WrappedLongitude(central_meridian_rad + l);
    return AtMost(square, kFarthestRadius * kFarthestRadius);
  }
};

// Radii from the pole are C exp(-psi), psi growing towards the pole of the zone.
struct PolarKernel {
  EllipsoidConstants ellipsoid;
  double pole = 1.0;  ///< 1 north, -1 south
  double c_m = 0.0;
  double central_meridian_rad = 0.0;
  double false_easting_m = 0.0;
  double false_northing_m = 0.0;

  template <typename Points, typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    DirectionOf<Lanes> phi;
    DirectionOf<Lanes> lambda;
    Points::Toward(position.latitude_rad, position.longitude_rad - central_meridian_rad, phi,
                   lambda);
    phi.sin *= pole;
    const Lanes stretch = SmallExpm1(ellipsoid.EccentricPart(phi.sin));
    const Lanes r = c_m * phi.cos / (1.0 + phi.sin) * (1.0 + stretch);
    point.easting_m = false_easting_m + r * lambda.sin;
    point.northing_m = false_northing_m - pole * r * lambda.cos;
    return Less(kFarthestSine, phi.sin);
  }

  template <typename Points, typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    const Lanes x = point.easting_m - false_easting_m;
    const Lanes y = pole * (false_northing_m - point.northing_m);
    const Lanes t = SquareRootOf(x * x + y * y) / c_m;
    const Lanes norm = 1.0 / (1.0 + t * t);
    const DirectionOf<Lanes> chi{(1.0 - t * t) * norm, 2.0 * t * norm};
    Lanes phi;
    Lanes lambda;
    ellipsoid.FromConformal<Points>(chi, {x, y}, phi, lambda);
    position.latitude_rad = pole * phi;
    position.longitude_rad = WrappedLongitude(central_meridian_rad + lambda);
    return AtMost(t, kFarthestRadius);
  }
};

MadeProjection MakePolar(const ProjectionParameters& parameters, const EllipsoidConstants& c) {
  PolarKernel kernel;
  kernel.ellipsoid = c;
  kernel.pole = parameters.latitude_of_origin_rad < 0.0 ? -1.0 : 1.0;
  kernel.c_m = 2.0 * c.a * parameters.scale_factor /
               std::sqrt(std::pow(1.0 + c.e, 1.0 + c.e) * std::pow(1.0 - c.e, 1.0 - c.e));
  kernel.central_meridian_rad = parameters.central_meridian_rad;
  kernel.false_easting_m = parameters.false_easting_m;
  kernel.false_northing_m = parameters.false_northing_m;
  return MakeOf(kernel);
}

}  // namespace

MadeProjection MakeStereographic(const ProjectionParameters& parameters) {
  const double phi0 = parameters.latitude_of_origin_rad;
  if (!(std::fabs(phi0) <= kQuarter)) return {nullptr, ProjectionFault::LatitudeOfOrigin};
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  if (std::fabs(phi0) >= kAtPole) return MakePolar(parameters, c);
  const Direction origin = Toward(phi0);
  ObliqueKernel kernel;
  kernel.ellipsoid = c;
  kernel.chi0 = c.Conformal(phi0);
  kernel.diameter_m = 2.0 * parameters.scale_factor * c.RadiusOfPrimeVertical(origin.sin) *
                      origin.cos / kernel.chi0.cos;
  kernel.over_diameter = 1.0 / kernel.diameter_m;
  kernel.central_meridian_rad = parameters.central_meridian_rad;
  kernel.false_easting_m = parameters.false_easting_m;
  kernel.false_northing_m = parameters.false_northing_m;
  return MakeOf(kernel);
}

}  // namespace tarvex
