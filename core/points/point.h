// The point that every job is made of.
#pragma once

#include "core/text/fixed_text.h"

namespace tarvex {

inline constexpr std::size_t kPointIdLength = 9;
inline constexpr std::size_t kDescriptionLength = 31;

/// The highest number that a numeric file takes: what 9 characters can name.
inline constexpr long long kHighestPointNumber = 999999999;
/// How many numbers a store in a numeric file may jump over; each costs an empty record.
inline constexpr long long kLargestGap = 1000000;

using PointId = FixedText<kPointIdLength>;
using Description = FixedText<kDescriptionLength>;

/// Grid coordinates in the job's distance unit.
struct GridPoint {
  double northing = 0.0;
  double easting = 0.0;
  double elevation = 0.0;

  bool operator==(const GridPoint&) const = default;
};

struct Point {
  GridPoint at;
  Description description;
  PointId id;  ///< in a numeric file the record number in decimal

  bool operator==(const Point&) const = default;
};

/// The coordinates are numbers.
bool IsFinite(const GridPoint& at);

/// The description with its control characters as blanks, as files hold it.
Description OnOneLine(const Description& description);

/// True when the record stands for no point: a blank description and all three coordinates within
/// 1e-6 of zero.
bool IsEmptySlot(const Point& point);

}  // namespace tarvex
