// Whether a record's datum lies where WGS84 does, so that positions need no shift between the two.
#pragma once

#include "coordsys/projections/projection_record.h"

namespace tarvex {

/// True for the ellipsoids of WGS84 and GRS 1980 (0.1 mm apart): the datums on them, such as
/// NAD83, ETRS89 and GDA2020, are realisations of one geocentric system and lie within a metre or
/// two of WGS84. The intermediate frames of railways and of national re-adjustments use these
/// ellipsoids too, but lie elsewhere by intent.
bool CoincidesWithWgs84(const ProjectionRecord& record);

}  // namespace tarvex
