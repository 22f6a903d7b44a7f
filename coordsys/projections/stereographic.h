// Stereographic (type 5): oblique, equatorial and polar over the conformal latitude, without the
// double sphere of type 2. The centre is the record's latitude and longitude of centre, and its
// scale factor holds there; a polar zone given by a standard parallel is written with the scale
// that it has at the pole.
//
// Source: Snyder 1987 pp. 160-162; EPSG guidance note 7-2, method 9810 for the poles. Accuracy:
// 1e-8 m. Domain: up to 165 degrees of arc from the centre.
#pragma once

#include "coordsys/projections/projection.h"

namespace tarvex {

MadeProjection MakeStereographic(const ProjectionParameters& parameters);

}  // namespace tarvex
