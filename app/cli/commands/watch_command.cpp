// tarvex watch: what a receiver says, live in the terminal.
#include <memory>
#include <optional>
#include <string>

#include "app/cli/commands/command.h"
#include "app/cli/commands/commands.h"
#include "app/cli/correction_choice.h"
#include "app/cli/receiver_choice.h"
#include "app/cli/watch_view.h"
#include "app/workflow/correction_link.h"
#include "gnss/link_retry.h"

namespace tarvex {
namespace {

struct WatchOptions {
  ReceiverChoice receiver;
  CorrectionChoice corrections;
  std::string stream_log;
  long long count = 0;
};

class Watch {
 public:
  Watch(const WatchOptions& options, const ChosenReceiver& choice,
        const std::optional<CorrectionPlan>& corrections, Program& program)
      : options_(options),
        choice_(choice),
        corrections_(corrections),
        program_(program),
        port_(MakePort(choice.address, program.files, program.clock, errors_, InterruptRequested)),
        tap_(program.files, program.clock),
        connection_{.port = port_.get(),
                    .clock = program.clock,
                    .settings = choice.settings,
                    .listener = &tap_},
        view_(program.console) {
    tap_.ShowSatellitesOf(choice.settings.satellite_family);
  }

  ExitCode Run() {
    if (!Open()) return program_.Fail(ErrorSentences(errors_));
    if (!options_.stream_log.empty() && !tap_.StartLog(options_.stream_log)) {
      return program_.Fail(tap_.log_problem());
    }
    while (!InterruptRequested() && (options_.count == 0 || positions_ < options_.count)) {
      if (!ReadOne()) break;
    }
    view_.End();
    return Ending();
  }

 private:
  bool Open() {
    errors_.Clear();
    if (port_ && port_->Open() != PortError::None) return false;
    if (corrections_) {
      link_ = std::make_unique<CorrectionLink>(program_.files, program_.clock, InterruptRequested,
                                               *corrections_, *port_, tap_.gga());
    }
    return true;
  }

  // False when nothing more comes.
  bool ReadOne() {
    const GnssReadResult result = ReadGnssPosition(state_, connection_, choice_.make_code);
    if (InterruptRequested()) return true;
    if (result != GnssReadResult::Accepted && connection_.ended()) {
      return connection_.link_lost() && Reconnect();
    }
    if (result == GnssReadResult::Accepted && !state_.repeated_epoch) ++positions_;
    if (!NextSentenceIsDue(result, state_, program_.clock)) {
      Show(result == GnssReadResult::Accepted ? "" : ResultSentence(result, connection_));
    }
    // A simulated receiver gives as many epochs as are asked for; people look at one a second.
    if (choice_.address.kind == PortKind::Simulated) Pause(LinkRetry::kShortestMs);
    return true;
  }

  void Show(const std::string& trouble) {
    view_.Show(trouble, state_, tap_, link_.get(), program_.clock);
  }

  // Tries until the receiver is there again; false when the person ends it.
  bool Reconnect() {
    lost_ = true;
    Show("The link to the receiver is lost; it is opened again as soon as it can be.");
    link_.reset();
    (void)port_->Close();
    LinkRetry retry;
    do {
      Pause(retry.NextMs());
      if (InterruptRequested()) return false;
    } while (!Open());
    connection_.Reconnected();
    lost_ = false;
    Show("The receiver is connected again.");
    return true;
  }

  void Pause(std::int64_t pause_ms) {
    constexpr std::int64_t kStepMs = 50;
    const std::int64_t until = program_.clock.SteadyMilliseconds() + pause_ms;
    while (!InterruptRequested() && program_.clock.SteadyMilliseconds() < until) {
      program_.clock.SleepMilliseconds(kStepMs);
    }
  }

  ExitCode Ending() const {
    if (!tap_.log_problem().empty()) return program_.Fail(tap_.log_problem());
    if (lost_) return program_.Fail("The link to the receiver was lost and did not come back.");
    const std::string counted =
        std::to_string(positions_) + (positions_ == 1 ? " position." : " positions.");
    if (connection_.ended() && options_.count > 0 && positions_ < options_.count) {
      return program_.Fail("The receiver's data ended after " + counted);
    }
    if (positions_ > 0) return ExitCode::Done;
    return program_.Fail(connection_.ended() ? "The receiver's data ended. No position came."
                                             : "No position came.");
  }

  const WatchOptions& options_;
  const ChosenReceiver& choice_;
  const std::optional<CorrectionPlan>& corrections_;
  Program& program_;
  LastErrorRecord errors_;
  std::unique_ptr<Port> port_;
  ReceiverTap tap_;
  GnssConnection connection_;
  std::unique_ptr<CorrectionLink> link_;
  GnssPositionState state_;
  WatchView view_;
  long long positions_ = 0;
  bool lost_ = false;  // and not found again yet
};

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
  return Watch(options, choice, corrections, program).Run();
}

}  // namespace

void AddWatchCommand(CLI::App& app, Program& program) {
  Command<WatchOptions> command(app, program, "watch", "Look at a receiver, live", RunWatch);
  WatchOptions& options = *command.options;
  CLI::App& sub = command.sub;
  sub.footer(
      "In a terminal the view is drawn anew with each position; otherwise each is a line.\n"
      "A link that is lost is opened again. Ctrl-C ends it. Precision is in metres.\n"
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
