// The Danish System 34 and 45, and the official UTM zone 32 on ED50.
//
// From WGS84 (ETRS89) by the seven parameters of ED50 to TC32, the transverse Mercator of central
// meridian 9 east on ED50, and from there by a polynomial fitted to the national network (1.2
// to 1.7 cm). The way back starts from the opposite polynomial and is improved until it closes on
// the way forth: 1e-6 m. Source: the "trlib" of the Danish national survey. Domain: the polygon of
// the system; outside it no number comes out.
#pragma once

#include <optional>

#include "coordsys/projections/projection.h"

namespace tarvex {

enum class DanishSystem { Jutland, Zealand, Bornholm, Utm32 };

/// Northing and easting of a WGS84 position. Eastings of all but UTM are positive to the west.
std::optional<PlanePoint> ToDanishSystem(DanishSystem system, LatLon wgs84);
std::optional<LatLon> FromDanishSystem(DanishSystem system, PlanePoint point);

}  // namespace tarvex
