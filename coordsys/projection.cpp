#include "coordsys/projection.h"

#include <cmath>

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/lambert_conformal_conic.h"
#include "coordsys/projections/transverse_mercator.h"
#include "core/units.h"

namespace tarvex {
namespace {

enum class Scale { Needed, NotUsed };

// One row a family.
struct Family {
  ProjectionType type;
  Scale scale;
  MadeProjection (*make)(const ProjectionParameters&);
};

constexpr Family kFamilies[] = {
    {ProjectionType::LambertConformalConic2SP, Scale::NotUsed, MakeLambertConformalConic2SP},
    {ProjectionType::TransverseMercator, Scale::Needed, MakeTransverseMercator},
    {ProjectionType::LambertConformalConic1SP, Scale::Needed, MakeLambertConformalConic1SP},
};

constexpr double kSmallestScale = 0.5;
constexpr double kLargestScale = 2.0;
constexpr double kFarthestOrigin_m = 1e8;

// What every family asks of its parameters.
ProjectionFault CommonFault(const ProjectionParameters& parameters, Scale scale) {
  if (!IsEarthEllipsoid(parameters.ellipsoid)) return ProjectionFault::Ellipsoid;
  const double k0 = parameters.scale_factor;
  if (scale == Scale::Needed && !(k0 >= kSmallestScale && k0 <= kLargestScale)) {
    return ProjectionFault::ScaleFactor;
  }
  if (!(std::fabs(parameters.central_meridian_rad) <= 360.0 * kRadiansPerDegree)) {
    return ProjectionFault::CentralMeridian;
  }
  if (!(std::fabs(parameters.false_easting_m) <= kFarthestOrigin_m &&
        std::fabs(parameters.false_northing_m) <= kFarthestOrigin_m)) {
    return ProjectionFault::FalseOrigin;
  }
  return ProjectionFault::None;
}

}  // namespace

ProjectionParameters ParametersOf(const ProjectionRecord& record) {
  ProjectionParameters parameters;
  parameters.ellipsoid = EllipsoidOf(record);
  parameters.false_easting_m = record.false_easting;
  parameters.false_northing_m = record.false_northing;
  parameters.central_meridian_rad = record.central_meridian * kRadiansPerDegree;
  parameters.latitude_of_origin_rad = record.latitude_of_origin * kRadiansPerDegree;
  parameters.scale_factor = record.scale_factor;
  parameters.parallel_1_rad = record.standard_parallel_1 * kRadiansPerDegree;
  parameters.parallel_2_or_azimuth_rad = record.standard_parallel_2_or_azimuth * kRadiansPerDegree;
  parameters.rectified_angle_rad = record.rectified_grid_angle * kRadiansPerDegree;
  parameters.coefficients = record.coefficients;
  parameters.denmark_area = record.denmark_area;
  return parameters;
}

MadeProjection MakeProjection(const ProjectionRecord& record) {
  if (!ProjectionName(record.projection_type)) return {nullptr, ProjectionFault::UnknownType};
  const ProjectionParameters parameters = ParametersOf(record);
  for (const Family& family : kFamilies) {
    if (static_cast<int>(family.type) != record.projection_type) continue;
    const ProjectionFault fault = CommonFault(parameters, family.scale);
    if (fault != ProjectionFault::None) return {nullptr, fault};
    return family.make(parameters);
  }
  return {nullptr, ProjectionFault::NotAvailable};
}

}  // namespace tarvex
