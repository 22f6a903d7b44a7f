#include "coordsys/projections/oblique_cylindrical.h"

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kClosing = 1e-9;

struct Kernel {
  EllipsoidConstants ellipsoid;
  double c = 1.0;  ///< exponent of the sphere, swisstopo's alpha
  double overC = 1.0;
  double k = 0.0;  ///< constant of the isometric latitude on the sphere, swisstopo's K
  Direction b0;    ///< latitude of the centre on the sphere
  double radiusM = 0.0;
  double overRadius = 0.0;
  PlaneOrigin origin;

  template <typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    const Lanes turn = c * WrappedLongitude(position.longitudeRad - origin.centralMeridianRad);
    DirectionOf<Lanes> phi;
    DirectionOf<Lanes> l;
    Toward(position.latitudeRad, turn, phi, l);
    const Lanes expW = ExponentialOf(c * ellipsoid.Isometric(phi) + k);
    const Lanes square = expW * expW;
    // The latitude on the sphere of this length, so that a single division is left.
    const Lanes length = square + 1.0;
    const DirectionOf<Lanes> b{square - 1.0, 2.0 * expW};
    const Lanes forth = b.cos * l.cos;
    const Lanes across = b0.cos * b.sin - b0.sin * forth;
    const Lanes over = 1.0 / SquareRootOf((length + across) * (length - across));
    const Lanes along = AngleOf(b.cos * l.sin * over, (b0.sin * b.sin + b0.cos * forth) * over);
    point.eastingM = origin.falseEastingM + radiusM * along;
    point.northingM = origin.falseNorthingM + radiusM * LogarithmOf((length + across) * over);
    return AtMost(Absolute(across), kFarthestAcross * length) & Within(along, kQuarterTurn) &
           Within(turn, kHalfTurn);
  }

  template <typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    const Lanes along = (point.eastingM - origin.falseEastingM) * overRadius;
    const Lanes across = (point.northingM - origin.falseNorthingM) * overRadius;
    const Lanes expAcross = ExponentialOf(across);
    const Lanes square = expAcross * expAcross;
    const Lanes norm = 1.0 / (square + 1.0);
    const DirectionOf<Lanes> onLine{(square - 1.0) * norm, 2.0 * expAcross * norm};
    const DirectionOf<Lanes> l = Toward(along);
    const Lanes forth = onLine.cos * l.cos;
    const Lanes east = onLine.cos * l.sin;
    const Lanes sine = b0.cos * onLine.sin + b0.sin * forth;
    const Lanes north = b0.cos * forth - b0.sin * onLine.sin;
    const Lanes over = OverLength(SquareRootOf(east * east + north * north));
    const Lanes sphere = LogarithmOf((1.0 + Absolute(sine)) * over);
    const Lanes psi = (WithSignOf(sphere, sine) - k) * overC;
    const DirectionOf<Lanes> chi = ellipsoid.ConformalFromIsometric(psi);
    Lanes turn;
    ellipsoid.FromConformal(chi, {east * over, north * over}, position.latitudeRad, turn);
    position.longitudeRad = WrappedLongitude(origin.centralMeridianRad + turn * overC);
    return Within(across, kFarthestAcrossIsometric + kClosing) &
           Within(along, kQuarterTurn + kClosing);
  }
};

}  // namespace

MadeProjection MakeObliqueCylindrical(const ProjectionParameters& parameters) {
  const double phi0 = parameters.latitudeOfOriginRad;
  if (!(std::fabs(phi0) < kQuarterTurn * 0.99)) return NotMade(ProjectionFault::LatitudeOfOrigin);
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  const Direction centre = Toward(phi0);
  const double cos2 = centre.cos * centre.cos;
  Kernel kernel;
  kernel.ellipsoid = c;
  kernel.c = std::sqrt(1.0 + c.ep2 * cos2 * cos2);
  kernel.overC = 1.0 / kernel.c;
  kernel.b0.sin = centre.sin / kernel.c;
  kernel.b0.cos = std::sqrt(1.0 - kernel.b0.sin * kernel.b0.sin);
  kernel.k = std::asinh(kernel.b0.sin / kernel.b0.cos) - kernel.c * c.Isometric(phi0);
  kernel.radiusM =
      parameters.scaleFactor * c.a * std::sqrt(1.0 - c.e2) / (1.0 - c.e2 * centre.sin * centre.sin);
  kernel.overRadius = 1.0 / kernel.radiusM;
  kernel.origin = PlaneOriginOf(parameters);
  return MakeOf(kernel);
}

}  // namespace tarvex
