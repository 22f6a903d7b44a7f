// Storing many points in one go: the file is merged and replaced as a whole, at a cost that grows
// with n log n, and comes out byte for byte as if the points had been stored one at a time.
#pragma once

#include <span>

#include "core/coordinates/coordinate_file.h"
#include "core/job/job.h"
#include "core/points/point.h"

namespace tarvex {

enum class [[nodiscard]] StorePointsResult : int {
  Stored = 1,
  StoredNotDurable = 2,  ///< stored, but a loss of power may undo it (the person knows)
  Nothing = 0,           ///< the file could not be written; the person has the reason
  NoStream = -1,         ///< the file could not be opened (the person knows)
  BadPoint =
      -3  ///< a point without an id or with coordinates that are not numbers; nothing is stored
};

/// Stores all points, each under its own id, over those that exist; of equal ids the last one wins.
/// `badPoint`, when given, receives the index of the point that was refused.
StorePointsResult StorePoints(Job& job, std::span<const Point> points,
                              std::size_t* badPoint = nullptr);

/// The same in a file that is open, as part of a unit of the job where it gathers changes.
StorePointsResult StorePoints(Job& job, std::span<const Point> points, CoordinateFile& stream,
                              std::size_t* badPoint = nullptr);

}  // namespace tarvex
