#include "coordsys/projections/double_cylindrical.h"

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kQuarter = std::numbers::pi / 2.0;
// Of the sphere, whose longitudes are stretched by c: beyond it lies the other side of the seam.
constexpr double kHalfTurn = std::numbers::pi * (1.0 + 1e-15);
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
  double over_radius = 0.0;
  double central_meridian_rad = 0.0;
  double false_easting_m = 0.0;
  double false_northing_m = 0.0;

  template <typename Points, typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    const Lanes turn = c * WrappedLongitude(position.longitude_rad - central_meridian_rad);
    DirectionOf<Lanes> phi;
    DirectionOf<Lanes> l;
    Points::Toward(position.latitude_rad, turn, phi, l);
    const Lanes exp_w = ExponentialOf(c * ellipsoid.Isometric(phi) + k);
    const Lanes square = exp_w * exp_w;
    // The latitude on the sphere of this length, so that a single division is left.
    const Lanes length = square + 1.0;
    const DirectionOf<Lanes> b{square - 1.0, 2.0 * exp_w};
    const Lanes forth = b.cos * l.cos;
    const Lanes across = b0.cos * b.sin - b0.sin * forth;
    const Lanes along = AngleOf(b.cos * l.sin, b0.sin * b.sin + b0.cos * forth);
    point.easting_m = false_easting_m + radius_m * along;
    point.northing_m =
        false_northing_m + 0.5 * radius_m * LogarithmOf((length + across) / (length - across));
    return AtMost(Absolute(across), kFarthestAcross * length) & Within(along, kQuarter) &
           Within(turn, kHalfTurn);
  }

  template <typename Points, typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    const Lanes along = (point.easting_m - false_easting_m) * over_radius;
    const Lanes across = (point.northing_m - false_northing_m) * over_radius;
    const Lanes exp_across = ExponentialOf(across);
    const Lanes square = exp_across * exp_across;
    const Lanes norm = 1.0 / (square + 1.0);
    const DirectionOf<Lanes> on_line{(square - 1.0) * norm, 2.0 * exp_across * norm};
    const DirectionOf<Lanes> l = Toward(along);
    const Lanes forth = on_line.cos * l.cos;
    const Lanes east = on_line.cos * l.sin;
    const Lanes sine = b0.cos * on_line.sin + b0.sin * forth;
    const Lanes north = b0.cos * forth - b0.sin * on_line.sin;
    const Lanes up = 1.0 + Absolute(sine);
    const Lanes sphere = 0.5 * LogarithmOf(up * up / (east * east + north * north));
    const Lanes psi = (WithSignOf(sphere, sine) - k) * over_c;
    const DirectionOf<Lanes> chi = ellipsoid.ConformalFromExpIsometric(ExponentialOf(psi));
    Lanes turn;
    ellipsoid.FromConformal<Points>(chi, {east, north}, position.latitude_rad, turn);
    position.longitude_rad = WrappedLongitude(central_meridian_rad + turn * over_c);
    return Within(across, kFarthestAcrossIsometric + kClosing) & Within(along, kQuarter + kClosing);
  }
};

}  // namespace

MadeProjection MakeDoubleCylindrical(const ProjectionParameters& parameters) {
  const double phi0 = parameters.latitude_of_origin_rad;
  if (!(std::fabs(phi0) < kQuarter * 0.99)) return {nullptr, ProjectionFault::LatitudeOfOrigin};
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  const Direction centre = Toward(phi0);
  const double cos2 = centre.cos * centre.cos;
  Kernel kernel;
  kernel.ellipsoid = c;
  kernel.c = std::sqrt(1.0 + c.ep2 * cos2 * cos2);
  kernel.over_c = 1.0 / kernel.c;
  kernel.b0.sin = centre.sin / kernel.c;
  kernel.b0.cos = std::sqrt(1.0 - kernel.b0.sin * kernel.b0.sin);
  kernel.k = std::asinh(kernel.b0.sin / kernel.b0.cos) - kernel.c * c.Isometric(phi0);
  kernel.radius_m = parameters.scale_factor * c.a * std::sqrt(1.0 - c.e2) /
                    (1.0 - c.e2 * centre.sin * centre.sin);
  kernel.over_radius = 1.0 / kernel.radius_m;
  kernel.central_meridian_rad = parameters.central_meridian_rad;
  kernel.false_easting_m = parameters.false_easting_m;
  kernel.false_northing_m = parameters.false_northing_m;
  return MakeOf(kernel);
}

}  // namespace tarvex
