#include "coordsys/projections/projection.h"

#include <cmath>
#include <cstddef>
#include <iterator>

#include "coordsys/projections/alaska27.h"
#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/closed_projection.h"
#include "coordsys/projections/lambert_conformal_conic.h"
#include "coordsys/projections/nad27.h"
#include "coordsys/projections/oblique_mercator.h"
#include "coordsys/projections/oblique_stereographic.h"
#include "coordsys/projections/stereographic.h"
#include "coordsys/projections/transverse_mercator.h"
#include "core/units.h"

namespace tarvex {
namespace {

enum class Scale { Needed, NotUsed };

using Library = std::shared_ptr<ClosedLibrary>;
using Make = MadeProjection(const ProjectionParameters&);
using MakeClosed = MadeProjection(const ProjectionParameters&, const Library&);

// Type 6 is computed on GRS 1980, where positions of WGS84 stand as they are; its national grid
// carries the plane to the record's datum.
MadeProjection MakeTransverseMercatorOstn02(const ProjectionParameters& parameters) {
  ProjectionParameters onGrs80 = parameters;
  onGrs80.ellipsoid = kGrs80;
  return MakeTransverseMercatorOfWgs84(onGrs80);
}

// One row a family; the families of the closed library stand in the second column.
struct Family {
  ProjectionType type;
  Scale scale;
  Make* make;
  MakeClosed* makeClosed = nullptr;
};

using enum ProjectionType;

constexpr Family kFamilies[] = {
    {LambertConformalConic2SP, Scale::NotUsed, MakeLambertConformalConic2SP},
    {TransverseMercator, Scale::Needed, MakeTransverseMercator},
    {ObliqueStereographic, Scale::Needed, MakeObliqueStereographic},
    {LambertConformalConic1SP, Scale::Needed, MakeLambertConformalConic1SP},
    {ObliqueMercator83, Scale::Needed, MakeObliqueMercatorA},
    {Stereographic, Scale::Needed, MakeStereographic},
    {TransverseMercatorOstn02, Scale::Needed, MakeTransverseMercatorOstn02},
    {ObliqueStereographicRd2000, Scale::Needed, MakeObliqueStereographic},
    {ObliqueMercator27, Scale::Needed, MakeObliqueMercator27},
    {TransverseMercator27, Scale::Needed, MakeTransverseMercator27},
    {LambertConformalConic27, Scale::NotUsed, MakeLambertConformalConic27},
    {TransverseMercatorAlaska27, Scale::NotUsed, MakeTransverseMercatorAlaska27},
    {TransverseMercator34, Scale::NotUsed, nullptr, MakeTransverseMercator34},
    {CassiniSoldner, Scale::NotUsed, nullptr, MakeClosedCassiniSoldner},
    {ObliqueMercator, Scale::Needed, nullptr, MakeClosedObliqueMercator},
    {ObliqueMercatorEov, Scale::NotUsed, nullptr, MakeObliqueMercatorEov},
    {ObliqueStereographicRd2004, Scale::Needed, MakeObliqueStereographic},
};
static_assert(std::size(kFamilies) == kProjectionTypes);
static_assert(
    [] {
      for (std::size_t i = 0; i < std::size(kFamilies); ++i) {
        if (static_cast<std::size_t>(kFamilies[i].type) != i) return false;
      }
      return true;
    }(),
    "a family stands in the row of its type");

constexpr double kSmallestScale = 0.5;
constexpr double kLargestScale = 2.0;
constexpr double kFarthestOriginM = 1e8;

// What every family asks of its parameters.
ProjectionFault CommonFault(const ProjectionParameters& parameters, Scale scale) {
  if (!IsEarthEllipsoid(parameters.ellipsoid)) return ProjectionFault::Ellipsoid;
  const double k0 = parameters.scaleFactor;
  if (scale == Scale::Needed && !(k0 >= kSmallestScale && k0 <= kLargestScale)) {
    return ProjectionFault::ScaleFactor;
  }
  if (!(std::fabs(parameters.centralMeridianRad) <= 360.0 * kRadiansPerDegree)) {
    return ProjectionFault::CentralMeridian;
  }
  if (!(std::fabs(parameters.falseEastingM) <= kFarthestOriginM &&
        std::fabs(parameters.falseNorthingM) <= kFarthestOriginM)) {
    return ProjectionFault::FalseOrigin;
  }
  return ProjectionFault::None;
}

// The families that lie around a centre, not an origin on a central meridian.
bool HasCentre(int type) {
  switch (static_cast<ProjectionType>(type)) {
    case ObliqueMercator83:
    case Stereographic:
    case ObliqueMercator27:
    case ObliqueMercator:
      return true;
    default:
      return false;
  }
}

}  // namespace

ProjectionParameters ParametersOf(const ProjectionRecord& record) {
  ProjectionParameters parameters;
  parameters.ellipsoid = EllipsoidOf(record);
  parameters.falseEastingM = record.falseEasting;
  parameters.falseNorthingM = record.falseNorthing;
  const bool centre = HasCentre(record.projectionType);
  const double latitude = centre ? record.latitudeOfCenter : record.latitudeOfOrigin;
  const double longitude = centre ? record.longitudeOfCenter : record.centralMeridian;
  parameters.latitudeOfOriginRad = latitude * kRadiansPerDegree;
  parameters.centralMeridianRad = longitude * kRadiansPerDegree;
  parameters.scaleFactor = record.scaleFactor;
  parameters.parallel1Rad = record.standardParallel1 * kRadiansPerDegree;
  parameters.parallel2OrAzimuthRad = record.standardParallel2OrAzimuth * kRadiansPerDegree;
  parameters.rectifiedAngleRad = record.rectifiedGridAngle * kRadiansPerDegree;
  parameters.coefficients = record.coefficients;
  parameters.denmarkArea = record.denmarkArea;
  parameters.shift = {record.shiftDx, record.shiftDy, record.shiftDz,   record.shiftRx,
                      record.shiftRy, record.shiftRz, record.shiftScale};
  return parameters;
}

MadeProjection MakeProjection(const ProjectionRecord& record, const Library& coordSys) {
  if (!ProjectionName(record.projectionType)) return {nullptr, ProjectionFault::UnknownType};
  const Family& family = kFamilies[static_cast<std::size_t>(record.projectionType)];
  const ProjectionParameters parameters = ParametersOf(record);
  const ProjectionFault fault = CommonFault(parameters, family.scale);
  if (fault != ProjectionFault::None) return {nullptr, fault};
  return family.make ? family.make(parameters) : family.makeClosed(parameters, coordSys);
}

MadeProjection MakeProjection(const ProjectionRecord& record) {
  return MakeProjection(record, SystemCoordSysLibrary());
}

}  // namespace tarvex
