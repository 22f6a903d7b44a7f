// What every command that works with a receiver takes: the receiver, what a position must keep, the
// corrections; and the report of its end.
#pragma once

#include <map>
#include <string>

#include "app/cli/correction_choice.h"
#include "app/cli/receiver_choice.h"
#include "app/workflow/receiver_session.h"

namespace tarvex {

/// A person looks at one epoch a second.
inline constexpr std::int64_t kSimulatedPaceMs = 1000;

/// As entered.
struct SessionOptions {
  ReceiverChoice receiver;
  std::string antennaHeight = "0";
  long long patienceS = 60;
  std::size_t average = 1;
  CorrectionChoice corrections;
  std::string streamLog;
  std::map<std::string, std::string> gates;  ///< limits by their keys
  bool overrideGate = false;
};

/// Adds all of them; returns --receiver.
Option AddSessionOptions(Command& command, SessionOptions& options);

/// The receiver, the job's limits and then the command line's. Wrong use, after a message, when
/// something is not understood.
ExitCode SettleSession(const SessionOptions& options, const Settings& jobSettings, Program& program,
                       ReceiverPlan& plan);

/// Tells how the session ended, and what became of its corrections. `untilStopped`: it was to go
/// on until somebody ends it, so that its end is no failure.
ExitCode TellSessionEnd(Program& program, const ReceiverSession& session, const ReceiverPlan& plan,
                        SessionEnd end, bool untilStopped);

}  // namespace tarvex
