#include "coordsys/datum/geocentric.h"

namespace tarvex {

GeocentricFrame::GeocentricFrame(const Ellipsoid& ellipsoid) noexcept
    : a_(ellipsoid.semiMajorM),
      b_(ellipsoid.semiMajorM * (1.0 - ellipsoid.flattening)),
      e2_(ellipsoid.flattening * (2.0 - ellipsoid.flattening)),
      ep2_(e2_ / (1.0 - e2_)) {}

Geocentric GeocentricFrame::ToGeocentric(const Geodetic& position) const noexcept {
  return FromDirection(std::sin(position.latitudeRad), std::cos(position.latitudeRad),
                       std::sin(position.longitudeRad), std::cos(position.longitudeRad),
                       position.heightM);
}

Geodetic GeocentricFrame::ToGeodetic(const Geocentric& point) const noexcept {
  const Meridian meridian = InMeridian(point.xM * point.xM + point.yM * point.yM, point.zM);
  return {.latitudeRad = std::atan2(meridian.north, meridian.out),
          .longitudeRad = std::atan2(point.yM, point.xM),
          .heightM = meridian.heightM};
}

}  // namespace tarvex
