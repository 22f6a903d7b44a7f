// The values that flow through the coordinate chain.
#pragma once

namespace tarvex {

/// A position on an ellipsoid: radians, north and east positive, ellipsoid height in metres.
struct Geodetic {
  double latitude_rad = 0.0;
  double longitude_rad = 0.0;
  double height_m = 0.0;

  bool operator==(const Geodetic&) const = default;
};

/// Earth-centred cartesian coordinates in metres.
struct Geocentric {
  double x_m = 0.0;
  double y_m = 0.0;
  double z_m = 0.0;

  bool operator==(const Geocentric&) const = default;
};

}  // namespace tarvex
