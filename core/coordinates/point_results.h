// What comes of reading, storing and deleting a point.
#pragma once

namespace tarvex {

// clang-format off
enum class [[nodiscard]] ReadPointResult : int {
  Found = 1,
  NotFound = 0,  ///< also an empty id, and a file that cannot be read
  NoStream = -1,
  AboveLast = -2,   ///< a number above the highest point number
  BelowFirst = -3,  ///< a number below 1
  EmptySlot = -4
};

enum class [[nodiscard]] StorePointResult : int {
  Stored = 1,
  StoredNotDurable = 2,  ///< stored, but a loss of power may undo it (the person knows)
  Nothing = 0,  ///< no id to store under, a number that leaves a gap beyond kLargestGap, coordinates
                ///< that are not numbers, or the file could not be written (the person knows)
  NoStream = -1,
  DialogFailed = -2,
  Cancelled = -55
};

enum class [[nodiscard]] DeletePointResult : int {
  Deleted = 1,
  DeletedNotDurable = 2,  ///< deleted, but a loss of power may undo it (the person knows)
  NotFound = 0,
  NoStream = -1,
  Failed = -2  ///< the file could not be written (the person has the reason)
};
// clang-format on

/// True when the point is in the file.
constexpr bool IsStored(StorePointResult result) {
  return result == StorePointResult::Stored || result == StorePointResult::StoredNotDurable;
}

}  // namespace tarvex
