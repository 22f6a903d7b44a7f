// Positions of points as the raw file has them.
#pragma once

#include <optional>
#include <string_view>

#include "coordsys/coordinates.h"
#include "core/units.h"

namespace tarvex {

/// The WGS84 position of the mark from the last GPS record of a point: the height is the one
/// received less the antenna height that was in force there. Nothing when there is no such record.
std::optional<Geodetic> FindRawPosition(std::string_view raw_file, std::string_view point_id,
                                        DistanceUnit unit);

}  // namespace tarvex
