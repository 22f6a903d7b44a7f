#include "coordsys/datum/geocentric_map.h"

#include <cmath>
#include <numbers>

namespace tarvex {
namespace {

constexpr double kProbe = 8388608.0;  // 2^23 m: a power of two beyond the earth's radius

// The angle of the direction (sine, cosine) for the small turns that a datum shift makes; the
// series leaves out 1e-19.
double SmallAngle(double sine, double cosine) noexcept {
  const double t = sine / cosine;
  if (!(cosine > 0.0 && t < 0.01 && t > -0.01)) return std::atan2(sine, cosine);
  const double t2 = t * t;
  return t * (1.0 - t2 * (1.0 / 3.0 - t2 * (1.0 / 5.0 - t2 * (1.0 / 7.0))));
}

double InHalfTurns(double longitude) noexcept {
  if (longitude > std::numbers::pi) return longitude - 2.0 * std::numbers::pi;
  if (longitude < -std::numbers::pi) return longitude + 2.0 * std::numbers::pi;
  return longitude;
}

bool IsFinite(const Geocentric& p) {
  return std::isfinite(p.x_m) && std::isfinite(p.y_m) && std::isfinite(p.z_m);
}

}  // namespace

std::optional<GeocentricMap> TakeGeocentricMap(const std::function<bool(Geocentric&)>& transform) {
  Geocentric origin = {};
  Geocentric axis[3] = {{kProbe, 0, 0}, {0, kProbe, 0}, {0, 0, kProbe}};
  const Geocentric at = {4.0e6, -3.0e6, 3.9e6};
  Geocentric check = at;
  if (!transform(origin) || !transform(check)) return std::nullopt;
  GeocentricMap map;
  map.t_m[0] = origin.x_m;
  map.t_m[1] = origin.y_m;
  map.t_m[2] = origin.z_m;
  for (int i = 0; i < 3; ++i) {
    if (!transform(axis[i])) return std::nullopt;
    map.d[0][i] = (axis[i].x_m - (i == 0 ? kProbe : 0.0) - origin.x_m) / kProbe;
    map.d[1][i] = (axis[i].y_m - (i == 1 ? kProbe : 0.0) - origin.y_m) / kProbe;
    map.d[2][i] = (axis[i].z_m - (i == 2 ? kProbe : 0.0) - origin.z_m) / kProbe;
  }
  const Geocentric made = map.Apply(at);
  const double off = std::abs(made.x_m - check.x_m) + std::abs(made.y_m - check.y_m) +
                     std::abs(made.z_m - check.z_m);
  if (!IsFinite(made) || !(off < 1e-5)) return std::nullopt;
  return map;
}

Geodetic GeodeticMap::Apply(const Geodetic& position) const noexcept {
  const double sin_lat = std::sin(position.latitude_rad);
  const double cos_lat = std::cos(position.latitude_rad);
  const double sin_lon = std::sin(position.longitude_rad);
  const double cos_lon = std::cos(position.longitude_rad);
  const Geocentric point =
      map_.Apply(from_.FromDirection(sin_lat, cos_lat, sin_lon, cos_lon, position.height_m));

  // Turned by the old longitude and latitude, the new ones are small angles: no arc tangent needed.
  const double p = std::sqrt(point.x_m * point.x_m + point.y_m * point.y_m);
  const auto [north, out, height] = to_.InMeridian(p, point.z_m);
  const double turn_lon = SmallAngle(point.y_m * cos_lon - point.x_m * sin_lon,
                                     point.x_m * cos_lon + point.y_m * sin_lon);
  const double turn_lat =
      SmallAngle(north * cos_lat - out * sin_lat, out * cos_lat + north * sin_lat);
  return {.latitude_rad = position.latitude_rad + turn_lat,
          .longitude_rad = InHalfTurns(position.longitude_rad + turn_lon),
          .height_m = height};
}

void GeodeticMap::Apply(std::span<Geodetic> positions) const noexcept {
  for (Geodetic& position : positions) position = Apply(position);
}

}  // namespace tarvex
