// The projection record: what a definition text says about a coordinate system, as it was written
// there. One per calculator; every conversion between geodetic and grid reads it.
//
// Angles are decimal degrees, lengths metres. The shift rotations carry the opposite sign of the
// text's TOWGS84 (the text's are position vector, the record's coordinate frame): seconds of arc;
// the scale is in parts per million. A number that no definition has given is 0.
#pragma once

#include <array>

#include "coordsys/ellipsoids.h"
#include "coordsys/projections/projection_types.h"
#include "core/fixed_text.h"

namespace tarvex {

struct ProjectionRecord {
  int ellipsoidCode = kUserEllipsoid;
  FixedText<100> datumName;
  FixedText<100> ellipsoidName;
  double semiMajorM = 0.0;
  double flattening = 0.0;

  double shiftScale = 0.0;
  double shiftDx = 0.0;
  double shiftDy = 0.0;
  double shiftDz = 0.0;
  double shiftRx = 0.0;
  double shiftRy = 0.0;
  double shiftRz = 0.0;

  int projectionType = 0;
  FixedText<100> projectionName;
  double falseEasting = 0.0;
  double falseNorthing = 0.0;
  double centralMeridian = 0.0;
  double longitudeOfCenter = 0.0;
  double standardParallel1 = 0.0;
  double latitudeOfOrigin = 0.0;
  double latitudeOfCenter = 0.0;
  double standardParallel2OrAzimuth = 0.0;
  double zoneWidth = 0.0;
  double scaleFactor = 0.0;
  std::array<double, 11> coefficients = {};  ///< coefficient 1 is [0]
  int denmarkArea = 0;
  double rectifiedGridAngle = 0.0;

  FixedText<100> verticalDatumName;

  bool operator==(const ProjectionRecord&) const = default;
};

/// The ellipsoid that the record's code stands for.
inline Ellipsoid EllipsoidOf(const ProjectionRecord& record) {
  Ellipsoid ellipsoid{record.semiMajorM, record.flattening};
  LookUpEllipsoid(record.ellipsoidCode, ellipsoid.semiMajorM, ellipsoid.flattening);
  return ellipsoid;
}

/// True when the record shifts its datum against WGS84.
constexpr bool HasDatumShift(const ProjectionRecord& record) {
  return record.shiftDx != 0.0 || record.shiftDy != 0.0 || record.shiftDz != 0.0 ||
         record.shiftRx != 0.0 || record.shiftRy != 0.0 || record.shiftRz != 0.0 ||
         record.shiftScale != 0.0;
}

}  // namespace tarvex
