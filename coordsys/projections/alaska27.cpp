#include "coordsys/projections/alaska27.h"

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/point_kernel.h"
#include "core/units/units.h"

namespace tarvex {
namespace {

constexpr double kSecondsPerRadian = 206264.80624709636;
constexpr double kSouthernmost = 48.0 * kRadiansPerDegree;
constexpr double kNorthernmost = 75.0 * kRadiansPerDegree;
constexpr double kWidestS = 6.0 * 3600.0;
constexpr double kFullCircleS = 360.0 * 3600.0;
constexpr int kMostPasses = 5;
constexpr double kClosedFt = 1e-8;

// How the longitude is handed to the series: seconds of arc, west positive, near the zone.
double WestSeconds(double longitudeRad, double centralMeridianS) {
  double west = -longitudeRad * kSecondsPerRadian;
  while (west - centralMeridianS > kFullCircleS / 2.0) west -= kFullCircleS;
  while (west - centralMeridianS < -kFullCircleS / 2.0) west += kFullCircleS;
  return west;
}

struct Feet {
  double northing = 0.0;
  double easting = 0.0;
};

struct Kernel {
  double falseEastingFt = 0.0;
  double centralMeridianS = 0.0;

  Feet Series(double latitudeRad, double westS) const noexcept {
    const double s = latitudeRad * kSecondsPerRadian;
    const double c = std::cos(latitudeRad);
    const double c2 = c * c;
    const double c4 = c2 * c2;
    const double t = std::sqrt(1.0 - c2);
    const double l = (centralMeridianS - westS) * 0.0001;
    const double l2 = l * l;
    const double w = 1.0 + 0.0068147849 * c2;
    const double r = std::sqrt(w);

    const double a = 1.0 - (1.0 - 2.0 * c2 - 0.00681478 * c4) * l2 * 0.000391740509;
    const double b = (1.0 - 20.0 * c2 + (0.4907 * c2 + 23.6047) * c4) * (l2 * l2) * 4.60382e-8;
    const double easting = ((a + b) / r) * l * c * 1017862.15 + falseEastingFt;

    const double p = (1.0 - 60.0 * c2 + (4.089 * c2 + 117.75) * c4) * l2 * 1.5346e-8;
    const double q = (0.00018577 * c2 + 0.06133306) * c4 + 6.0 * c2 - 1.0;
    const double d = ((p + q * 0.0001958703) * l2 + 1.0) / r * t * l2 * c * 24673.6748;
    const double arc = (s - 193900.05442) - (1052.893943 - 4.483386 * c2 + 0.023559 * c4) * t * c;
    return {d + arc * 101.269278503, easting};
  }

  bool Holds(double latitudeRad, double westS) const noexcept {
    return latitudeRad >= kSouthernmost && latitudeRad <= kNorthernmost &&
           std::fabs(westS - centralMeridianS) <= kWidestS;
  }

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept {
    const double westS = WestSeconds(position.longitudeRad, centralMeridianS);
    if (!Holds(position.latitudeRad, westS)) return ProjectionResult::OutsideDomain;
    const Feet feet = Series(position.latitudeRad, westS);
    point = {feet.northing * kUsFeetToMetres, feet.easting * kUsFeetToMetres};
    return ProjectionResult::Done;
  }

  // The publication's inverse series.
  void Start(Feet at, double& latitudeRad, double& westS) const noexcept {
    const double omega = (193900.05442 + 0.00987466302498 * at.northing) / kSecondsPerRadian;
    const Direction o = Toward(omega);
    const double o2 = o.cos * o.cos;
    const double foot = omega + (1047.546691 + 6.193011 * o2 + 0.050699 * o2 * o2) * o.sin * o.cos /
                                    kSecondsPerRadian;
    const double c = std::cos(foot);
    const double c2 = c * c;
    const double c4 = c2 * c2;
    const double x = (at.easting - falseEastingFt) * 1e-6;
    const double x2 = x * x;
    const double w = 1.0 + 0.0068147849 * c2;
    latitudeRad =
        foot -
        233.973645 * x2 * w * w * std::sqrt(1.0 / c2 - 1.0) *
            (1.0 - 1.8905604e-4 * x2 * (1.9591113 + 3.0 / c2 + 0.081359 * c2 + 2.79e-4 * c4) +
             1.42969e-8 * x2 * x2 * w * (15.5 + 45.0 / c4 - 0.307 / c2 + 1.53 * c2)) /
            kSecondsPerRadian;
    westS = centralMeridianS -
            9824.513072 * std::sqrt(w) * x / c *
                (1.0 - 3.7811208e-4 * w * x2 * (w - 2.0 + 2.0 / c2) +
                 4.2890624e-8 * w * x2 * x2 * (1.054 + 24.0 / c4 - 20.0 / c2 - 0.0136 * c2));
  }

  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept {
    const Feet at{point.northingM * kMetresToUsFeet, point.eastingM * kMetresToUsFeet};
    constexpr double kFarthestFt = 1e7;
    if (!(std::fabs(at.northing) < kFarthestFt &&
          std::fabs(at.easting - falseEastingFt) < kFarthestFt)) {
      return ProjectionResult::OutsideDomain;
    }
    double latitudeRad = 0.0;
    double westS = 0.0;
    Start(at, latitudeRad, westS);
    constexpr double kRadiusFt = 6.38e6 * kMetresToUsFeet;
    for (int pass = 0; pass < kMostPasses; ++pass) {
      const Feet reached = Series(latitudeRad, westS);
      const double dNorth = at.northing - reached.northing;
      const double dEast = at.easting - reached.easting;
      if (std::fabs(dNorth) < kClosedFt && std::fabs(dEast) < kClosedFt) break;
      latitudeRad += dNorth / kRadiusFt;
      westS -= dEast / (kRadiusFt * std::cos(latitudeRad)) * kSecondsPerRadian;
    }
    constexpr double kClosingS = 1e-3;
    if (!(latitudeRad >= kSouthernmost - 1e-9 && latitudeRad <= kNorthernmost + 1e-9 &&
          std::fabs(westS - centralMeridianS) <= kWidestS + kClosingS)) {
      return ProjectionResult::OutsideDomain;
    }
    position.latitudeRad = latitudeRad;
    position.longitudeRad = WrappedLongitude(-westS / kSecondsPerRadian);
    return ProjectionResult::Done;
  }

  std::optional<double> PointScale(LatLon position) const noexcept {
    const double westS = WestSeconds(position.longitudeRad, centralMeridianS);
    return AlaskaPointScale(position.latitudeRad, westS / kSecondsPerRadian, falseEastingFt);
  }
};

}  // namespace

double AlaskaPointScale(double latitudeRad, double longitudeRad, double falseEastingFt) {
  const double c = std::cos(latitudeRad);
  const double w = 1.0 + 0.0068147849 * (c * c);
  const double x = (longitudeRad - falseEastingFt) * 0.000001;
  return 0.9999 * (1.0 + 0.0011343362410670325 * (x * x) * (w * w));
}

MadeProjection MakeTransverseMercatorAlaska27(const ProjectionParameters& parameters) {
  Kernel kernel;
  kernel.falseEastingFt = parameters.coefficients[0];
  kernel.centralMeridianS = parameters.coefficients[1];
  if (kernel.falseEastingFt == 0.0) {
    kernel.falseEastingFt = parameters.falseEastingM * kMetresToUsFeet;
  }
  if (kernel.centralMeridianS == 0.0) {
    kernel.centralMeridianS = -parameters.centralMeridianRad * kSecondsPerRadian;
  }
  if (!(std::fabs(kernel.falseEastingFt) < 1e8 &&
        std::fabs(kernel.centralMeridianS) > 100.0 * 3600.0 &&
        std::fabs(kernel.centralMeridianS) <= kFullCircleS)) {
    return NotMade(ProjectionFault::Coefficients);
  }
  return MakeOfPoints(kernel);
}

}  // namespace tarvex
