// The values that flow through the coordinate chain.
#pragma once

#include <cmath>

namespace tarvex {

/// A position on an ellipsoid: radians, north and east positive, ellipsoid height in metres.
struct Geodetic {
  double latitudeRad = 0.0;
  double longitudeRad = 0.0;
  double heightM = 0.0;

  bool operator==(const Geodetic&) const = default;
};

/// Earth-centred cartesian coordinates in metres.
struct Geocentric {
  double xM = 0.0;
  double yM = 0.0;
  double zM = 0.0;

  bool operator==(const Geocentric&) const = default;
};

inline double Distance(const Geocentric& a, const Geocentric& b) {
  return std::hypot(a.xM - b.xM, a.yM - b.yM, a.zM - b.zM);
}

}  // namespace tarvex
