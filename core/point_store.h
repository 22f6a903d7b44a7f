// Reading, storing and deleting single points of the job's coordinate file. Every change is on disk
// when the operation returns, and survives an interruption at any moment as the old state or the
// new.
#pragma once

#include <optional>
#include <string_view>

#include "core/coordinate_file.h"
#include "core/job.h"

namespace tarvex {

enum class [[nodiscard]] ReadPointResult : int{
    Found = 1,
    NotFound = 0,  ///< also an empty id, and a file that cannot be read
    NoStream = -1,
    AboveLast = -2,   ///< a number above the highest point number
    BelowFirst = -3,  ///< a number below 1
    EmptySlot = -4};

enum class [[nodiscard]] StorePointResult : int{
    Stored = 1,
    StoredNotDurable = 2,  ///< stored, but a loss of power may undo it (the person was told)
    Nothing = 0,           ///< no id to store under, a number that leaves a gap beyond kLargestGap,
                  ///< coordinates that are not numbers, or the file could not be written (the
                  ///< person was told what became of it)
    NoStream = -1, DialogFailed = -2, Cancelled = -55};

/// True when the point is in the file.
constexpr bool IsStored(StorePointResult result) {
  return result == StorePointResult::Stored || result == StorePointResult::StoredNotDurable;
}

enum class [[nodiscard]] DeletePointResult : int{
    Deleted = 1,
    DeletedNotDurable = 2,  ///< deleted, but a loss of power may undo it (the person was told)
    NotFound = 0, NoStream = -1,
    Failed = -2  ///< the file could not be written (the person was told what became of it)
};

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

/// The next id, after the current one in steps of the job's increment, under which no point stands.
/// Nothing when the ids are exhausted.
std::optional<std::string> NextFreePointId(Job& job, CoordinateFile& stream);

}  // namespace tarvex
