// Which receiver a command works with, from its options and the job's settings.
#pragma once

#include <string>
#include <vector>

#include "app/cli/command_line.h"
#include "app/workflow/chosen_receiver.h"
#include "core/job/settings.h"

namespace tarvex {

/// As entered.
struct ReceiverChoice {
  std::string address;
  std::string make;
  std::vector<std::string> settings;
  int positionSentence = 0;
};

/// Adds --receiver and the settings of it; returns --receiver.
Option AddReceiverOptions(Command& command, ReceiverChoice& choice);
/// Adds --make, --set and --nmea-pos.
void AddReceiverSettings(Command& command, ReceiverChoice& choice);

/// The settings are the make's own, then the job's, then the command line's. Wrong use, after a
/// message, when something of the choice is not known.
ExitCode SettleReceiver(const ReceiverChoice& choice, const Settings& jobSettings, Program& program,
                        ChosenReceiver& receiver);

/// Says how many sentences were left out for their checksum, if there were any.
void TellBadChecksums(Program& program, std::uint64_t count);

}  // namespace tarvex
