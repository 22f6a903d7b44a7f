#include "coordsys/projections/cassini_soldner.h"

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kWidest = 0.1;
constexpr double kWidestLongitude = 0.2;
constexpr double kFarthestLatitude = kQuarterTurn * 89.0 / 90.0;
constexpr double kNarrowLongitude = 0.03;  // 1.7 degrees
constexpr int kMostPasses = 5;
constexpr double kNearlyClosedM = 4e-6;  // one more step then closes to 1e-7
constexpr double kClosing = 1e-9;

struct Kernel {
  EllipsoidConstants ellipsoid;
  SinePolynomial zeta;  ///< geodetic to rectifying
  SinePolynomial eta;   ///< rectifying to geodetic
  double overA = 0.0;
  double over1LessE2 = 0.0;
  double overRectifyingRadius = 0.0;
  double originArcM = 0.0;
  PlaneOrigin origin;

  // Easting, and northing from the equator, of a latitude given with its direction: Snyder 1987
  // (13-7) and (13-8).
  template <typename Lanes>
  LanePoint<Lanes> Series(Lanes phiRad, DirectionOf<Lanes> phi, Lanes lambda, Lanes overCos,
                          Lanes nu) const noexcept {
    const Lanes tangent = phi.sin * overCos;
    const Lanes t = tangent * tangent;
    const Lanes c = ellipsoid.ep2 * phi.cos * phi.cos;
    const Lanes a1 = lambda * phi.cos;
    const Lanes a2 = a1 * a1;
    const Lanes mu = phiRad + zeta.Sum(phi.Sin2(), phi.Cos2());
    const Lanes east =
        nu * a1 * (1.0 - t * a2 * (1.0 / 6.0 + (8.0 - t + 8.0 * c) * a2 * (1.0 / 120.0)));
    const Lanes north = ellipsoid.rectifyingRadius * mu +
                        nu * tangent * a2 * (0.5 + (5.0 - t + 6.0 * c) * a2 * (1.0 / 24.0));
    return {north, east};
  }

  template <typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    const Lanes lambda = WrappedLongitude(position.longitudeRad - origin.centralMeridianRad);
    const auto phi = Toward(position.latitudeRad);
    const Lanes nu = ellipsoid.a / SquareRootOf(1.0 - ellipsoid.e2 * phi.sin * phi.sin);
    const LanePoint<Lanes> at = Series(position.latitudeRad, phi, lambda, 1.0 / phi.cos, nu);
    point.eastingM = origin.falseEastingM + at.eastingM;
    point.northingM = origin.falseNorthingM + at.northingM - originArcM;
    return Holds(position.latitudeRad, phi, lambda, 0.0);
  }

  template <typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    const Lanes north = point.northingM - origin.falseNorthingM + originArcM;
    const Lanes east = point.eastingM - origin.falseEastingM;
    const Lanes mu = north * overRectifyingRadius;
    const LaneMask<Lanes> inReach =
        Within(mu, kQuarterTurn) & Within(east, 1.1 * kWidest * ellipsoid.a);
    const DirectionOf<Lanes> atMu = Toward(mu);
    const Lanes correction = eta.Sum(atMu.Sin2(), atMu.Cos2());
    DirectionOf<Lanes> at = atMu.Turned(correction);
    Lanes drop;
    Lanes lambda;
    FromFootpoint(east, at, drop, lambda);
    Lanes phi = mu + correction - drop;
    LaneMask<Lanes> open = ~Within(lambda, kNarrowLongitude);
    if (AnyOf<Lanes>(open)) at = at.Turned(-drop);
    for (int pass = 0; pass < kMostPasses && AnyOf<Lanes>(open); ++pass) {
      Improve(north, east, phi, at, lambda, open);
    }
    position.latitudeRad = phi;
    position.longitudeRad = WrappedLongitude(origin.centralMeridianRad + lambda);
    return inReach & Holds(phi, at, lambda, kClosing);
  }

  // How far the latitude lies below the footpoint, the point of the central meridian that has the
  // same northing, and the longitude: Snyder 1987 (13-10) and (13-11) carried on, the forward
  // series solved for its powers of d, with t and c of the footpoint. What it leaves out is below
  // 1e-7 m up to kNarrowLongitude.
  template <typename Lanes>
  void FromFootpoint(Lanes east, DirectionOf<Lanes> at, Lanes& drop, Lanes& lambda) const noexcept {
    const Lanes overCos = 1.0 / at.cos;
    const Lanes tangent = at.sin * overCos;
    const Lanes t = tangent * tangent;
    const Lanes c = ellipsoid.ep2 * at.cos * at.cos;
    const Lanes d = east * SquareRootOf(1.0 - ellipsoid.e2 * at.sin * at.sin) * overA;
    const Lanes d2 = d * d;
    const Lanes drop4 = ((9.0 * c - 3.0) * t - 1.0) * (1.0 / 24.0);
    const Lanes drop6 =
        (((44.0 - 90.0 * c) * t + (88.0 + 138.0 * c)) * t - (60.0 + 150.0 * c)) * (1.0 / 720.0);
    drop = tangent * (1.0 + c) * d2 * (0.5 + d2 * (drop4 + d2 * drop6));
    const Lanes lambda5 = (8.0 + 24.0 * t + 3.0 * c) * (1.0 / 120.0);
    const Lanes lambda7 = (37.0 - (114.0 + 102.0 * t) * t) * (1.0 / 720.0);
    lambda = d * overCos * (1.0 - t * d2 * (1.0 / 3.0 - d2 * (lambda5 + d2 * lambda7)));
  }

  template <typename Lanes>
  LaneMask<Lanes> Holds(Lanes phiRad, DirectionOf<Lanes> phi, Lanes lambda,
                        double closing) const noexcept {
    return Within(lambda * phi.cos, kWidest + closing) &
           Within(lambda, kWidestLongitude + closing) & Within(phiRad, kFarthestLatitude + closing);
  }

  // One step of Newton towards the point; a lane is no longer open when it was a small one, and
  // keeps its place while its neighbours go on. s is the slope between the directions of the grid
  // and of the ellipsoid.
  template <typename Lanes>
  void Improve(Lanes north, Lanes east, Lanes& phi, DirectionOf<Lanes>& at, Lanes& lambda,
               LaneMask<Lanes>& open) const noexcept {
    const Lanes w2 = 1.0 - ellipsoid.e2 * at.sin * at.sin;
    const Lanes overW = 1.0 / SquareRootOf(w2);
    const Lanes overCos = 1.0 / at.cos;
    const LanePoint<Lanes> reached = Series(phi, at, lambda, overCos, ellipsoid.a * overW);
    const Lanes dNorth = north - reached.northingM;
    const Lanes dEast = east - reached.eastingM;
    const Lanes s = at.sin * lambda;
    const Lanes overNu = w2 * overW * (1.0 - s * s) * overA;
    const Lanes dPhi = (dNorth - dEast * s) * overNu * w2 * over1LessE2;
    const Lanes dLambda = (dEast + dNorth * s) * overNu * overCos;
    lambda = Select(open, lambda + dLambda, lambda);
    phi = Select(open, phi + dPhi, phi);
    open &= ~(Within(dNorth, kNearlyClosedM) & Within(dEast, kNearlyClosedM));
    if (AnyOf<Lanes>(open)) at = at.Turned(Select(open, dPhi, 0.0));
  }
};

}  // namespace

MadeProjection MakeCassiniSoldner(const ProjectionParameters& parameters) {
  const double phi0 = parameters.latitudeOfOriginRad;
  if (!(std::fabs(phi0) < kFarthestLatitude)) return NotMade(ProjectionFault::LatitudeOfOrigin);
  Kernel kernel;
  kernel.ellipsoid = ConstantsOf(parameters.ellipsoid);
  kernel.overA = 1.0 / kernel.ellipsoid.a;
  kernel.over1LessE2 = 1.0 / (1.0 - kernel.ellipsoid.e2);
  kernel.overRectifyingRadius = 1.0 / kernel.ellipsoid.rectifyingRadius;
  kernel.zeta = SinePolynomial(GeodeticToRectifying(kernel.ellipsoid.n));
  kernel.eta = SinePolynomial(RectifyingToGeodetic(kernel.ellipsoid.n));
  const Direction origin = Toward(phi0);
  kernel.originArcM =
      kernel.ellipsoid.rectifyingRadius * (phi0 + kernel.zeta.Sum(origin.Sin2(), origin.Cos2()));
  kernel.origin = PlaneOriginOf(parameters);
  return MakeOf(kernel);
}

}  // namespace tarvex
