#include "coordsys/projections/stereographic.h"

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kAtPole = kQuarterTurn * (1.0 - 1e-12);
constexpr double kFarthestSine = -0.966;  // of 75 degrees beyond the equator

struct ObliqueKernel {
  EllipsoidConstants ellipsoid;
  Direction chi0;
  double diameterM = 0.0;  ///< 2 a k0 m(phi0) / cos chi0, of Snyder 1987 (21-27)
  double overDiameter = 0.0;
  PlaneOrigin origin;

  template <typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    DirectionOf<Lanes> phi;
    DirectionOf<Lanes> l;
    Toward(position.latitudeRad, position.longitudeRad - origin.centralMeridianRad, phi, l);
    const DirectionOf<Lanes> chi = ellipsoid.Conformal(phi);
    const Lanes b = 1.0 + chi.sin * chi0.sin + chi.cos * chi0.cos * l.cos;
    const Lanes scale = diameterM / b;
    // (21-24), (21-25)
    point.eastingM = origin.falseEastingM + scale * chi.cos * l.sin;
    point.northingM =
        origin.falseNorthingM + scale * (chi.sin * chi0.cos - chi.cos * chi0.sin * l.cos);
    return AtMost(kFarthestDenominator, b);
  }

  template <typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    const Lanes x = (point.eastingM - origin.falseEastingM) * overDiameter;
    const Lanes y = (point.northingM - origin.falseNorthingM) * overDiameter;
    const Lanes square = x * x + y * y;
    // (21-36) to (21-38): square is that of tan(c / 2), g sin(c) / rho and cosD cos(c).
    const Lanes g = 2.0 / (1.0 + square);
    const Lanes cosD = 1.0 - square * g;
    const Lanes p = chi0.cos * cosD - y * g * chi0.sin;
    const Lanes v = x * g;
    const Lanes across = SquareRootOf(p * p + v * v);
    const Lanes over = OverLength(across);
    const DirectionOf<Lanes> chi{cosD * chi0.sin + y * g * chi0.cos, across};
    Lanes l;
    ellipsoid.FromConformal(chi, {v * over, p * over}, position.latitudeRad, l);
    position.longitudeRad = WrappedLongitude(origin.centralMeridianRad + l);
    return AtMost(square, kFarthestRadius * kFarthestRadius);
  }
};

// Radii from the pole are C exp(-psi), psi growing towards the pole of the zone: Snyder 1987
// (21-33), t being exp(-psi).
struct PolarKernel {
  EllipsoidConstants ellipsoid;
  double pole = 1.0;  ///< 1 north, -1 south
  double cM = 0.0;
  double overC = 0.0;
  PlaneOrigin origin;

  template <typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    DirectionOf<Lanes> phi;
    DirectionOf<Lanes> lambda;
    Toward(position.latitudeRad, position.longitudeRad - origin.centralMeridianRad, phi, lambda);
    phi.sin *= pole;
    const Lanes stretch = SmallExpm1(ellipsoid.EccentricPart(phi.sin));
    const Lanes r = cM * phi.cos / (1.0 + phi.sin) * (1.0 + stretch);
    point.eastingM = origin.falseEastingM + r * lambda.sin;
    point.northingM = origin.falseNorthingM - pole * r * lambda.cos;
    return Less(kFarthestSine, phi.sin);
  }

  template <typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    const Lanes x = point.eastingM - origin.falseEastingM;
    const Lanes y = pole * (origin.falseNorthingM - point.northingM);
    const Lanes radius = SquareRootOf(x * x + y * y);
    const Lanes over = OverLength(radius);
    const Lanes t = radius * overC;  // (21-39)
    const Lanes norm = 1.0 / (1.0 + t * t);
    const DirectionOf<Lanes> chi{(1.0 - t * t) * norm, 2.0 * t * norm};
    Lanes phi;
    Lanes lambda;
    ellipsoid.FromConformal(chi, {x * over, y * over}, phi, lambda);
    position.latitudeRad = pole * phi;
    position.longitudeRad = WrappedLongitude(origin.centralMeridianRad + lambda);
    return AtMost(t, kFarthestRadius);
  }
};

MadeProjection MakePolar(const ProjectionParameters& parameters, const EllipsoidConstants& c) {
  PolarKernel kernel;
  kernel.ellipsoid = c;
  kernel.pole = parameters.latitudeOfOriginRad < 0.0 ? -1.0 : 1.0;
  kernel.cM = 2.0 * c.a * parameters.scaleFactor /
              std::sqrt(std::pow(1.0 + c.e, 1.0 + c.e) * std::pow(1.0 - c.e, 1.0 - c.e));
  kernel.overC = 1.0 / kernel.cM;
  kernel.origin = PlaneOriginOf(parameters);
  return MakeOf(kernel);
}

}  // namespace

MadeProjection MakeStereographic(const ProjectionParameters& parameters) {
  const double phi0 = parameters.latitudeOfOriginRad;
  if (!(std::fabs(phi0) <= kQuarterTurn)) return NotMade(ProjectionFault::LatitudeOfOrigin);
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  if (std::fabs(phi0) >= kAtPole) return MakePolar(parameters, c);
  const Direction origin = Toward(phi0);
  ObliqueKernel kernel;
  kernel.ellipsoid = c;
  kernel.chi0 = c.Conformal(phi0);
  kernel.diameterM = 2.0 * parameters.scaleFactor * c.RadiusOfPrimeVertical(origin.sin) *
                     origin.cos / kernel.chi0.cos;
  kernel.overDiameter = 1.0 / kernel.diameterM;
  kernel.origin = PlaneOriginOf(parameters);
  return MakeOf(kernel);
}

}  // namespace tarvex
