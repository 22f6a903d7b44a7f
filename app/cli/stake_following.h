// Staking with a receiver, as `stake` and `road stake` both do it: what they take, the session, and
// its report.
#pragma once

#include <string>

#include "app/cli/session_options.h"
#include "app/cli/stake_view.h"
#include "app/workflow/stake_session.h"

namespace tarvex {

/// As entered.
struct StakeOptions {
  SessionOptions session;
  long long count = 0;
  double tolerance = 0.0;          ///< horizontal; 0: the default
  double verticalTolerance = 0.0;  ///< 0: the default
  std::string existing;
  bool json = false;
};

/// Adds the receiver with all that goes with it, --count and the tolerances; returns --receiver.
Option AddStakeOptions(Command& command, StakeOptions& options,
                       const char* profileOption = kProfileOption);

/// What was entered, in `unit`; the defaults are the same length on the ground in every unit.
StakeTolerance ToleranceIn(const StakeOptions& options, DistanceUnit unit);

/// Works on `targets` with the receiver. `plan` says what is stored, and the job's current point id
/// is the first that is stored under.
ExitCode FollowReceiver(const StakeOptions& options, Program& program, JobSession& session,
                        StakePlan plan, StakeList& targets, StakeWords words);

}  // namespace tarvex
