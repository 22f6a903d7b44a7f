// Which receiver a command works with, from its options and the job's settings.
#pragma once

#include <string>
#include <vector>

#include "app/cli/program.h"
#include "core/settings.h"
#include "gnss/port_address.h"
#include "gnss/receiver_make.h"
#include "gnss/receiver_settings.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tarvex {

/// As entered.
struct ReceiverChoice {
  std::string address;
  std::string make;
  std::vector<std::string> settings;
  int position_sentence = 0;
};

struct ChosenReceiver {
  PortAddress address;
  int make_code = kMakeAnyNmea;
  ReceiverSettings settings;
};

/// Adds --receiver, --make, --set and --nmea-pos; returns --receiver.
CLI::Option* AddReceiverOptions(CLI::App& sub, ReceiverChoice& choice);

/// The settings are the make's own, then the job's, then the command line's. Wrong use, after a
/// message, when something of the choice is not known.
ExitCode SettleReceiver(const ReceiverChoice& choice, const Settings& job_settings,
                        Program& program, ChosenReceiver& receiver);

}  // namespace tarvex
