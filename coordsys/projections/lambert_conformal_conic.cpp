#include "coordsys/projections/lambert_conformal_conic.h"

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kFarthestLatitude = kQuarterTurn * 89.0 / 90.0;
constexpr double kSameParallel = 1e-10;
constexpr double kFlattestCone = 1e-6;
constexpr double kPoleCosine = 1e-15;  // 6e-9 m from the pole

double LengthOfParallel(const EllipsoidConstants& c, double phi) {
  const double sinPhi = std::sin(phi);
  return std::cos(phi) / std::sqrt(1.0 - c.e2 * sinPhi * sinPhi);
}

// The constant of the cone through two parallels, Snyder 1987 (15-8): how the logarithm of their
// lengths changes with the isometric latitude. Both differences are formed of the difference of the
// latitudes, so that parallels a hand's breadth apart lose nothing.
double ConeConstant(const EllipsoidConstants& c, double phi1, double phi2) {
  const double half = std::sin(0.5 * (phi2 - phi1));
  const double sineStep = 2.0 * half * std::cos(0.5 * (phi1 + phi2));
  const double squareStep = std::sin(phi2 - phi1) * std::sin(phi1 + phi2);
  const double cos1 = std::cos(phi1);
  const double cos2 = std::cos(phi2);
  const double sines = std::sin(phi1) * std::sin(phi2);
  const double w2 = 1.0 - c.e2 * std::sin(phi2) * std::sin(phi2);
  const double lengths =
      0.5 * (std::log1p(squareStep / (cos2 * cos2)) - std::log1p(c.e2 * squareStep / w2));
  const double isometric = std::atanh(sineStep / (cos1 * cos2 + 2.0 * half * half)) -
                           c.e * std::atanh(c.e * sineStep / (1.0 - c.e2 * sines));
  return lengths / isometric;
}

struct Kernel {
  EllipsoidConstants ellipsoid;
  double n = 0.0;
  double overN = 0.0;
  double sign = 1.0;            ///< of n: towards the pole of the cone
  double widestTheta = 0.0;     ///< beyond it lies the gap of the fan
  double apexRadiusM = 0.0;     ///< radius where psi is 0; negative with n
  double overApexRadius = 0.0;  ///< of its magnitude
  PlaneOrigin origin;
  double apexNorthingM = 0.0;

  template <typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    const Lanes phi = position.latitudeRad;
    const Lanes lambda = WrappedLongitude(position.longitudeRad - origin.centralMeridianRad);
    DirectionOf<Lanes> toward;
    DirectionOf<Lanes> theta;
    Toward(phi, n * lambda, toward, theta);
    // Snyder 1987 (15-7), t being e^-psi. The pole itself lies at the apex; on a flat cone the
    // exponential gets there too slowly.
    const Lanes r = Select(AtMost(Absolute(toward.cos), kPoleCosine), InAll<Lanes>(0.0),
                           apexRadiusM * ExponentialOf(-n * ellipsoid.Isometric(toward)));
    point.eastingM = origin.falseEastingM + r * theta.sin;  // (14-1)
    point.northingM = apexNorthingM - r * theta.cos;        // (14-2)
    return AtMost(-kFarthestLatitude, sign * phi);
  }

  template <typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    // A zero of either sign is +0, so that the apex of a southern cone has no direction either.
    const Lanes x = sign * (point.eastingM - origin.falseEastingM) + 0.0;
    const Lanes y = sign * (apexNorthingM - point.northingM) + 0.0;
    const Lanes radius = SquareRootOf(x * x + y * y);  // Snyder 1987 (14-10)
    const Lanes over = OverLength(radius);
    const Lanes psi = -overN * LogarithmOf(radius * overApexRadius);  // (15-11)
    const DirectionOf<Lanes> chi = ellipsoid.ConformalFromIsometric(psi);
    Lanes phi;
    Lanes theta;
    ellipsoid.FromConformal(chi, {x * over, y * over}, phi, theta);
    position.latitudeRad = phi;
    position.longitudeRad = WrappedLongitude(origin.centralMeridianRad + theta * overN);
    const LaneMask<Lanes> inFan = Within(theta, widestTheta);
    return inFan & AtMost(-kFarthestLatitude - 1e-9, sign * phi);
  }
};

// The cone of constant `n` with scale k on latitude `phi1`, its origin at `phi0`.
Kernel ConeOf(const ProjectionParameters& parameters, const EllipsoidConstants& c, double n,
              double phi1, double scale) {
  const double phi0 = parameters.latitudeOfOriginRad;
  const bool polar = std::fabs(phi0) >= kQuarterTurn * (1.0 - 1e-12);
  const double psi1 = c.Isometric(phi1);
  const double radius1 = c.a * scale * LengthOfParallel(c, phi1) / n;
  Kernel kernel;
  kernel.ellipsoid = c;
  kernel.n = n;
  kernel.overN = 1.0 / n;
  kernel.sign = n < 0.0 ? -1.0 : 1.0;
  kernel.widestTheta = std::fabs(n) * std::numbers::pi * (1.0 + 1e-12);
  kernel.apexRadiusM = radius1 * std::exp(n * psi1);
  kernel.overApexRadius = 1.0 / std::fabs(kernel.apexRadiusM);
  const double originRadius = polar ? 0.0 : kernel.apexRadiusM * std::exp(-n * c.Isometric(phi0));
  kernel.origin = PlaneOriginOf(parameters);
  kernel.apexNorthingM = kernel.origin.falseNorthingM + originRadius;
  return kernel;
}

}  // namespace

MadeProjection MakeLambertConformalConic2SP(const ProjectionParameters& parameters) {
  const double phi0 = parameters.latitudeOfOriginRad;
  const double phi1 = parameters.parallel1Rad;
  const double phi2 = parameters.parallel2OrAzimuthRad;
  if (!(std::fabs(phi1) < kFarthestLatitude && std::fabs(phi2) < kFarthestLatitude)) {
    return NotMade(ProjectionFault::StandardParallels);
  }
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  const bool same = std::fabs(phi1 - phi2) < kSameParallel;
  const double n = same ? std::sin(phi1) : ConeConstant(c, phi1, phi2);
  if (!(std::fabs(n) > kFlattestCone)) return NotMade(ProjectionFault::StandardParallels);
  if (!(std::fabs(phi0) <= kQuarterTurn) ||
      (n * phi0 < 0.0 && std::fabs(phi0) > kFarthestLatitude)) {
    return NotMade(ProjectionFault::LatitudeOfOrigin);
  }
  const double scale = parameters.scaleFactor == 0.0 ? 1.0 : parameters.scaleFactor;
  if (!(scale > 0.5 && scale < 2.0)) return NotMade(ProjectionFault::ScaleFactor);
  return MakeOf(ConeOf(parameters, c, n, phi1, scale));
}

MadeProjection MakeLambertConformalConic1SP(const ProjectionParameters& parameters) {
  const double phi0 = parameters.latitudeOfOriginRad;
  const double n = std::sin(phi0);
  if (!(std::fabs(phi0) < kFarthestLatitude && std::fabs(n) > kFlattestCone)) {
    return NotMade(ProjectionFault::LatitudeOfOrigin);
  }
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  return MakeOf(ConeOf(parameters, c, n, phi0, parameters.scaleFactor));
}

}  // namespace tarvex
