// The comments behind a stored stake: where it belonged, where it is, and how far apart the two
// are.
//
//   --Stake design:N 5184687.8041,E 520489.5432,EL1101.5880,--1+210.000 3.600 L
//   --Stake found:N 5184687.8101,E 520489.5392,EL1101.5930,--1+209.996 3.606 L
//   --Stake difference:N 0.0060,E -0.0040,EL0.0050,HD0.0072,HT0.0200,VT0.0100,--within tolerance
//
// They follow the records of the point that was stored, in the same unit. Coordinates are in the
// job's unit, differences are found minus design.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/points/point.h"

namespace tarvex {

struct StakeRecord {
  std::string design;  ///< what was set out: a point's id, a station and offset
  GridPoint designAt;
  bool designHasElevation = true;  ///< without one there is no vertical difference either
  std::string found;               ///< station and offset of the stake; empty for a point
  GridPoint foundAt;
  GridPoint difference;  ///< found minus design
  double distance = 0.0;
  double horizontalTolerance = 0.0;
  double verticalTolerance = 0.0;
  bool withinTolerance = false;  ///< on a position that a stake may go in on

  bool operator==(const StakeRecord&) const = default;
};

/// The record of a stake at `foundAt`, its differences computed.
StakeRecord MakeStakeRecord(std::string design, const GridPoint& designAt, bool designHasElevation,
                            const GridPoint& foundAt);

/// The three comments as one text, which starts with "\n".
std::string StakeComments(const StakeRecord& stake);

enum class StakeLine {
  None,      ///< no line of a stake
  Part,      ///< of a stake that goes on
  Complete,  ///< its last one: the stake can be taken
  Broken     ///< a field is missing or no number, or the line before it is
};

/// Reads stakes line by line from a raw file.
class StakeReader {
 public:
  StakeLine Take(std::string_view line);
  /// The stake that was completed by the last line.
  const StakeRecord& stake() const { return stake_; }

 private:
  bool TakePart(std::string_view text, int part);

  StakeRecord stake_;
  int next_ = 0;  ///< the part that has to come
};

}  // namespace tarvex
