#include "coordsys/projections/oblique_mercator.h"

#include <algorithm>

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kClosing = 1e-9;
constexpr double kAtPole = 1e-32;  // keeps the pole itself out of a division by nothing

// Quantities of the guidance note: B, A/B, ln H, the skew angle g0 and longitude lambda0 of the
// natural origin, the rectified angle gc.
struct Kernel {
  EllipsoidConstants ellipsoid;
  double b = 1.0;
  double overB = 1.0;
  double radiusM = 0.0;
  double overRadius = 0.0;
  double lnH = 0.0;
  Direction g0;
  Direction gc;
  PlaneOrigin origin;        ///< its meridian is that of the natural origin
  double centreAngle = 0.0;  ///< of the centre along the central line, from the natural origin
  Direction centre;          ///< of this angle
  double originAngle = 0.0;  ///< of the false origin: 0, or the centre's

  template <typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    const Lanes turn = b * WrappedLongitude(position.longitudeRad - origin.centralMeridianRad);
    DirectionOf<Lanes> phi;
    DirectionOf<Lanes> d;
    Toward(position.latitudeRad, turn, phi, d);
    const Lanes expW = ExponentialOf(lnH + b * ellipsoid.Isometric(phi));
    // All times 2 e^w, so that a single division is left: cosh w, sinh w and 1 become these.
    const Lanes square = expW * expW;
    const Lanes cosh = square + 1.0;
    const Lanes sinh = square - 1.0;
    const Lanes one = 2.0 * expW;
    const Lanes aside = d.sin * one;
    const Lanes across = sinh * g0.sin - aside * g0.cos;  // U times cosh w, Snyder 1987 (9-29)
    const Lanes over = 1.0 / SquareRootOf((cosh + across) * (cosh - across));
    const Lanes ahead = sinh * g0.cos + aside * g0.sin;
    const Lanes forth = d.cos * one;
    const Lanes along = AngleOf((ahead * centre.cos - forth * centre.sin) * over,
                                (forth * centre.cos + ahead * centre.sin) * over);

    const Lanes v = -radiusM * LogarithmOf((cosh + across) * over);     // (9-30)
    const Lanes u = radiusM * (along + centreAngle - originAngle);      // (9-31)
    point.eastingM = origin.falseEastingM + v * gc.cos + u * gc.sin;    // (9-33)
    point.northingM = origin.falseNorthingM + u * gc.cos - v * gc.sin;  // (9-34)
    return AtMost(Absolute(across), kFarthestAcross * cosh) & Within(along, kQuarterTurn) &
           Within(turn, kHalfTurn);
  }

  template <typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    const Lanes x = (point.eastingM - origin.falseEastingM) * overRadius;
    const Lanes y = (point.northingM - origin.falseNorthingM) * overRadius;
    const Lanes v = x * gc.cos - y * gc.sin;                // Snyder 1987 (9-40)
    const Lanes u = y * gc.cos + x * gc.sin + originAngle;  // (9-41)

    const Lanes expV = ExponentialOf(-v);
    const Lanes overExpV = 1.0 / expV;
    const Lanes sinhV = 0.5 * (expV - overExpV);  // (9-43)
    const DirectionOf<Lanes> z = Toward(u);
    const Lanes toPole = z.sin * g0.cos + sinhV * g0.sin;  // U' times T', (9-46)
    const Lanes aside = sinhV * g0.cos - z.sin * g0.sin;
    // The sphere's isometric latitude from both legs: the sine alone is blunt at a pole.
    const Lanes fromAxis = SquareRootOf(z.cos * z.cos + aside * aside + kAtPole);
    const Lanes over = 1.0 / fromAxis;
    const Lanes sphere = LogarithmOf((Absolute(toPole) + 0.5 * (expV + overExpV)) * over);
    const Lanes psi = (WithSignOf(sphere, toPole) - lnH) * overB;
    const DirectionOf<Lanes> chi = ellipsoid.ConformalFromIsometric(psi);
    Lanes turn;
    ellipsoid.FromConformal(chi, {aside * over, z.cos * over}, position.latitudeRad, turn);
    position.longitudeRad = WrappedLongitude(origin.centralMeridianRad - turn * overB);
    return Within(v, kFarthestAcrossIsometric + kClosing) &
           Within(u - centreAngle, kQuarterTurn + kClosing);
  }
};

// A line of azimuth 171.3 degrees is the line of azimuth -8.7 walked the other way: u, v and the
// rectified angle turn by half a circle together, so that the grid is the same.
struct CentralLine {
  double azimuthRad = 0.0;  ///< -90 to 90 degrees
  double rectifiedRad = 0.0;
};

CentralLine CentralLineOf(const ProjectionParameters& parameters) {
  CentralLine line;
  line.azimuthRad = WrappedLongitude(parameters.parallel2OrAzimuthRad);
  const bool rectifiedGiven = parameters.rectifiedAngleRad != 0.0;
  line.rectifiedRad = rectifiedGiven ? parameters.rectifiedAngleRad : line.azimuthRad;
  if (std::fabs(line.azimuthRad) > kQuarterTurn) {
    line.azimuthRad -= std::copysign(std::numbers::pi, line.azimuthRad);
    line.rectifiedRad -= std::copysign(std::numbers::pi, line.rectifiedRad);
  }
  return line;
}

MadeProjection Make(const ProjectionParameters& parameters, bool falseOriginAtCentre) {
  const double phi = parameters.latitudeOfOriginRad;
  const CentralLine line = CentralLineOf(parameters);
  if (!(std::fabs(phi) > 1e-6 && std::fabs(phi) < kQuarterTurn * 0.99)) {
    return NotMade(ProjectionFault::LatitudeOfOrigin);
  }
  if (!(std::fabs(line.azimuthRad) > 1e-6)) return NotMade(ProjectionFault::Azimuth);
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  const Direction centre = Toward(phi);
  const Direction azimuth = Toward(line.azimuthRad);
  const double cos2 = centre.cos * centre.cos;
  const double w2 = 1.0 - c.e2 * centre.sin * centre.sin;
  Kernel kernel;
  kernel.ellipsoid = c;
  kernel.b = std::sqrt(1.0 + c.ep2 * cos2 * cos2);  // Snyder 1987 (9-11)
  kernel.overB = 1.0 / kernel.b;
  kernel.radiusM = c.a * parameters.scaleFactor * std::sqrt(1.0 - c.e2) / w2;  // A / B, (9-12)
  kernel.overRadius = 1.0 / kernel.radiusM;
  // sqrt(D^2 - 1) with the sign of the latitude, in closed form: where the azimuth is near 90
  // degrees, differences of nearly equal numbers would cost centimetres.
  const double root = centre.sin / centre.cos * std::sqrt((1.0 - c.e2) / w2);
  const double d = std::sqrt(1.0 + root * root);                // (9-14)
  kernel.lnH = std::asinh(root) - kernel.b * c.Isometric(phi);  // (9-35), (9-36)
  kernel.g0.sin = azimuth.sin / d;                              // (9-37)
  kernel.g0.cos = std::hypot(root, azimuth.cos) / d;
  kernel.origin = PlaneOriginOf(parameters);
  // (9-38)
  kernel.origin.centralMeridianRad -= std::atan2(root * azimuth.sin, d * azimuth.cos) / kernel.b;
  kernel.gc = Toward(line.rectifiedRad);
  // (9-39)
  kernel.centreAngle = std::copysign(std::atan2(std::fabs(root), azimuth.cos), phi);
  kernel.centre = Toward(kernel.centreAngle);
  kernel.originAngle = falseOriginAtCentre ? kernel.centreAngle : 0.0;
  return MakeOf(kernel);
}

}  // namespace

MadeProjection MakeObliqueMercatorA(const ProjectionParameters& parameters) {
  return Make(parameters, false);
}

MadeProjection MakeObliqueMercatorB(const ProjectionParameters& parameters) {
  return Make(parameters, true);
}

}  // namespace tarvex
