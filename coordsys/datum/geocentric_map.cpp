#include "coordsys/datum/geocentric_map.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "coordsys/projections/elementary.h"

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
inline double SmallAngle(double sine, double cosine) noexcept {
  const double t = sine / cosine;
  return cosine > 0.0 && IsSmall(t) ? ArcTangentSeries(t) : std::atan2(sine, cosine);
}

double InHalfTurns(double longitude) noexcept {
  if (longitude > std::numbers::pi) return longitude - 2.0 * std::numbers::pi;
  if (longitude < -std::numbers::pi) return longitude + 2.0 * std::numbers::pi;
  return longitude;
}

bool IsFinite(const Geocentric& p) {
  return std::isfinite(p.xM) && std::isfinite(p.yM) && std::isfinite(p.zM);
}

}  // namespace

std::optional<GeocentricMap> TakeGeocentricMap(const std::function<bool(Geocentric&)>& transform) {
  Geocentric origin = {};
  Geocentric axis[3] = {{kProbe, 0, 0}, {0, kProbe, 0}, {0, 0, kProbe}};
  const Geocentric at = {4.0e6, -3.0e6, 3.9e6};
  Geocentric check = at;
  if (!transform(origin) || !transform(check)) return std::nullopt;
  GeocentricMap map;
  map.tM[0] = origin.xM;
  map.tM[1] = origin.yM;
  map.tM[2] = origin.zM;
  for (int i = 0; i < 3; ++i) {
    if (!transform(axis[i])) return std::nullopt;
    map.d[0][i] = (axis[i].xM - (i == 0 ? kProbe : 0.0) - origin.xM) / kProbe;
    map.d[1][i] = (axis[i].yM - (i == 1 ? kProbe : 0.0) - origin.yM) / kProbe;
    map.d[2][i] = (axis[i].zM - (i == 2 ? kProbe : 0.0) - origin.zM) / kProbe;
  }
  const Geocentric made = map.Apply(at);
  const double off =
      std::abs(made.xM - check.xM) + std::abs(made.yM - check.yM) + std::abs(made.zM - check.zM);
  if (!IsFinite(made) || !(off < 1e-5)) return std::nullopt;
  return map;
}

// The turned directions of latitude and longitude, as sine and cosine of the small angles.
struct GeodeticMap::Turned {
  double latSine;
  double latCosine;
  double lonSine;
  double lonCosine;
  double heightM;
};

[[gnu::always_inline]] inline GeodeticMap::Turned GeodeticMap::Turn(double sinLat, double cosLat,
                                                                    double sinLon, double cosLon,
                                                                    double heightM) const noexcept {
  const Geocentric point = map_.Apply(from_.FromDirection(sinLat, cosLat, sinLon, cosLon, heightM));
  const double p2 = point.xM * point.xM + point.yM * point.yM;
  const auto [north, out, height] = to_.InMeridian(p2, point.zM);
  return {.latSine = north * cosLat - out * sinLat,
          .latCosine = out * cosLat + north * sinLat,
          .lonSine = point.yM * cosLon - point.xM * sinLon,
          .lonCosine = point.xM * cosLon + point.yM * sinLon,
          .heightM = height};
}

Geodetic GeodeticMap::Apply(const Geodetic& position) const noexcept {
  const auto [sin, cos] = SineCosineOf(TwoLanes{position.latitudeRad, position.longitudeRad});
  const Turned turned = Turn(sin[0], cos[0], sin[1], cos[1], position.heightM);
  return {.latitudeRad = position.latitudeRad + SmallAngle(turned.latSine, turned.latCosine),
          .longitudeRad =
              InHalfTurns(position.longitudeRad + SmallAngle(turned.lonSine, turned.lonCosine)),
          .heightM = turned.heightM};
}

// A block of positions on its way through the map, value by value.
struct GeodeticMap::Block {
  static constexpr std::size_t kSize = 64;

  double sinLat[kSize] = {};
  double cosLat[kSize] = {};
  double sinLon[kSize] = {};
  double cosLon[kSize] = {};
  double heightM[kSize] = {};
  double turnLat[kSize];  // tangents of the small angles
  double turnLon[kSize];
  double latCosine[kSize];
  double lonCosine[kSize];

  bool IsSmallTurn(std::size_t i) const noexcept {
    return latCosine[i] > 0.0 && lonCosine[i] > 0.0 && IsSmall(turnLat[i]) && IsSmall(turnLon[i]);
  }
};

void GeodeticMap::TurnBlock(Block& block) const noexcept {
  const GeodeticMap map = *this;  // a copy that the block cannot alias
  for (std::size_t i = 0; i < Block::kSize; ++i) {
    const Turned turned = map.Turn(block.sinLat[i], block.cosLat[i], block.sinLon[i],
                                   block.cosLon[i], block.heightM[i]);
    block.turnLat[i] = turned.latSine / turned.latCosine;
    block.turnLon[i] = turned.lonSine / turned.lonCosine;
    block.latCosine[i] = turned.latCosine;
    block.lonCosine[i] = turned.lonCosine;
    block.heightM[i] = turned.heightM;
  }
}

// In blocks, with the arithmetic in a loop without calls and branches, which the compiler makes two
// positions at a time; to the last bit as one by one.
void GeodeticMap::Apply(std::span<double> latitudeRad, std::span<double> longitudeRad,
                        std::span<double> heightM) const noexcept {
  Block block;
  for (std::size_t done = 0; done < latitudeRad.size(); done += Block::kSize) {
    const std::size_t count = std::min(Block::kSize, latitudeRad.size() - done);
    for (std::size_t i = 0; i < count; ++i) {
      const auto [sin, cos] = SineCosineOf(TwoLanes{latitudeRad[done + i], longitudeRad[done + i]});
      block.sinLat[i] = sin[0];
      block.cosLat[i] = cos[0];
      block.sinLon[i] = sin[1];
      block.cosLon[i] = cos[1];
      block.heightM[i] = heightM[done + i];
    }
    TurnBlock(block);
    for (std::size_t i = 0; i < count; ++i) {
      double& latitude = latitudeRad[done + i];
      double& longitude = longitudeRad[done + i];
      if (!block.IsSmallTurn(i)) {
        const Geodetic made = Apply({latitude, longitude, heightM[done + i]});
        latitude = made.latitudeRad;
        longitude = made.longitudeRad;
        heightM[done + i] = made.heightM;
        continue;
      }
      latitude += ArcTangentSeries(block.turnLat[i]);
      longitude = InHalfTurns(longitude + ArcTangentSeries(block.turnLon[i]));
      heightM[done + i] = block.heightM[i];
    }
  }
}

}  // namespace tarvex
