// The families that the closed library "CoordSys.dll" computes (types 12 to 15). The library is
// loaded when the first point is converted; without it every conversion is LibraryMissing.
#pragma once

#include <memory>

#include "coordsys/closed/closed_library.h"
#include "coordsys/projections/projection.h"

namespace tarvex {

/// Type 12: Danish System 34 and UTM 32 on ED50, by the record's Denmark area: 0 Jutland, 1
/// Zealand, 2 Bornholm, 3 UTM zone 32. Takes WGS84 positions. Eastings of the System 34 areas are
/// the system's own x, which grows to the west.
MadeProjection MakeTransverseMercator34(const ProjectionParameters& parameters,
                                        const std::shared_ptr<ClosedLibrary>& library);

/// Type 13.
MadeProjection MakeClosedCassiniSoldner(const ProjectionParameters& parameters,
                                        const std::shared_ptr<ClosedLibrary>& library);

/// Type 14, false origin at the centre of the projection.
MadeProjection MakeClosedObliqueMercator(const ProjectionParameters& parameters,
                                         const std::shared_ptr<ClosedLibrary>& library);

/// Type 15: Hungarian EOV. Takes WGS84 positions.
MadeProjection MakeObliqueMercatorEov(const ProjectionParameters& parameters,
                                      const std::shared_ptr<ClosedLibrary>& library);

}  // namespace tarvex
