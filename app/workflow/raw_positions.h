// Positions of points as the raw file has them: the WGS84 position of the mark, whose height is the
// one received less the antenna height that was in force there.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "coordsys/coordinates.h"
#include "core/job/job.h"
#include "core/units/units.h"

namespace tarvex {

/// The bytes of the job's raw file; false with a sentence in `problem`.
[[nodiscard]] bool ReadRawFile(Job& job, std::string& bytes, std::string& problem);

/// The position of the last GPS record of a point that was not taken back. Nothing when there is no
/// such record.
std::optional<Geodetic> FindRawPosition(std::string_view rawFile, std::string_view pointId,
                                        DistanceUnit unit);

/// The last position of every point that has one, by the id in upper case.
using RawPositions = std::unordered_map<std::string, Geodetic>;
RawPositions AllRawPositions(std::string_view rawFile, DistanceUnit unit);

}  // namespace tarvex
