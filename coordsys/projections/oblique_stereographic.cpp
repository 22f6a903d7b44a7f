#include "coordsys/projections/oblique_stereographic.h"

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kPoleCosine = 1e-12;

struct Kernel {
  EllipsoidConstants ellipsoid;
  double c = 1.0;  ///< exponent of the sphere, the note's n
  double overC = 1.0;
  double k = 0.0;          ///< constant of the isometric latitude on the sphere
  Direction chi0;          ///< latitude of the origin on the sphere
  double diameterM = 0.0;  ///< 2 R k0
  double overDiameter = 0.0;
  PlaneOrigin origin;

  template <typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    const Lanes turn = c * WrappedLongitude(position.longitudeRad - origin.centralMeridianRad);
    DirectionOf<Lanes> phi;
    DirectionOf<Lanes> l;
    Toward(position.latitudeRad, turn, phi, l);
    const Lanes w = c * ellipsoid.Isometric(phi) + k;
    const Lanes expW = ExponentialOf(w);
    const Lanes square = expW * expW;
    // The latitude on the sphere of this length, so that a single division is left.
    const Lanes length = square + 1.0;
    const DirectionOf<Lanes> chi{square - 1.0, 2.0 * expW};
    const Lanes forth = chi.cos * l.cos;
    const Lanes b = length + chi.sin * chi0.sin + chi0.cos * forth;
    const Lanes scale = diameterM / b;
    point.eastingM = origin.falseEastingM + scale * chi.cos * l.sin;
    point.northingM = origin.falseNorthingM + scale * (chi.sin * chi0.cos - chi0.sin * forth);
    return AtMost(kFarthestDenominator * length, b) & Within(turn, kHalfTurn);
  }

  template <typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    const Lanes x = (point.eastingM - origin.falseEastingM) * overDiameter;
    const Lanes y = (point.northingM - origin.falseNorthingM) * overDiameter;
    const Lanes square = x * x + y * y;
    const Lanes g = 2.0 / (1.0 + square);
    const Lanes cosD = 1.0 - square * g;
    const Lanes s = cosD * chi0.sin + y * g * chi0.cos;
    const Lanes p = chi0.cos * cosD - y * g * chi0.sin;
    const Lanes v = x * g;
    const Lanes over = OverLength(SquareRootOf(p * p + v * v));
    const Lanes sphere = LogarithmOf((1.0 + Absolute(s)) * over);
    const Lanes psi = (WithSignOf(sphere, s) - k) * overC;
    const DirectionOf<Lanes> chi = ellipsoid.ConformalFromIsometric(psi);
    Lanes turn;
    ellipsoid.FromConformal(chi, {v * over, p * over}, position.latitudeRad, turn);
    position.longitudeRad = WrappedLongitude(origin.centralMeridianRad + turn * overC);
    return AtMost(square, kFarthestRadius * kFarthestRadius);
  }
};

}  // namespace

MadeProjection MakeObliqueStereographic(const ProjectionParameters& parameters) {
  const double phi0 = parameters.latitudeOfOriginRad;
  if (!(std::fabs(phi0) <= kQuarterTurn)) return NotMade(ProjectionFault::LatitudeOfOrigin);
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  const Direction origin = Toward(phi0);
  const double radius =
      std::sqrt(c.RadiusOfMeridian(origin.sin) * c.RadiusOfPrimeVertical(origin.sin));
  const double cos2 = origin.cos * origin.cos;
  Kernel kernel;
  kernel.ellipsoid = c;
  kernel.c = std::sqrt(1.0 + c.ep2 * cos2 * cos2);
  kernel.overC = 1.0 / kernel.c;
  kernel.chi0.sin = origin.sin / kernel.c;
  // sqrt(1 - sin^2) without its cancellation
  kernel.chi0.cos = origin.cos * std::sqrt(1.0 + c.ep2 * cos2) / kernel.c;
  // At a pole both terms grow without bound, and what stays between them is this.
  kernel.k = origin.cos < kPoleCosine
                 ? c.EccentricPart(origin.sin)
                 : std::asinh(kernel.chi0.sin / kernel.chi0.cos) - kernel.c * c.Isometric(phi0);
  kernel.diameterM = 2.0 * radius * parameters.scaleFactor;
  kernel.overDiameter = 1.0 / kernel.diameterM;
  kernel.origin = PlaneOriginOf(parameters);
  return MakeOf(kernel);
}

}  // namespace tarvex
