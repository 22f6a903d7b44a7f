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
#include "core/text/fixed_text.h"

namespace tarvex {

struct ProjectionRecord {
  int ellipsoidCode = kUserEllipsoid;
  FixedText<100> datumName;
  FixedText<100> ellipsoidName;
  double semiMajorM = 0.0;
  double flattening = 0.0;

  double shiftScalePpm = 0.0;
  double shiftDxM = 0.0;
  double shiftDyM = 0.0;
  double shiftDzM = 0.0;
  double shiftRxArcsec = 0.0;
  double shiftRyArcsec = 0.0;
  double shiftRzArcsec = 0.0;

  int projectionType = 0;
  FixedText<100> projectionName;
  double falseEastingM = 0.0;
  double falseNorthingM = 0.0;
  double centralMeridianDeg = 0.0;
  double longitudeOfCenterDeg = 0.0;
  double standardParallel1Deg = 0.0;
  double latitudeOfOriginDeg = 0.0;
  double latitudeOfCenterDeg = 0.0;
  double standardParallel2OrAzimuthDeg = 0.0;
  double zoneWidthDeg = 0.0;
  double scaleFactor = 0.0;
  std::array<double, 11> coefficients = {};  ///< coefficient 1 is [0]
  int denmarkArea = 0;
  double rectifiedGridAngleDeg = 0.0;

  FixedText<100> verticalDatumName;

  bool operator==(const ProjectionRecord&) const = default;
};

/// The ellipsoid of the record's code.
inline Ellipsoid EllipsoidOf(const ProjectionRecord& record) {
  Ellipsoid ellipsoid{record.semiMajorM, record.flattening};
  LookUpEllipsoid(record.ellipsoidCode, ellipsoid.semiMajorM, ellipsoid.flattening);
  return ellipsoid;
}

/// True when the record shifts its datum against WGS84.
constexpr bool HasDatumShift(const ProjectionRecord& record) {
  return record.shiftDxM != 0.0 || record.shiftDyM != 0.0 || record.shiftDzM != 0.0 ||
         record.shiftRxArcsec != 0.0 || record.shiftRyArcsec != 0.0 ||
         record.shiftRzArcsec != 0.0 || record.shiftScalePpm != 0.0;
}

}  // namespace tarvex
