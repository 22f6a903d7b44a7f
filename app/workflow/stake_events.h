// What a staking session tells besides the events of every session with a receiver.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <variant>

#include "app/workflow/session_events.h"
#include "app/workflow/stake_target.h"

namespace tarvex {

/// A position against the present target.
struct StakeSeen {
  StakeRelation relation;
  std::string from;      ///< the solution of a receiver, or what else the position is of
  bool onStake = false;  ///< inside the tolerance, with a good position
};

/// A stake, its observation and its note are on disk; it follows PointStored.
struct StakeStored {
  Point point;
  StakeRecord record;
  SolutionType solution = SolutionType::Autonomous;
};

/// Why the position is not stored as a stake unless a person asks once more.
struct StakeDoubted {
  bool fixed = true;    ///< the position is
  bool precise = true;  ///< it is precise enough for the tolerance, as far as that is known
  SolutionType solution = SolutionType::Fixed;
  double distance = 0.0;
  std::optional<double> cut;
  StakeTolerance tolerance;
};

/// What is set out from here on.
struct TargetTaken {
  std::string name;
  std::optional<StakeDesign> place;
  std::size_t open = 0;  ///< still to be staked, this one among them
  std::size_t size = 0;
};
/// Nothing is left to be set out.
struct TargetsDone {
  std::size_t staked = 0;
  std::size_t size = 0;
};
/// There is no other target, or none of that name.
struct NoSuchTarget {
  std::string name;  ///< empty: no other one is open
};

/// The solution is fixed no longer, or again; told at the first position that is not as well.
struct FixChanged {
  SolutionType solution = SolutionType::Fixed;
};

using StakeEvent = std::variant<StakeSeen, StakeStored, StakeDoubted, TargetTaken, TargetsDone,
                                NoSuchTarget, FixChanged>;

class StakeListener : public SessionListener {
 public:
  /// On the session's own thread.
  virtual void OnStake(const StakeEvent& event) = 0;
};

}  // namespace tarvex
