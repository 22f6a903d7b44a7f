// Cassini-Soldner (the closed library's type 13), by the series that defines the systems in use.
//
// Source: EPSG guidance note 7-2, method 9806; Snyder 1987 chapter 13. The inverse is the note's
// with two terms more, so that it closes on the forward series up to 1.7 degrees from the central
// meridian, and improved until it does beyond: 1e-7 m. Against the geodesic definition the series
// is 3e-5 m off one degree from the central meridian and 0.9 mm at three. Domain: 5.7 degrees of
// arc (0.1 rad) to either side of the central meridian, 0.2 rad of longitude, and 89 degrees of
// latitude.
#pragma once

#include "coordsys/projections/projection.h"

namespace tarvex {

MadeProjection MakeCassiniSoldner(const ProjectionParameters& parameters);

}  // namespace tarvex
