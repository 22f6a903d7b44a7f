#include "coordsys/projections/double_cylindrical.h"

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kQuarter = std::numbers::pi / 2.0;
constexpr double kFarthestAcross = 0.95;                 // sine of 71 degrees
constexpr double kFarthestAcrossIsometric = 1.83178083;  // atanh of it
constexpr double kClosing = 1e-9;

struct Kernel {
  EllipsoidConstants ellipsoid;
  double c = 1.0;  ///< exponent of the sphere
  double over_c = 1.0;
  double k = 0.0;  ///< constant of the isometric latitude on the sphere
  Direction b0;    ///< latitude of the centre on the sphere
  double radius_m = 0.0;
  double central_meridian_rad = 0.0;
  double false_easting_m = 0.0;
  double false_northing_m = 0.0;

  ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept {
    const double exp_w =
        std::exp(c * ellipsoid.Isometric(Direction::Of(position.latitude_rad)) + k);
    const double square = exp_w * exp_w;
    const double norm = 1.0 / (square + 1.0);
    const Direction b{(square - 1.0) * norm, 2.0 * exp_w * norm};
    const Direction l =
        Direction::Of(c * WrappedLongitude(position.longitude_rad - central_meridian_rad));
    const double forth = b.cos * l.cos;
    const double across = b0.cos * b.sin - b0.sin * forth;
    const double along = std::atan2(b.cos * l.sin, b0.sin * b.sin + b0.cos * forth);
    if (!(std::fabs(across) <= kFarthestAcross && std::fabs(along) <= kQuarter)) {
      return ProjectionResult::OutsideDomain;
    }
    point.easting_m = false_easting_m + radius_m * along;
    point.northing_m =
        false_northing_m + 0.5 * radius_m * std::log((1.0 + across) / (1.0 - across));
    return ProjectionResult::Done;
  }

  ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept {
    const double along = (point.easting_m - false_easting_m) / radius_m;
    const double across = (point.northing_m - false_northing_m) / radius_m;
    if (!(std::fabs(across) <= kFarthestAcrossIsometric + kClosing &&
          std::fabs(along) <= kQuarter + kClosing)) {
      return ProjectionResult::OutsideDomain;
    }
    const double exp_across = std::exp(across);
    const double square = exp_across * exp_across;
    const double norm = 1.0 / (square + 1.0);
    const Direction on_line{(square - 1.0) * norm, 2.0 * exp_across * norm};
    const Direction l = Direction::Of(along);
    const double forth = on_line.cos * l.cos;
    const double east = on_line.cos * l.sin;
    const double sine = b0.cos * on_line.sin + b0.sin * forth;
    const double north = b0.cos * forth - b0.sin * on_line.sin;
    const double up = 1.0 + std::fabs(sine);
    const double sphere = 0.5 * std::log(up * up / (east * east + north * north));
    const double psi = (std::copysign(sphere, sine) - k) * over_c;
    position.latitude_rad = ellipsoid.FromExpIsometric(std::exp(psi));
    position.longitude_rad =
        WrappedLongitude(central_meridian_rad + std::atan2(east, north) * over_c);
    return ProjectionResult::Done;
  }
};

}  // namespace

MadeProjection MakeDoubleCylindrical(const ProjectionParameters& parameters) {
  const double phi0 = parameters.latitude_of_origin_rad;
  if (!(std::fabs(phi0) < kQuarter * 0.99)) return {nullptr, ProjectionFault::LatitudeOfOrigin};
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  const Direction centre = Direction::Of(phi0);
  const double cos2 = centre.cos * centre.cos;
  Kernel kernel;
  kernel.ellipsoid = c;
  kernel.c = std::sqrt(1.0 + c.ep2 * cos2 * cos2);
  kernel.over_c = 1.0 / kernel.c;
  kernel.b0.sin = centre.sin / kernel.c;
  kernel.b0.cos = std::sqrt(1.0 - kernel.b0.sin * kernel.b0.sin);
  kernel.k = std::asinh(kernel.b0.sin / kernel.b0.cos) - kernel.c * c.Isometric(centre);
  kernel.radius_m = parameters.scale_factor * c.a * std::sqrt(1.0 - c.e2) /
                    (1.0 - c.e2 * centre.sin * centre.sin);
  kernel.central_meridian_rad = parameters.central_meridian_rad;
  kernel.false_easting_m = parameters.false_easting_m;
  kernel.false_northing_m = parameters.false_northing_m;
  return MakeOf(kernel);
}

}  // namespace tarvex
