// Hotine's oblique Mercator (types 4 and, in feet, 8; the closed library's type 14).
//
// The azimuth of the central line at the centre and the angle from the rectified to the skew grid
// come from the record; an angle of 0 stands for the azimuth. Where the false origin lies tells the
// variants apart. Source: EPSG guidance note 7-2, methods 9812 and 9815, and Snyder 1987 chapter 9,
// over the isometric latitude. Accuracy: 1e-8 m. Domain: 90 degrees of arc along the central line
// to either side of the centre, 71 degrees across it.
#pragma once

#include "coordsys/projections/projection.h"

namespace tarvex {

/// The false origin at the natural origin, where the central line meets the equator (EPSG 9812).
MadeProjection MakeObliqueMercatorA(const ProjectionParameters& parameters);

/// The false origin at the centre (EPSG 9815).
MadeProjection MakeObliqueMercatorB(const ProjectionParameters& parameters);

}  // namespace tarvex
