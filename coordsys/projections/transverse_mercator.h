// Transverse Mercator (types 1, 6 and, in feet, 9): Gauss-Krueger with Krueger's series to n^6.
//
// Source: Krueger 1912 in the form of Karney, J. Geod. 85 (2011), eqs. 7 to 36; EPSG method 9807.
// Accuracy: 1e-8 m within 40 degrees of the central meridian, 0.01 mm over the whole domain.
// Domain: eta' up to 1.25, about 8,000 km to either side of the central meridian, and at most 20
// degrees of arc beyond a pole.
#pragma once

#include "coordsys/projections/projection.h"

namespace tarvex {

MadeProjection MakeTransverseMercator(const ProjectionParameters& parameters);

}  // namespace tarvex
