// A linear map of earth-centred coordinates with its matrix multiplied out once, and the same map
// between geodetic positions on two ellipsoids: the inner loop of every seven-parameter conversion.
//
// The matrix is kept as its difference from the identity, so that a shift of some hundred metres is
// added to coordinates of six million without losing their last digits: 1e-9 m.
#pragma once

#include <functional>
#include <optional>
#include <span>

#include "coordsys/coordinates.h"
#include "coordsys/datum/geocentric.h"

namespace tarvex {

struct GeocentricMap {
  double d[3][3] = {};  ///< matrix minus identity
  double tM[3] = {};

  Geocentric Apply(const Geocentric& p) const noexcept {
    return {p.xM + (d[0][0] * p.xM + d[0][1] * p.yM + d[0][2] * p.zM + tM[0]),
            p.yM + (d[1][0] * p.xM + d[1][1] * p.yM + d[1][2] * p.zM + tM[1]),
            p.zM + (d[2][0] * p.xM + d[2][1] * p.yM + d[2][2] * p.zM + tM[2])};
  }
};

/// Takes the twelve coefficients of a map that is known only by what it does to a point: from the
/// origin and three points on the axes, checked at a fourth. Nothing when a call fails or when the
/// check is off by more than 1e-5 m, that is when the map is not linear.
std::optional<GeocentricMap> TakeGeocentricMap(const std::function<bool(Geocentric&)>& transform);

/// Geodetic on one ellipsoid, through a linear map, to geodetic on another.
class GeodeticMap {
 public:
  GeodeticMap(const Ellipsoid& from, const Ellipsoid& to, const GeocentricMap& map) noexcept
      : from_(from), to_(to), map_(map) {}

  /// Longitudes come back in -pi..pi. Within 1e-8 m of the three steps made one by one; a NaN or an
  /// infinity comes back as a NaN.
  Geodetic Apply(const Geodetic& position) const noexcept;
  /// Whole arrays of one length, in place.
  void Apply(std::span<double> latitudeRad, std::span<double> longitudeRad,
             std::span<double> heightM) const noexcept;

 private:
  struct Turned;
  struct Block;

  Turned Turn(double sinLat, double cosLat, double sinLon, double cosLon,
              double heightM) const noexcept;
  void TurnBlock(Block& block) const noexcept;

  GeocentricFrame from_;
  GeocentricFrame to_;
  GeocentricMap map_;
};

}  // namespace tarvex
