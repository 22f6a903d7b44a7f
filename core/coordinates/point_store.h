// Reading, storing and deleting single points of the job's coordinate file. Every change is on disk
// when the operation returns, and survives an interruption at any moment as the old state or the
// new.
#pragma once

#include <optional>
#include <string_view>

#include "core/coordinates/coordinate_file.h"
#include "core/coordinates/point_results.h"
#include "core/job/job.h"

namespace tarvex {

/// Reads the point with this id (in a numeric file: this number). `point` is written only when
/// found.
ReadPointResult ReadPoint(Job& job, std::string_view id, CoordinateFile* stream, Point& point);

/// Stores under the job's current point id and remembers it as the last stored point. Coordinates
/// are in the job's distance unit. With `checkExisting` the person is asked when the id is not
/// beyond the last one.
StorePointResult StorePoint(Job& job, const GridPoint& at, std::string_view description,
                            bool checkExisting, CoordinateFile* stream);

/// Numeric file: leaves an empty slot. Alphanumeric file: removes the record and closes the gap.
DeletePointResult DeletePoint(Job& job, std::string_view id, CoordinateFile* stream);

/// The next id, after the current one in steps of the job's increment, that no point has.
/// Nothing when the ids are exhausted.
std::optional<std::string> NextFreePointId(Job& job, CoordinateFile& stream);

}  // namespace tarvex
