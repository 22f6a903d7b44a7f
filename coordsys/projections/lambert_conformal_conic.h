// Lambert conformal conic (types 0 and 3 and, in feet, 10).
//
// Type 0 (EPSG 9802) has two standard parallels, and a scale factor on them only where the
// definition gives one (the Michigan zones of NAD27, EPSG 1051); type 3 (EPSG 9801) has one, the
// latitude of origin, and a scale factor. The origin may be a pole (type 0). Source: EPSG guidance
// note 7-2 and Snyder 1987 pp. 107-109, written over the isometric latitude so that nothing
// cancels. Accuracy: 1e-8 m. Domain: all latitudes but the last degree before the pole that the
// cone opens to; on the plane, all points within the fan of the developed cone.
#pragma once

#include "coordsys/projections/projection.h"

namespace tarvex {

MadeProjection MakeLambertConformalConic2SP(const ProjectionParameters& parameters);
MadeProjection MakeLambertConformalConic1SP(const ProjectionParameters& parameters);

}  // namespace tarvex
