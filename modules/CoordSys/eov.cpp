#include "modules/CoordSys/eov.h"

#include <algorithm>

#include "coordsys/datum/geocentric.h"
#include "coordsys/datum/seven_parameters.h"
#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/oblique_cylindrical.h"
#include "core/units/units.h"

namespace tarvex {
namespace {

constexpr Ellipsoid kGrs67 = {6378160.0, 1.0 / 298.247167427};
constexpr double kHd72[7] = {52.684, -71.194, -13.975, 0.312, 0.1063, 0.3729, 1.0191};

double Or(double given, double official) {
  return given == 0.0 ? official : given;
}

SevenParameters Shift(const CoordSysParameters& parameters) {
  const double(&s)[7] = parameters.shift;
  return {s[0], s[1], s[2], s[3], s[4], s[5], s[6]};
}

}  // namespace

Eov::Eov(const CoordSysParameters& parameters)
    : ellipsoid_{parameters.semiMajor, parameters.flattening}, parameters_(parameters) {
  if (!IsEarthEllipsoid(ellipsoid_)) ellipsoid_ = kGrs67;
  const bool unshifted = std::all_of(std::begin(parameters.shift), std::end(parameters.shift),
                                     [](double value) { return value == 0.0; });
  if (unshifted) std::copy(std::begin(kHd72), std::end(kHd72), std::begin(parameters_.shift));
  ProjectionParameters official;
  official.ellipsoid = ellipsoid_;
  official.latitudeOfOriginRad =
      Or(parameters.latitudeOfOrigin, (47.0 + 8.0 / 60.0 + 39.8174 / 3600.0) * kRadiansPerDegree);
  official.centralMeridianRad =
      Or(parameters.centralMeridian, (19.0 + 2.0 / 60.0 + 54.8584 / 3600.0) * kRadiansPerDegree);
  official.scaleFactor = Or(parameters.scaleFactor, 0.99993);
  official.falseEastingM = Or(parameters.falseEasting, 650000.0);
  official.falseNorthingM = Or(parameters.falseNorthing, 200000.0);
  if (auto made = MakeObliqueCylindrical(official)) projection_ = *std::move(made);
}

std::optional<PlanePoint> Eov::FromWgs84(LatLon wgs84) const {
  static const GeocentricFrame earth(kWgs84);
  const GeocentricFrame hungary(ellipsoid_);
  const Geocentric at = earth.ToGeocentric({wgs84.latitudeRad, wgs84.longitudeRad, 0.0});
  const Geodetic hd72 =
      hungary.ToGeodetic(TranslateUnrotateScale(InverseArguments(Shift(parameters_)), at));
  PlanePoint point;
  if (!projection_) return std::nullopt;
  const ProjectionResult result =
      projection_->Forward({hd72.latitudeRad, hd72.longitudeRad}, point);
  return result == ProjectionResult::Done ? std::optional(point) : std::nullopt;
}

std::optional<LatLon> Eov::ToWgs84(PlanePoint point) const {
  static const GeocentricFrame earth(kWgs84);
  const GeocentricFrame hungary(ellipsoid_);
  LatLon hd72;
  if (!projection_ || projection_->Inverse(point, hd72) != ProjectionResult::Done) {
    return std::nullopt;
  }
  Geodetic onHd72{hd72.latitudeRad, hd72.longitudeRad, 0.0};
  Geodetic wgs84;
  for (int pass = 0; pass < 3; ++pass) {  // until the WGS84 height is 0
    wgs84 = earth.ToGeodetic(
        RotateScaleTranslate(ForwardArguments(Shift(parameters_)), hungary.ToGeocentric(onHd72)));
    onHd72.heightM -= wgs84.heightM;
  }
  return LatLon{wgs84.latitudeRad, wgs84.longitudeRad};
}

}  // namespace tarvex
