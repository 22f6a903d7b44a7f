// What every command that works with a receiver takes: the receiver, what a position must keep, the
// corrections; and the report of its end.
#pragma once

#include <map>
#include <string>

#include "app/cli/correction_choice.h"
#include "app/cli/profile_choice.h"
#include "app/cli/receiver_choice.h"
#include "app/workflow/receiver_session.h"

namespace tarvex {

/// A person looks at one epoch a second.
inline constexpr std::int64_t kSimulatedPaceMs = 1000;

/// As entered.
struct SessionOptions {
  ReceiverChoice receiver;
  std::string profile;
  std::string antennaHeight;  ///< empty: as the job or the profile has it
  long long patienceS = 60;
  std::size_t average = 0;  ///< 0: as the job or the profile has it
  CorrectionChoice corrections;
  std::string streamLog;
  std::map<std::string, std::string> gates;  ///< limits by their keys
  bool overrideGate = false;
};

inline constexpr const char* kAverageHelp =
    "Distinct epochs whose mean is stored as one point (default: the settings', else 1)";

/// Adds all of them; returns --receiver.
/// `profileOption` is "--profile" unless a command has another use for that name.
Option AddSessionOptions(Command& command, SessionOptions& options,
                         const char* profileOption = kProfileOption,
                         const char* averageHelp = kAverageHelp);

Option AddAntennaOption(Command& command, std::string& antennaHeight);

/// What was entered, else the settings' height. Wrong use, after a message, when it is no height.
ExitCode SettleAntenna(const std::string& entered, const Settings& settings, Program& program,
                       double& height);

/// What the command line says, then the job's settings, then those of the profile. Wrong use, after
/// a message, when something is not understood or no receiver is named.
ExitCode SettleSession(const SessionOptions& options, const Settings& jobSettings, Program& program,
                       ReceiverPlan& plan);

/// Tells how the session ended, and what became of its corrections. `untilStopped`: it was to go
/// on until somebody ends it, so that its end is no failure.
ExitCode TellSessionEnd(Program& program, const ReceiverSession& session, const ReceiverPlan& plan,
                        SessionEnd end, bool untilStopped);

}  // namespace tarvex
