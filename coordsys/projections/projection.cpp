#include "coordsys/projections/projection.h"

#include <cmath>
#include <limits>

#include "coordsys/projections/auxiliary_latitude.h"
#include "coordsys/projections/projection_families.h"
#include "core/units/units.h"

namespace tarvex {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kSmallestScale = 0.5;
constexpr double kLargestScale = 2.0;
constexpr double kFarthestOriginM = 1e8;

// What every family asks of its parameters.
std::optional<ProjectionFault> CommonFault(const ProjectionParameters& parameters,
                                           ScaleFactorUse scale) {
  if (!IsEarthEllipsoid(parameters.ellipsoid)) return ProjectionFault::Ellipsoid;
  const double k0 = parameters.scaleFactor;
  if (scale == ScaleFactorUse::Needed && !(k0 >= kSmallestScale && k0 <= kLargestScale)) {
    return ProjectionFault::ScaleFactor;
  }
  if (!(std::fabs(parameters.centralMeridianRad) <= 360.0 * kRadiansPerDegree)) {
    return ProjectionFault::CentralMeridian;
  }
  if (!(std::fabs(parameters.falseEastingM) <= kFarthestOriginM &&
        std::fabs(parameters.falseNorthingM) <= kFarthestOriginM)) {
    return ProjectionFault::FalseOrigin;
  }
  return std::nullopt;
}

}  // namespace

std::size_t Projection::Forward(std::span<const double> latitudeRad,
                                std::span<const double> longitudeRad, std::span<double> northingM,
                                std::span<double> eastingM) const noexcept {
  std::size_t refused = 0;
  for (std::size_t i = 0; i < latitudeRad.size(); ++i) {
    PlanePoint point{kNaN, kNaN};
    refused += Forward({latitudeRad[i], longitudeRad[i]}, point) != ProjectionResult::Done;
    northingM[i] = point.northingM;
    eastingM[i] = point.eastingM;
  }
  return refused;
}

std::size_t Projection::Inverse(std::span<const double> northingM, std::span<const double> eastingM,
                                std::span<double> latitudeRad,
                                std::span<double> longitudeRad) const noexcept {
  std::size_t refused = 0;
  for (std::size_t i = 0; i < northingM.size(); ++i) {
    LatLon position{kNaN, kNaN};
    refused += Inverse({northingM[i], eastingM[i]}, position) != ProjectionResult::Done;
    latitudeRad[i] = position.latitudeRad;
    longitudeRad[i] = position.longitudeRad;
  }
  return refused;
}

ProjectionParameters ParametersOf(const ProjectionRecord& record) {
  ProjectionParameters parameters;
  parameters.ellipsoid = EllipsoidOf(record);
  parameters.falseEastingM = record.falseEastingM;
  parameters.falseNorthingM = record.falseNorthingM;
  const bool centre = FamilyOf(record.projectionType).origin == ProjectionOrigin::Centre;
  const double latitude = centre ? record.latitudeOfCenterDeg : record.latitudeOfOriginDeg;
  const double longitude = centre ? record.longitudeOfCenterDeg : record.centralMeridianDeg;
  parameters.latitudeOfOriginRad = latitude * kRadiansPerDegree;
  parameters.centralMeridianRad = longitude * kRadiansPerDegree;
  parameters.scaleFactor = record.scaleFactor;
  parameters.parallel1Rad = record.standardParallel1Deg * kRadiansPerDegree;
  parameters.parallel2OrAzimuthRad = record.standardParallel2OrAzimuthDeg * kRadiansPerDegree;
  parameters.rectifiedAngleRad = record.rectifiedGridAngleDeg * kRadiansPerDegree;
  parameters.coefficients = record.coefficients;
  parameters.denmarkArea = record.denmarkArea;
  parameters.shift = {record.shiftDxM,      record.shiftDyM,      record.shiftDzM,
                      record.shiftRxArcsec, record.shiftRyArcsec, record.shiftRzArcsec,
                      record.shiftScalePpm};
  return parameters;
}

MadeProjection MakeProjection(const ProjectionRecord& record,
                              const std::shared_ptr<ClosedLibrary>& coordSys) {
  const ProjectionFamily& family = FamilyOf(record.projectionType);
  if (family.name.empty()) return NotMade(ProjectionFault::UnknownType);
  const ProjectionParameters parameters = ParametersOf(record);
  if (const auto fault = CommonFault(parameters, family.scaleFactor)) return NotMade(*fault);
  return family.make ? family.make(parameters) : family.makeClosed(parameters, coordSys);
}

MadeProjection MakeProjection(const ProjectionRecord& record) {
  return MakeProjection(record, SystemCoordSysLibrary());
}

}  // namespace tarvex
