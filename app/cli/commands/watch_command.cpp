// tarvex watch: what a receiver says, live in the terminal.
#include <cstdio>

#include "app/cli/commands/command.h"
#include "app/cli/commands/commands.h"
#include "app/cli/correction_choice.h"
#include "app/cli/receiver_choice.h"
#include "app/cli/watch_view.h"
#include "app/workflow/correction_link.h"

namespace tarvex {
namespace {

struct WatchOptions {
  ReceiverChoice receiver;
  CorrectionChoice corrections;
  std::string stream_log;
  long long count = 0;
};

// A simulated receiver gives as many epochs as are asked for; people look at one a second.
void PaceSimulated(const ChosenReceiver& choice, Program& program) {
  constexpr std::int64_t kEpochMs = 1000;
  if (choice.address.kind == PortKind::Simulated) program.clock.SleepMilliseconds(kEpochMs);
}

ExitCode Watch(const WatchOptions& options, const ChosenReceiver& choice,
               GnssConnection& connection, ReceiverTap& tap, const CorrectionLink* link,
               Program& program) {
  GnssPositionState state;
  WatchView view(program.console);
  long long positions = 0;
  while (!InterruptRequested() && (options.count == 0 || positions < options.count)) {
    const GnssReadResult result = ReadGnssPosition(state, connection, choice.make_code);
    if (InterruptRequested()) break;
    if (result != GnssReadResult::Accepted && connection.ended()) break;
    if (result == GnssReadResult::Accepted && !state.repeated_epoch) ++positions;
    if (!NextSentenceIsDue(result, state, program.clock)) {
      view.Show(result, state, tap, link, program.clock);
    }
    PaceSimulated(choice, program);
  }
  view.End();
  if (connection.ended() && options.count > 0 && positions < options.count) {
    return program.Fail("The receiver's data ended after " + std::to_string(positions) +
                        " positions.");
  }
  if (positions > 0) return ExitCode::Done;
  return program.Fail(connection.ended() ? "The receiver's data ended. No position came."
                                         : "No position came.");
}

ExitCode RunWatch(const WatchOptions& options, Program& program) {
  ChosenReceiver choice;
  if (const ExitCode code = SettleReceiver(options.receiver, Settings(), program, choice);
      code != ExitCode::Done) {
    return code;
  }
  std::optional<CorrectionPlan> corrections;
  if (const ExitCode code =
          SettleCorrections(options.corrections, choice.settings, program, corrections);
      code != ExitCode::Done) {
    return code;
  }
  if (corrections &&
      (choice.address.kind == PortKind::Simulated || choice.address.kind == PortKind::File)) {
    return program.Misuse("A recorded or simulated receiver takes no corrections.");
  }
  LastErrorRecord errors;
  const auto port =
      MakePort(choice.address, program.files, program.clock, errors, InterruptRequested);
  if (port && port->Open() != PortError::None) return program.Fail(ErrorSentences(errors));
  ReceiverTap tap(program.files, program.clock);
  if (!options.stream_log.empty() && !tap.StartLog(options.stream_log)) {
    return program.Fail(tap.log_problem());
  }
  GnssConnection connection{
      .port = port.get(), .clock = program.clock, .settings = choice.settings, .listener = &tap};
  std::unique_ptr<CorrectionLink> link;
  if (corrections) {
    link = std::make_unique<CorrectionLink>(program.files, program.clock, InterruptRequested,
                                            *corrections, *port, tap.gga());
  }
  return Watch(options, choice, connection, tap, link.get(), program);
}

}  // namespace

void AddWatchCommand(CLI::App& app, Program& program) {
  Command<WatchOptions> command(app, program, "watch", "Look at a receiver, live", RunWatch);
  WatchOptions& options = *command.options;
  CLI::App& sub = command.sub;
  sub.footer(
      "In a terminal the view is drawn anew with each position; otherwise each is a line.\n"
      "Ctrl-C ends it. Precision is in metres.\n"
      "Examples:\n"
      "  tarvex watch serial:/dev/ttyUSB0@115200\n"
      "  tarvex watch file:site.nmea --count 10\n"
      "  tarvex watch tcp:192.168.1.20:9001 --corrections ntrip://me@caster.example:2101/MOUNT");
  // The address is the one argument here, not an option.
  sub.remove_option(AddReceiverOptions(sub, options.receiver));
  sub.add_option("PORT", options.receiver.address,
                 "serial:DEVICE[@BAUD], tcp:HOST:PORT, file:LOG or simulated")
      ->required();
  AddCorrectionOptions(sub, options.corrections);
  sub.add_option("--log-stream", options.stream_log, "Keep what the receiver sends in a new file");
  sub.add_option("--count", options.count, "End after so many positions (default: never)")
      ->check(CLI::NonNegativeNumber);
}

}  // namespace tarvex
