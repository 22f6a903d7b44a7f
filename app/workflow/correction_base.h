// The base station that the corrections come from: how far it is, and what the raw file says of it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "gnss/corrections/correction_status.h"
#include "gnss/position/position_state.h"

namespace tarvex {

/// From the rover, in metres, straight through the earth.
double DistanceToBaseM(const BaseStation& base, const GnssPositionState& rover);

/// Looks for the base in the state of the corrections and keeps the records of a new one for the
/// raw file.
class BaseWatch {
 public:
  void Look(const CorrectionStatus& status);
  /// What a person should know of a base, once for each; empty when all is well. RTK needs one
  /// within some tens of kilometres.
  std::string TakeWarning(const GnssPositionState& rover);
  /// "--Corrections: caster:2101, mountpoint MNT, base 2003" and "BP,PN,LA...,LN...,EL..." of a
  /// base that is not in the raw file yet, to be written before the next point; else none.
  const std::vector<std::string>& records() const { return records_; }
  /// They are in the raw file.
  void Recorded() { records_.clear(); }

 private:
  std::optional<BaseStation> base_;
  bool warned_ = false;
  std::vector<std::string> records_;
};

}  // namespace tarvex
