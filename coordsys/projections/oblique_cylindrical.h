// Oblique cylindrical, Rosenmund's double projection of Switzerland and that of Hungary: the
// ellipsoid onto a conformal sphere, the sphere onto an oblique cylinder that touches it along the
// prime vertical of the centre.
//
// It is what the closed library computes for the Hungarian EOV (type 15), and equals the oblique
// Mercator of azimuth 90 to 3e-9 m. Source: EPSG guidance note 7-2 (9815, azimuth 90); swisstopo,
// "Formulas and constants". Accuracy: 1e-8 m. Domain: 71 degrees of arc from the central line, 90
// degrees along it.
#pragma once

#include "coordsys/projections/projection.h"

namespace tarvex {

MadeProjection MakeObliqueCylindrical(const ProjectionParameters& parameters);

}  // namespace tarvex
