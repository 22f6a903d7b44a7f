#include "coordsys/projections/oblique_mercator.h"

#include <algorithm>

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_kernel.h"

namespace tarvex {
namespace {

constexpr double kQuarter = std::numbers::pi / 2.0;
// Of the sphere, whose longitudes are stretched by b: beyond it lies the other side of the seam.
constexpr double kHalfTurn = std::numbers::pi * (1.0 + 1e-15);
constexpr double kFarthestAcross = 0.95;                 // sine of 71 degrees
constexpr double kFarthestAcrossIsometric = 1.83178083;  // atanh of it
constexpr double kClosing = 1e-9;
constexpr double kAtPole = 1e-32;  // keeps the pole itself out of a division by nothing

// Quantities of the guidance note: B, A/B, ln H, the skew angle g0 and longitude lambda0 of the
// natural origin, the rectified angle gc.
struct Kernel {
  EllipsoidConstants ellipsoid;
  double b = 1.0;
  double over_b = 1.0;
  double radius_m = 0.0;
  double over_radius = 0.0;
  double ln_h = 0.0;
  Direction g0;
  Direction gc;
  double lambda0_rad = 0.0;
  double centre_angle = 0.0;  ///< of the centre along the central line, from the natural origin
  double origin_angle = 0.0;  ///< of the false origin: 0, or the centre's
  double false_easting_m = 0.0;
  double false_northing_m = 0.0;

  template <typename Points, typename Lanes>
  LaneMask<Lanes> Forward(LanePosition<Lanes> position, LanePoint<Lanes>& point) const noexcept {
    const Lanes turn = b * WrappedLongitude(position.longitude_rad - lambda0_rad);
    DirectionOf<Lanes> phi;
    DirectionOf<Lanes> d;
    Points::Toward(position.latitude_rad, turn, phi, d);
    const Lanes exp_w = ExponentialOf(ln_h + b * ellipsoid.Isometric(phi));
    // All times 2 e^w, so that a single division is left: cosh w, sinh w and 1 become these.
    const Lanes square = exp_w * exp_w;
    const Lanes cosh = square + 1.0;
    const Lanes sinh = square - 1.0;
    const Lanes one = 2.0 * exp_w;
    const Lanes aside = d.sin * one;
    const Lanes across = sinh * g0.sin - aside * g0.cos;  // times cosh w
    const Lanes along =
        WrappedLongitude(AngleOf(sinh * g0.cos + aside * g0.sin, d.cos * one) - centre_angle);

    const Lanes v = -0.5 * radius_m * LogarithmOf((cosh + across) / (cosh - across));
    const Lanes u = radius_m * (along + centre_angle - origin_angle);
    point.easting_m = false_easting_m + v * gc.cos + u * gc.sin;
    point.northing_m = false_northing_m + u * gc.cos - v * gc.sin;
    return AtMost(Absolute(across), kFarthestAcross * cosh) & Within(along, kQuarter) &
           Within(turn, kHalfTurn);
  }

  template <typename Points, typename Lanes>
  LaneMask<Lanes> Inverse(LanePoint<Lanes> point, LanePosition<Lanes>& position) const noexcept {
    const Lanes x = (point.easting_m - false_easting_m) * over_radius;
    const Lanes y = (point.northing_m - false_northing_m) * over_radius;
    const Lanes v = x * gc.cos - y * gc.sin;
    const Lanes u = y * gc.cos + x * gc.sin + origin_angle;

    const Lanes exp_v = ExponentialOf(-v);
    const Lanes over_exp_v = 1.0 / exp_v;
    const Lanes sinh_v = 0.5 * (exp_v - over_exp_v);
    const DirectionOf<Lanes> z = Toward(u);
    const Lanes to_pole = z.sin * g0.cos + sinh_v * g0.sin;
    const Lanes aside = sinh_v * g0.cos - z.sin * g0.sin;
    // The sphere's isometric latitude from both legs: the sine alone is blunt at a pole.
    const Lanes from_axis = SquareRootOf(z.cos * z.cos + aside * aside + kAtPole);
    const Lanes sphere = LogarithmOf((Absolute(to_pole) + 0.5 * (exp_v + over_exp_v)) / from_axis);
    const Lanes psi = (WithSignOf(sphere, to_pole) - ln_h) * over_b;
    const DirectionOf<Lanes> chi = ellipsoid.ConformalFromExpIsometric(ExponentialOf(psi));
    Lanes turn;
    ellipsoid.FromConformal<Points>(chi, {aside, z.cos}, position.latitude_rad, turn);
    position.longitude_rad = WrappedLongitude(lambda0_rad - turn * over_b);
    return Within(v, kFarthestAcrossIsometric + kClosing) &
           Within(u - centre_angle, kQuarter + kClosing);
  }
};

// A line of azimuth 171.3 degrees is the line of azimuth -8.7 walked the other way: u, v and the
// rectified angle turn by half a circle together, so that the grid is the same.
struct CentralLine {
  double azimuth_rad = 0.0;  ///< -90 to 90 degrees
  double rectified_rad = 0.0;
};

CentralLine CentralLineOf(const ProjectionParameters& parameters) {
  CentralLine line;
  line.azimuth_rad = WrappedLongitude(parameters.parallel_2_or_azimuth_rad);
  const bool rectified_given = parameters.rectified_angle_rad != 0.0;
  line.rectified_rad = rectified_given ? parameters.rectified_angle_rad : line.azimuth_rad;
  if (std::fabs(line.azimuth_rad) > kQuarter) {
    line.azimuth_rad -= std::copysign(std::numbers::pi, line.azimuth_rad);
    line.rectified_rad -= std::copysign(std::numbers::pi, line.rectified_rad);
  }
  return line;
}

MadeProjection Make(const ProjectionParameters& parameters, bool false_origin_at_centre) {
  const double phi = parameters.latitude_of_origin_rad;
  const CentralLine line = CentralLineOf(parameters);
  if (!(std::fabs(phi) > 1e-6 && std::fabs(phi) < kQuarter * 0.99)) {
    return {nullptr, ProjectionFault::LatitudeOfOrigin};
  }
  if (!(std::fabs(line.azimuth_rad) > 1e-6)) return {nullptr, ProjectionFault::Azimuth};
  const EllipsoidConstants c = ConstantsOf(parameters.ellipsoid);
  const Direction centre = Toward(phi);
  const Direction azimuth = Toward(line.azimuth_rad);
  const double cos2 = centre.cos * centre.cos;
  const double w2 = 1.0 - c.e2 * centre.sin * centre.sin;
  Kernel kernel;
  kernel.ellipsoid = c;
  kernel.b = std::sqrt(1.0 + c.ep2 * cos2 * cos2);
  kernel.over_b = 1.0 / kernel.b;
  kernel.radius_m = c.a * parameters.scale_factor * std::sqrt(1.0 - c.e2) / w2;
  kernel.over_radius = 1.0 / kernel.radius_m;
  // sqrt(D^2 - 1) with the sign of the latitude, in closed form: where the azimuth is near 90
  // degrees, differences of nearly equal numbers would cost centimetres.
  const double root = centre.sin / centre.cos * std::sqrt((1.0 - c.e2) / w2);
  const double d = std::sqrt(1.0 + root * root);
  kernel.ln_h = std::asinh(root) - kernel.b * c.Isometric(phi);
  kernel.g0.sin = azimuth.sin / d;
  kernel.g0.cos = std::hypot(root, azimuth.cos) / d;
  kernel.lambda0_rad =
      parameters.central_meridian_rad - std::atan2(root * azimuth.sin, d * azimuth.cos) / kernel.b;
  kernel.gc = Toward(line.rectified_rad);
  kernel.centre_angle = std::copysign(std::atan2(std::fabs(root), azimuth.cos), phi);
  kernel.origin_angle = false_origin_at_centre ? kernel.centre_angle : 0.0;
  kernel.false_easting_m = parameters.false_easting_m;
  kernel.false_northing_m = parameters.false_northing_m;
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
