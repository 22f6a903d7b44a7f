// How positions come from WGS84 to a record's datum where the job names no shift.
#pragma once

#include "coordsys/projections/projection_record.h"

namespace tarvex {

enum class DatumRoute {
  Unknown,           ///< another datum, and nothing says where it lies
  Coincident,        ///< none is needed: the datum is WGS84
  SevenParameters,   ///< the TOWGS84 numbers of the record, which may be zeros
  NadConverter,      ///< NAD27 by the NADCON grids
  WithinProjection,  ///< inside the family's own computation, or in its national grid
};

/// NAD27 goes by the converter on the zones of its own families, and wherever the record holds no
/// shift. `definitionGivesShift`: the definition holds a TOWGS84, even one of zeros.
DatumRoute DatumRouteOf(const ProjectionRecord& record, bool definitionGivesShift);

}  // namespace tarvex
