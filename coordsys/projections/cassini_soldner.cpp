#include "coordsys/projections/cassini_soldner.h"

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kQuarter = std::numbers::pi / 2.0;
constexpr double kWidest = 0.1;
constexpr double kWidestLongitude = 0.2;
constexpr double kFarthestLatitude = kQuarter * 89.0 / 90.0;
constexpr int kMostPasses = 5;
constexpr double kNearlyClosed_m = 1e-5;  // one more step then closes to 1e-7
constexpr double kClosing = 1e-9;

struct Kernel {
  EllipsoidConstants ellipsoid;
  SineSeries zeta = {};  ///< geodetic to rectifying
  SineSeries eta = {};   ///< rectifying to geodetic
  double over_a = 0.0;
  double over_1_less_e2 = 0.0;
  double over_rectifying_radius = 0.0;
  double origin_arc_m = 0.0;
  double central_meridian_rad = 0.0;
  double false_easting_m = 0.0;
  double false_northing_m = 0.0;

  // Easting, and northing from the equator, of a latitude given with its direction.
  template <typename Lanes>
  LanePoint<Lanes> Series(Lanes phi_rad, DirectionOf<Lanes> phi, Lanes lambda, Lanes over_cos,
                          Lanes nu) const noexcept {
    const Lanes tangent = phi.sin * over_cos;
    const Lanes t = tangent * tangent;
    const Lanes c = ellipsoid.ep2 * phi.cos * phi.cos;
    const Lanes a1 = lambda * phi.cos;
    const Lanes a2 = a1 * a1;
    const Lanes mu = phi_rad + SumOf(zeta, phi.Sin2(), phi.Cos2());
    const Lanes east =
        nu * a1 * (1.0 - t * a2 * (1.0 / 6.0 + (8.0 - t + 8.0 * c) * a2 * (1.0 / 120.0)));
    const Lanes north = ellipsoid.rectifying_radius * mu +
                        nu * tangent * a2 * (0.5 + (5.0 - t + 6.0 * c) * a2 * (1.0 / 24.0));
    return {north, east};
  }

  template <typename Points, typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    const Lanes lambda = WrappedLongitude(position.longitude_rad - central_meridian_rad);
    const auto phi = Toward(position.latitude_rad);
    const Lanes nu = ellipsoid.a / SquareRootOf(1.0 - ellipsoid.e2 * phi.sin * phi.sin);
    const LanePoint<Lanes> at = Series(position.latitude_rad, phi, lambda, 1.0 / phi.cos, nu);
    point.easting_m = false_easting_m + at.easting_m;
    point.northing_m = false_northing_m + at.northing_m - origin_arc_m;
    return Holds(position.latitude_rad, phi, lambda, 0.0);
  }

  template <typename Points, typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    const Lanes north = point.northing_m - false_northing_m + origin_arc_m;
    const Lanes east = point.easting_m - false_easting_m;
    const Lanes mu = north * over_rectifying_radius;
    const LaneMask<Lanes> in_reach =
        Within(mu, kQuarter) & Within(east, 1.1 * kWidest * ellipsoid.a);
    const DirectionOf<Lanes> at_mu = Toward(mu);
    const Lanes correction = SumOf(eta, at_mu.Sin2(), at_mu.Cos2());
    DirectionOf<Lanes> at = at_mu.Turned(correction);
    const Lanes over_cos = 1.0 / at.cos;
    const Lanes t = at.sin * at.sin * over_cos * over_cos;
    const Lanes w2 = 1.0 - ellipsoid.e2 * at.sin * at.sin;
    const Lanes d = east * SquareRootOf(w2) * over_a;
    const Lanes d2 = d * d;
    const Lanes drop =
        at.sin * over_cos * w2 * over_1_less_e2 * d2 * (0.5 - (1.0 + 3.0 * t) * d2 * (1.0 / 24.0));
    Lanes phi = mu + correction - drop;
    Lanes lambda =
        d * (1.0 - t * d2 * (1.0 / 3.0 - (1.0 + 3.0 * t) * d2 * (1.0 / 15.0))) * over_cos;
    at = at.Turned(-drop);
    LaneMask<Lanes> open = ~LaneMask<Lanes>{};
    for (int pass = 0; pass < kMostPasses && AnyOf(open); ++pass) {
      Improve(north, east, phi, at, lambda, open);
    }
    position.latitude_rad = phi;
    position.longitude_rad = WrappedLongitude(central_meridian_rad + lambda);
    return in_reach & Holds(phi, at, lambda, kClosing);
  }

  template <typename Lanes>
  LaneMask<Lanes> Holds(Lanes phi_rad, DirectionOf<Lanes> phi, Lanes lambda,
                        double closing) const noexcept {
    return Within(lambda * phi.cos, kWidest + closing) &
           Within(lambda, kWidestLongitude + closing) &
           Within(phi_rad, kFarthestLatitude + closing);
  }

  // One step of Newton towards the point; a lane is no longer open when it was a small one, and
  // keeps its place while its neighbours go on. s is the slope between the directions of the grid
  // and of the ellipsoid.
  template <typename Lanes>
  void Improve(Lanes north, Lanes east, Lanes& phi, DirectionOf<Lanes>& at, Lanes& lambda,
               LaneMask<Lanes>& open) const noexcept {
    const Lanes w2 = 1.0 - ellipsoid.e2 * at.sin * at.sin;
    const Lanes over_w = 1.0 / SquareRootOf(w2);
    const Lanes over_cos = 1.0 / at.cos;
    const LanePoint<Lanes> reached = Series(phi, at, lambda, over_cos, ellipsoid.a * over_w);
    const Lanes d_north = north - reached.northing_m;
    const Lanes d_east = east - reached.easting_m;
    const Lanes s = at.sin * lambda;
    const Lanes over_nu = w2 * over_w * (1.0 - s * s) * over_a;
    const Lanes d_phi = (d_north - d_east * s) * over_nu * w2 * over_1_less_e2;
    const Lanes d_lambda = (d_east + d_north * s) * over_nu * over_cos;
    lambda = Select(open, lambda + d_lambda, lambda);
    phi = Select(open, phi + d_phi, phi);
    open &= ~(Within(d_north, kNearlyClosed_m) & Within(d_east, kNearlyClosed_m));
    if (AnyOf(open)) at = at.Turned(Select(open, d_phi, 0.0));
  }
};

}  // namespace

MadeProjection MakeCassiniSoldner(const ProjectionParameters& parameters) {
  const double phi0 = parameters.latitude_of_origin_rad;
  if (!(std::fabs(phi0) < kFarthestLatitude)) return {nullptr, ProjectionFault::LatitudeOfOrigin};
  Kernel kernel;
  kernel.ellipsoid = ConstantsOf(parameters.ellipsoid);
  kernel.over_a = 1.0 / kernel.ellipsoid.a;
  kernel.over_1_less_e2 = 1.0 / (1.0 - kernel.ellipsoid.e2);
  kernel.over_rectifying_radius = 1.0 / kernel.ellipsoid.rectifying_radius;
  kernel.zeta = GeodeticToRectifying(kernel.ellipsoid.n);
  kernel.eta = RectifyingToGeodetic(kernel.ellipsoid.n);
  const Direction origin = Toward(phi0);
  kernel.origin_arc_m = kernel.ellipsoid.rectifying_radius *
                        (phi0 + SumOf(kernel.zeta, origin.Sin2(), origin.Cos2()));
  kernel.central_meridian_rad = parameters.central_meridian_rad;
  kernel.false_easting_m = parameters.false_easting_m;
  kernel.false_northing_m = parameters.false_northing_m;
  return MakeOf(kernel);
}

}  // namespace tarvex
