// The projection record: what a definition text says about a coordinate system, as it was written
// there. One per calculator; every conversion between geodetic and grid reads it.
//
// Angles are decimal degrees, lengths metres. The shift rotations carry the opposite sign of the
// text's TOWGS84 (the text's are position vector, the record's coordinate frame): seconds of arc;
// the scale is in parts per million. A number that no definition has given is 0.
#pragma once

#include <array>

#include "coordsys/ellipsoids.h"
#include "coordsys/projection_types.h"
#include "core/fixed_text.h"

namespace tarvex {

struct ProjectionRecord {
  int ellipsoid_code = kUserEllipsoid;
  FixedText<100> datum_name;
  FixedText<100> ellipsoid_name;
  double semi_major_m = 0.0;
  double flattening = 0.0;

  double shift_scale = 0.0;
  double shift_dx = 0.0;
  double shift_dy = 0.0;
  double shift_dz = 0.0;
  double shift_rx = 0.0;
  double shift_ry = 0.0;
  double shift_rz = 0.0;

  int projection_type = 0;
  FixedText<100> projection_name;
  double false_easting = 0.0;
  double false_northing = 0.0;
  double central_meridian = 0.0;
  double longitude_of_center = 0.0;
  double standard_parallel_1 = 0.0;
  double latitude_of_origin = 0.0;
  double latitude_of_center = 0.0;
  double standard_parallel_2_or_azimuth = 0.0;
  double zone_width = 0.0;
  double scale_factor = 0.0;
  std::array<double, 11> coefficients = {};  ///< coefficient 1 is [0]
  int denmark_area = 0;
  double rectified_grid_angle = 0.0;

  FixedText<100> vertical_datum_name;

  bool operator==(const ProjectionRecord&) const = default;
};

/// The ellipsoid that the record's code stands for.
inline Ellipsoid EllipsoidOf(const ProjectionRecord& record) {
  Ellipsoid ellipsoid{record.semi_major_m, record.flattening};
  LookUpEllipsoid(record.ellipsoid_code, ellipsoid.semi_major_m, ellipsoid.flattening);
  return ellipsoid;
}

/// True when the record shifts its datum against WGS84.
constexpr bool HasDatumShift(const ProjectionRecord& record) {
  return record.shift_dx != 0.0 || record.shift_dy != 0.0 || record.shift_dz != 0.0 ||
         record.shift_rx != 0.0 || record.shift_ry != 0.0 || record.shift_rz != 0.0 ||
         record.shift_scale != 0.0;
}

}  // namespace tarvex
