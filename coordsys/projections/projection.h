// The interface of every projection family: a plane of projection in metres over positions on the
// system's ellipsoid in radians, north and east positive.
//
// A projection is made once from a record's parameters and is const afterwards; conversions neither
// allocate nor throw. A point where the family's formulas do not hold is refused, never given a
// number; each family's header says where that is and how exact it is inside.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>

#include "coordsys/calculation_steps.h"
#include "coordsys/closed/closed_library.h"
#include "coordsys/ellipsoids.h"
#include "coordsys/projections/projection_record.h"
#include "core/text/outcome.h"

namespace tarvex {

/// A position on the system's ellipsoid, radians.
struct LatLon {
  double latitudeRad = 0.0;
  double longitudeRad = 0.0;

  bool operator==(const LatLon&) const = default;
};

enum class [[nodiscard]] ProjectionResult : int {
  Done,
  NotANumber,
  OutsideDomain,
  LibraryMissing,  ///< the closed library that computes this family cannot be loaded
};

/// What a conversion starts from: the record's parameters with angles in radians.
struct ProjectionParameters {
  Ellipsoid ellipsoid;
  double falseEastingM = 0.0;
  double falseNorthingM = 0.0;
  double centralMeridianRad = 0.0;
  double latitudeOfOriginRad = 0.0;
  double scaleFactor = 0.0;
  double parallel1Rad = 0.0;
  double parallel2OrAzimuthRad = 0.0;
  double rectifiedAngleRad = 0.0;
  std::array<double, 11> coefficients = {};
  int denmarkArea = 0;
  std::array<double, 7> shift = {};  ///< dX, dY, dZ, rX, rY, rZ, scale as the record holds them
};

ProjectionParameters ParametersOf(const ProjectionRecord& record);

/// Where a plane of projection begins.
struct PlaneOrigin {
  double centralMeridianRad = 0.0;
  double falseEastingM = 0.0;
  double falseNorthingM = 0.0;
};

constexpr PlaneOrigin PlaneOriginOf(const ProjectionParameters& parameters) {
  return {parameters.centralMeridianRad, parameters.falseEastingM, parameters.falseNorthingM};
}

/// Which parameter keeps a projection from being made.
enum class ProjectionFault : int {
  Ellipsoid,
  ScaleFactor,
  CentralMeridian,
  LatitudeOfOrigin,
  StandardParallels,
  Azimuth,
  FalseOrigin,
  Coefficients,
  Area,
  UnknownType,
  NotAvailable,
};

class Projection {
 public:
  virtual ~Projection() = default;

  virtual ProjectionResult Forward(LatLon position, PlanePoint& point) const noexcept = 0;
  virtual ProjectionResult Inverse(PlanePoint point, LatLon& position) const noexcept = 0;

  /// Whole arrays, all of one length; in and out may be the same arrays, crossed or not. A point
  /// that is refused comes out as not-a-number in both; returns how many were. The families that
  /// have nothing faster for them take point by point.
  virtual std::size_t Forward(std::span<const double> latitudeRad,
                              std::span<const double> longitudeRad, std::span<double> northingM,
                              std::span<double> eastingM) const noexcept;
  virtual std::size_t Inverse(std::span<const double> northingM, std::span<const double> eastingM,
                              std::span<double> latitudeRad,
                              std::span<double> longitudeRad) const noexcept;

  /// The point scale factor, of the families that give one: every transverse Mercator.
  virtual std::optional<double> PointScale(LatLon) const noexcept { return std::nullopt; }
};

/// A projection, never null, or why there is none.
using MadeProjection = Outcome<std::unique_ptr<const Projection>, ProjectionFault>;

inline Failure<ProjectionFault> NotMade(ProjectionFault fault) {
  return {.code = fault};
}

/// The projection of a record: the dispatch on its type. Types 12 to 15 are computed by
/// `coordSys`, which is loaded when the first point is converted.
MadeProjection MakeProjection(const ProjectionRecord& record,
                              const std::shared_ptr<ClosedLibrary>& coordSys);
/// The same with the system's own "CoordSys.dll".
MadeProjection MakeProjection(const ProjectionRecord& record);

}  // namespace tarvex
