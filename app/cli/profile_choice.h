// Which profile a command works with, and what holds with it: the command line, then the job's
// settings, then the profile.
#pragma once

#include <string>

#include "app/cli/command_line.h"
#include "app/cli/correction_choice.h"
#include "app/cli/receiver_choice.h"
#include "core/job/settings.h"

namespace tarvex {

/// What helps where no receiver is named.
inline constexpr const char* kNoReceiver =
    "Say which receiver: --receiver ADDRESS (serial:/dev/ttyUSB0@115200, tcp:HOST:PORT, file:LOG "
    "or simulated), --profile NAME, or keep it in the job: tarvex settings JOB.crd "
    "receiver=ADDRESS.";

inline constexpr const char* kProfileOption = "--profile";
Option AddProfileOption(Command& command, std::string& profile, const char* name = kProfileOption);

/// The job's settings over those of the profile that is named, or that the job names. A setting of
/// a profile that was named for this command and that the job overrules is told.
ExitCode SettleProfile(const std::string& profile, const Settings& jobSettings, Program& program,
                       Settings& settings);

/// What the command line leaves open of the receiver and of the corrections, the settings say. A
/// receiver that takes no corrections gets none from the settings.
ReceiverChoice WithSettings(ReceiverChoice choice, const Settings& settings);
CorrectionChoice WithSettings(CorrectionChoice choice, const Settings& settings,
                              const ChosenReceiver& receiver);

}  // namespace tarvex
