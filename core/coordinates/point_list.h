// All points of a coordinate file in memory, in file order.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/coordinates/coordinate_file.h"
#include "core/job/job.h"
#include "core/points/point.h"

namespace tarvex {

using PointList = std::vector<Point>;

enum class [[nodiscard]] LoadPointsResult : int {
  Loaded = 0,
  OutOfMemory = 1,
  CannotOpen = 2,  ///< cannot be opened or read, or is no coordinate file
  Mismatch = 3     ///< the records are not those of the list to verify against
};

/// Called with texts like "\n42%" each time a hundredth of the records is passed: at most 100 times
/// a load.
using ProgressWindow = std::function<void(std::string_view)>;

/// Reads every whole record that is not an empty slot, in a numeric file those behind the count of
/// the header too. With `verifyAgainst`, each record's id must be that of the list's point at the
/// same place. `points` is written only on success. The file is not changed, but an interrupted
/// change is finished first and an older file converted, where it may be written.
LoadPointsResult LoadAllPoints(Job& job, PointList& points,
                               const PointList* verifyAgainst = nullptr,
                               const ProgressWindow& progress = {});

/// The same from a file that is open, with what a unit of the job has gathered.
LoadPointsResult LoadAllPoints(CoordinateFile& stream, PointList& points);

}  // namespace tarvex
