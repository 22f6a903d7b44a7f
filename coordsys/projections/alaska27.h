// The transverse Mercator of Alaska zones 2 to 9 on NAD27 (type 11): the series of C&GS Publication
// 62-4 in seconds of arc and US survey feet, with the constants of Clarke 1866, the latitude of
// origin 54 north and the scale factor 0.9999 built into it.
//
// The zone's false easting E0 (feet) is coefficient 1 and its central meridian (seconds of arc,
// west positive) coefficient 2; for each of the two that is 0 the record's false easting (metres)
// or central meridian (degrees, east positive) is taken. Against the exact projection the series is
// 0.00015 ft over a zone. The inverse is the publication's, improved until it closes on the forward
// series: 1e-8 m. Domain: 48 to 75 degrees north, 6 degrees to either side of the central meridian.
#pragma once

#include "coordsys/projections/projection.h"

namespace tarvex {

MadeProjection MakeTransverseMercatorAlaska27(const ProjectionParameters& parameters);

/// The series' own point scale factor: 0.9999 (1 + 0.00113433624... x^2 w^2) with
/// x = (longitude - E0) 1e-6. It takes the longitude argument (radians) and not the easting: every
/// file of the system was made so, and it is kept.
double AlaskaPointScale(double latitudeRad, double longitudeRad, double falseEastingFt);

}  // namespace tarvex
