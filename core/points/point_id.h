// Point ids: at most 9 characters, ordered so that digit runs compare by value and letters without
// regard to case, stored in upper case with "-" and "," replaced by "_".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/points/point.h"

namespace tarvex {

/// Negative, zero or positive as `a` orders before, with or after `b`: 2 before 10, A2 before A10,
/// a5 with A5, 10 before 10A. A longer number of leading zeros orders before the same value.
int ComparePointIds(std::string_view a, std::string_view b);

/// The id as it is stored and looked up: leading blanks removed, ASCII letters in upper case, "-"
/// and
/// "," replaced by "_", control characters by blanks, cut to 9 characters. May come out empty.
PointId NormalisePointId(std::string_view id);

/// The leading decimal value of an id; 0 when it does not start with a digit.
long long PointIdNumber(std::string_view id);

/// The id after `id` in an alphanumeric file: its last digit run raised by `increment` (as many of
/// the runs as fit into 9 characters), or a number appended when it has no digits.
PointId NextPointId(const PointId& id, long long increment);

/// A sort key that orders ids as ComparePointIds does, for ids without superfluous leading zeros;
/// those with them have none.
struct PointIdKey {
  std::uint64_t high = 0;
  std::uint64_t low = 0;

  bool operator==(const PointIdKey&) const = default;
  friend bool operator<(const PointIdKey& a, const PointIdKey& b) {
    return a.high != b.high ? a.high < b.high : a.low < b.low;
  }
};
std::optional<PointIdKey> MakePointIdKey(std::string_view id);

}  // namespace tarvex
