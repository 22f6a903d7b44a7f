#include "coordsys/datum/geocentric.h"

namespace tarvex {

GeocentricFrame::GeocentricFrame(const Ellipsoid& ellipsoid) noexcept
    : a_(ellipsoid.semi_major_m),
      b_(ellipsoid.semi_major_m * (1.0 - ellipsoid.flattening)),
      e2_(ellipsoid.flattening * (2.0 - ellipsoid.flattening)),
      ep2_(e2_ / (1.0 - e2_)) {}

Geocentric GeocentricFrame::ToGeocentric(const Geodetic& position) const noexcept {
  return FromDirection(std::sin(position.latitude_rad), std::cos(position.latitude_rad),
                       std::sin(position.longitude_rad), std::cos(position.longitude_rad),
                       position.height_m);
}

Geodetic GeocentricFrame::ToGeodetic(const Geocentric& point) const noexcept {
  const double p = std::sqrt(point.x_m * point.x_m + point.y_m * point.y_m);
  const Meridian meridian = InMeridian(p, point.z_m);
  return {.latitude_rad = std::atan2(meridian.north, meridian.out),
          .longitude_rad = std::atan2(point.y_m, point.x_m),
          .height_m = meridian.height_m};
}

}  // namespace tarvex
