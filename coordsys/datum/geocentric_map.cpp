#include "coordsys/datum/geocentric_map.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarvex {
namespace {

constexpr double kProbe = 8388608.0;  // 2^23 m: a power of two beyond the earth's radius

constexpr bool IsSmall(double tangent) noexcept {
  return tangent < 0.01 && tangent > -0.01;
}

// The angle of a small tangent; the series leaves out 1e-19.
constexpr double ArcTangentSeries(double t) noexcept {
  const double t2 = t * t;
  return t * (1.0 - t2 * (1.0 / 3.0 - t2 * (1.0 / 5.0 - t2 * (1.0 / 7.0))));
}

// The angle of the direction (sine, cosine), by the series for the small turns of a datum shift.
double SmallAngle(double sine, double cosine) noexcept {
  const double t = sine / cosine;
  return cosine > 0.0 && IsSmall(t) ? ArcTangentSeries(t) : std::atan2(sine, cosine);
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

// The turned directions of latitude and longitude, as sine and cosine of the small angles.
struct GeodeticMap::Turned {
  double lat_sine;
  double lat_cosine;
  double lon_sine;
  double lon_cosine;
  double height_m;
};

[[gnu::always_inline]] inline GeodeticMap::Turned GeodeticMap::Turn(
    double sin_lat, double cos_lat, double sin_lon, double cos_lon,
    double height_m) const noexcept {
  const Geocentric point =
      map_.Apply(from_.FromDirection(sin_lat, cos_lat, sin_lon, cos_lon, height_m));
  const double p = std::sqrt(point.x_m * point.x_m + point.y_m * point.y_m);
  const auto [north, out, height] = to_.InMeridian(p, point.z_m);
  return {.lat_sine = north * cos_lat - out * sin_lat,
          .lat_cosine = out * cos_lat + north * sin_lat,
          .lon_sine = point.y_m * cos_lon - point.x_m * sin_lon,
          .lon_cosine = point.x_m * cos_lon + point.y_m * sin_lon,
          .height_m = height};
}

Geodetic GeodeticMap::Apply(const Geodetic& position) const noexcept {
  const Turned turned =
      Turn(std::sin(position.latitude_rad), std::cos(position.latitude_rad),
           std::sin(position.longitude_rad), std::cos(position.longitude_rad), position.height_m);
  return {.latitude_rad = position.latitude_rad + SmallAngle(turned.lat_sine, turned.lat_cosine),
          .longitude_rad =
              InHalfTurns(position.longitude_rad + SmallAngle(turned.lon_sine, turned.lon_cosine)),
          .height_m = turned.height_m};
}

// A block of positions on its way through the map, value by value.
struct GeodeticMap::Block {
  static constexpr std::size_t kSize = 64;

  double sin_lat[kSize] = {};
  double cos_lat[kSize] = {};
  double sin_lon[kSize] = {};
  double cos_lon[kSize] = {};
  double height_m[kSize] = {};
  double turn_lat[kSize];  // tangents of the small angles
  double turn_lon[kSize];
  double lat_cosine[kSize];
  double lon_cosine[kSize];

  bool IsSmallTurn(std::size_t i) const noexcept {
    return lat_cosine[i] > 0.0 && lon_cosine[i] > 0.0 && IsSmall(turn_lat[i]) &&
           IsSmall(turn_lon[i]);
  }
};

void GeodeticMap::TurnBlock(Block& block) const noexcept {
  const GeodeticMap map = *this;  // a copy that the block cannot alias
  for (std::size_t i = 0; i < Block::kSize; ++i) {
    const Turned turned = map.Turn(block.sin_lat[i], block.cos_lat[i], block.sin_lon[i],
                                   block.cos_lon[i], block.height_m[i]);
    block.turn_lat[i] = turned.lat_sine / turned.lat_cosine;
    block.turn_lon[i] = turned.lon_sine / turned.lon_cosine;
    block.lat_cosine[i] = turned.lat_cosine;
    block.lon_cosine[i] = turned.lon_cosine;
    block.height_m[i] = turned.height_m;
  }
}

// In blocks, with the arithmetic in a loop without calls and branches, which the compiler makes two
// positions at a time; to the last bit as one by one.
void GeodeticMap::Apply(std::span<double> latitude_rad, std::span<double> longitude_rad,
                        std::span<double> height_m) const noexcept {
  Block block;
  for (std::size_t done = 0; done < latitude_rad.size(); done += Block::kSize) {
    const std::size_t count = std::min(Block::kSize, latitude_rad.size() - done);
    for (std::size_t i = 0; i < count; ++i) {
      block.sin_lat[i] = std::sin(latitude_rad[done + i]);
      block.cos_lat[i] = std::cos(latitude_rad[done + i]);
      block.sin_lon[i] = std::sin(longitude_rad[done + i]);
      block.cos_lon[i] = std::cos(longitude_rad[done + i]);
      block.height_m[i] = height_m[done + i];
    }
    TurnBlock(block);
    for (std::size_t i = 0; i < count; ++i) {
      double& latitude = latitude_rad[done + i];
      double& longitude = longitude_rad[done + i];
      if (!block.IsSmallTurn(i)) {
        const Geodetic made = Apply({latitude, longitude, height_m[done + i]});
        latitude = made.latitude_rad;
        longitude = made.longitude_rad;
        height_m[done + i] = made.height_m;
        continue;
      }
      latitude += ArcTangentSeries(block.turn_lat[i]);
      longitude = InHalfTurns(longitude + ArcTangentSeries(block.turn_lon[i]));
      height_m[done + i] = block.height_m[i];
    }
  }
}

}  // namespace tarvex
