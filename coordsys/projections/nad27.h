// The families of the state-plane zones on NAD27 (types 8, 9, 10 and 11). Their routines work in US
// survey feet: grid values are multiplied by 3.280833333333 on the way in and divided on the way
// out, and so is the record's false origin.
#pragma once

#include "coordsys/projections/projection.h"

namespace tarvex {

/// Type 8: the oblique Mercator of Alaska zone 1, false origin at the natural origin.
MadeProjection MakeObliqueMercator27(const ProjectionParameters& parameters);

/// Type 9: transverse Mercator.
MadeProjection MakeTransverseMercator27(const ProjectionParameters& parameters);

/// Type 10: Lambert with two standard parallels (the Michigan zones have a scale factor as well).
MadeProjection MakeLambertConformalConic27(const ProjectionParameters& parameters);

/// An angle as it is entered for a NAD27 zone.
struct DegreesMinutesSeconds {
  double degrees = 0.0;
  double minutes = 0.0;
  double seconds = 0.0;
};

/// (degrees + minutes / 60 + seconds / 3600) in radians; all three carry the sign.
double ToRadians(const DegreesMinutesSeconds& angle);

/// Geodetic to grid from an entry in degrees, minutes and seconds, east longitude positive.
ProjectionResult ForwardFromEntry(const Projection& projection,
                                  const DegreesMinutesSeconds& latitude,
                                  const DegreesMinutesSeconds& longitude, PlanePoint& point);

}  // namespace tarvex
