// Double (oblique) stereographic (type 2 and, with their national grids behind them, 7 and 16): the
// ellipsoid onto a conformal sphere, the sphere onto the plane.
//
// Source: EPSG guidance note 7-2, method 9809. Accuracy: 1e-8 m. Domain: up to 165 degrees of arc
// from the origin; a pole may be its origin.
#pragma once

#include "coordsys/projections/projection.h"

namespace tarvex {

MadeProjection MakeObliqueStereographic(const ProjectionParameters& parameters);

}  // namespace tarvex
