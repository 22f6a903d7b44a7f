#include "coordsys/projections/alaska27.h"

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/point_kernel.h"
#include "core/units.h"

namespace tarvex {
namespace {

constexpr double kSecondsPerRadian = 206264.80624709636;
constexpr double kSouthernmost = 48.0 * kRadiansPerDegree;
constexpr double kNorthernmost = 75.0 * kRadiansPerDegree;
constexpr double kWidest_s = 6.0 * 3600.0;
constexpr double kFullCircle_s = 360.0 * 3600.0;
constexpr int kMostPasses = 5;
constexpr double kClosed_ft = 1e-8;

// How the longitude is handed to the series: seconds of arc, west positive, near the zone.
double WestSeconds(double longitude_rad, double central_meridian_s) {
  double west = -longitude_rad * kSecondsPerRadian;
  while (west - central_meridian_s > kFullCircle_s / 2.0) west -= kFullCircle_s;
  while (west - central_meridian_s < -kFullCircle_s / 2.0) west += kFullCircle_s;
  return west;
}

struct Feet {
  double northing = 0.0;
  double easting = 0.0;
};

struct Kernel {
  double false_easting_ft = 0.0;
  double central_meridian_s = 0.0;

  Feet Series(double latitude_rad, double west_s) const noexcept {
    const double s = latitude_rad * kSecondsPerRadian;
    const double c = std::cos(latitude_rad);
    const double c2 = c * c;
    const double c4 = c2 * c2;
    const double t = std::sqrt(1.0 - c2);
    const double l = (central_meridian_s - west_s) * 0.0001;
    const double l2 = l * l;
    const double w = 1.0 + 0.0068147849 * c2;
    const double r = std::sqrt(w);

    const double a = 1.0 - (1.0 - 2.0 * c2 - 0.00681478 * c4) * l2 * 0.000391740509;
    const double b = (1.0 - 20.0 * c2 + (0.4907 * c2 + 23.6047) * c4) * (l2 * l2) * 4.60382e-8;
    const double easting = ((a + b) / r) * l * c * 1017862.15 + false_easting_ft;

    const double p = (1.0 - 60.0 * c2 + (4.089 * c2 + 117.75) * c4) * l2 * 1.5346e-8;
    const double q = (0.00018577 * c2 + 0.06133306) * c4 + 6.0 * c2 - 1.0;
    const double d = ((p + q * 0.0001958703) * l2 + 1.0) / r * t * l2 * c * 24673.6748;
    const double arc = (s - 193900.05442) - (1052.893943 - 4.483386 * c2 + 0.023559 * c4) * t * c;
    return {d + arc * 101.269278503, easting};
  }

  bool Holds(double latitude_rad, double west_s) const noexcept {
    return latitude_rad >= kSouthernmost && latitude_rad <= kNorthernmost &&
           std::fabs(west_s - central_meridian_s) <= kWidest_s;
  }

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept {
    const double west_s = WestSeconds(position.longitude_rad, central_meridian_s);
    if (!Holds(position.latitude_rad, west_s)) return ProjectionResult::OutsideDomain;
    const Feet feet = Series(position.latitude_rad, west_s);
    point = {feet.northing * kUsFeetToMetres, feet.easting * kUsFeetToMetres};
    return ProjectionResult::Done;
  }

  // The publication's inverse series.
  void Start(Feet at, double& latitude_rad, double& west_s) const noexcept {
    const double omega = (193900.05442 + 0.00987466302498 * at.northing) / kSecondsPerRadian;
    const Direction o = Toward(omega);
    const double o2 = o.cos * o.cos;
    const double foot = omega + (1047.546691 + 6.193011 * o2 + 0.050699 * o2 * o2) * o.sin * o.cos /
                                    kSecondsPerRadian;
    const double c = std::cos(foot);
    const double c2 = c * c;
    const double c4 = c2 * c2;
    const double x = (at.easting - false_easting_ft) * 1e-6;
    const double x2 = x * x;
    const double w = 1.0 + 0.0068147849 * c2;
    latitude_rad =
        foot -
        233.973645 * x2 * w * w * std::sqrt(1.0 / c2 - 1.0) *
            (1.0 - 1.8905604e-4 * x2 * (1.9591113 + 3.0 / c2 + 0.081359 * c2 + 2.79e-4 * c4) +
             1.42969e-8 * x2 * x2 * w * (15.5 + 45.0 / c4 - 0.307 / c2 + 1.53 * c2)) /
            kSecondsPerRadian;
    west_s = central_meridian_s -
             9824.513072 * std::sqrt(w) * x / c *
                 (1.0 - 3.7811208e-4 * w * x2 * (w - 2.0 + 2.0 / c2) +
                  4.2890624e-8 * w * x2 * x2 * (1.054 + 24.0 / c4 - 20.0 / c2 - 0.0136 * c2));
  }

  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept {
    const Feet at{point.northing_m * kMetresToUsFeet, point.easting_m * kMetresToUsFeet};
    constexpr double kFarthest_ft = 1e7;
    if (!(std::fabs(at.northing) < kFarthest_ft &&
          std::fabs(at.easting - false_easting_ft) < kFarthest_ft)) {
      return ProjectionResult::OutsideDomain;
    }
    double latitude_rad = 0.0;
    double west_s = 0.0;
    Start(at, latitude_rad, west_s);
    constexpr double kRadius_ft = 6.38e6 * kMetresToUsFeet;
    for (int pass = 0; pass < kMostPasses; ++pass) {
      const Feet reached = Series(latitude_rad, west_s);
      const double d_north = at.northing - reached.northing;
      const double d_east = at.easting - reached.easting;
      if (std::fabs(d_north) < kClosed_ft && std::fabs(d_east) < kClosed_ft) break;
      latitude_rad += d_north / kRadius_ft;
      west_s -= d_east / (kRadius_ft * std::cos(latitude_rad)) * kSecondsPerRadian;
    }
    constexpr double kClosing_s = 1e-3;
    if (!(latitude_rad >= kSouthernmost - 1e-9 && latitude_rad <= kNorthernmost + 1e-9 &&
          std::fabs(west_s - central_meridian_s) <= kWidest_s + kClosing_s)) {
      return ProjectionResult::OutsideDomain;
    }
    position.latitude_rad = latitude_rad;
    position.longitude_rad = WrappedLongitude(-west_s / kSecondsPerRadian);
    return ProjectionResult::Done;
  }

  std::optional<double> PointScale(LatLon position) const noexcept {
    const double west_s = WestSeconds(position.longitude_rad, central_meridian_s);
    return AlaskaPointScale(position.latitude_rad, west_s / kSecondsPerRadian, false_easting_ft);
  }
};

}  // namespace

double AlaskaPointScale(double latitude_rad, double longitude_rad, double false_easting_ft) {
  const double c = std::cos(latitude_rad);
  const double w = 1.0 + 0.0068147849 * (c * c);
  const double x = (longitude_rad - false_easting_ft) * 0.000001;
  return 0.9999 * (1.0 + 0.0011343362410670325 * (x * x) * (w * w));
}

MadeProjection MakeTransverseMercatorAlaska27(const ProjectionParameters& parameters) {
  Kernel kernel;
  kernel.false_easting_ft = parameters.coefficients[0];
  kernel.central_meridian_s = parameters.coefficients[1];
  if (kernel.false_easting_ft == 0.0) {
    kernel.false_easting_ft = parameters.false_easting_m * kMetresToUsFeet;
  }
  if (kernel.central_meridian_s == 0.0) {
    kernel.central_meridian_s = -parameters.central_meridian_rad * kSecondsPerRadian;
  }
  if (!(std::fabs(kernel.false_easting_ft) < 1e8 &&
        std::fabs(kernel.central_meridian_s) > 100.0 * 3600.0 &&
        std::fabs(kernel.central_meridian_s) <= kFullCircle_s)) {
    return {nullptr, ProjectionFault::Coefficients};
  }
  return MakeOfPoints(kernel);
}

}  // namespace tarvex
