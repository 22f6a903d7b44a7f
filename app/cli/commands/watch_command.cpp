// tarvex watch: what a receiver says, live in the terminal.
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "app/cli/command_line.h"
#include "app/cli/correction_choice.h"
#include "app/cli/json_events.h"
#include "app/cli/profile_choice.h"
#include "app/cli/receiver_choice.h"
#include "app/cli/session_options.h"
#include "app/cli/stream_log_name.h"
#include "app/cli/typed_commands.h"
#include "app/cli/watch_view.h"
#include "app/workflow/correction_link.h"
#include "app/workflow/job_place.h"
#include "app/workflow/position_checks.h"
#include "app/workflow/receiver_link.h"

namespace tarvex {
namespace {

constexpr const char* kNoPort =
    "Say which receiver: tarvex watch serial:/dev/ttyUSB0@115200 (tcp:HOST:PORT, file:LOG, "
    "simulated), or --profile NAME.";

struct WatchOptions {
  ReceiverChoice receiver;
  std::string profile;
  CorrectionChoice corrections;
  std::string streamLog;
  std::string job;
  std::string to;
  std::string antennaHeight;
  long long count = 0;
  bool json = false;
};

// Where a position is in the job; without "grid" it has no place there.
Json PlaceJson(const JobPlace& place) {
  const GridPosition& position = place.position;
  if (!position.usable()) {
    return {{"grid", nullptr}, {"no_grid", CalculationText(position.result, position.steps)}};
  }
  Json json = {
      {"grid", Json{{"northing", position.at.northing},
                    {"easting", position.at.easting},
                    {"elevation", place.hasElevation ? Json(position.at.elevation) : Json()}}}};
  if (const auto& way = place.way) {
    json["way"] = Json{{"id", way->id},
                       {"distance", way->distance},
                       {"azimuth_deg", way->azimuthRad * kDegreesPerRadian},
                       {"north", way->north},
                       {"east", way->east},
                       {"up", way->up ? Json(*way->up) : Json()}};
  }
  return json;
}

class Watch {
 public:
  Watch(const WatchOptions& options, const ChosenReceiver& choice,
        const std::optional<CorrectionPlan>& corrections, const JobPlaces* places,
        double antennaHeight, Program& program)
      : options_(options),
        choice_(choice),
        corrections_(corrections),
        places_(places),
        antennaHeight_(antennaHeight),
        program_(program),
        receiver_(program.files, program.clock, choice, DistanceUnit::Metres,
                  [this] { return EndAsked(); }),
        view_(program.console) {}

  ExitCode Run() {
    std::string problem;
    if (!receiver_.Open(problem)) return program_.Fail(problem);
    if (!options_.streamLog.empty() &&
        !receiver_.tap().StartLog(StreamLogName(options_.streamLog, program_.clock.Now()))) {
      return program_.Fail(receiver_.tap().logProblem());
    }
    StartCorrections();
    std::optional<TypedCommands> typed;
    if (program_.console.IsTyped()) typed.emplace(program_, commands_);
    while (!EndAsked() && (options_.count == 0 || positions_ < options_.count)) {
      if (!ReadOne()) break;
    }
    view_.End();
    return Ending();
  }

 private:
  bool EndAsked() const { return InterruptRequested() || commands_.EndSent(); }

  // Of what may be typed while a session runs, watching knows the corrections and the end.
  void TakeCommands() {
    while (const auto command = commands_.Take()) {
      if (link_ && std::holds_alternative<RetryCorrections>(*command)) link_->Retry();
    }
  }

  void StartCorrections() {
    if (!corrections_) return;
    link_ = std::make_unique<CorrectionLink>(
        program_.files, program_.clock, [this] { return EndAsked(); }, *corrections_,
        *receiver_.port(), receiver_.tap().gga());
  }

  // False when nothing more comes.
  bool ReadOne() {
    const GnssReadResult result = receiver_.Read();
    TakeCommands();
    if (EndAsked()) return true;
    if (receiver_.lost()) return Reconnect();
    if (receiver_.ended() && result != GnssReadResult::Accepted) return false;
    const GnssPositionState& state = receiver_.state();
    if (result == GnssReadResult::Accepted && !state.repeatedEpoch) ++positions_;
    if (!NextSentenceIsDue(result, state, program_.clock)) {
      Show(result == GnssReadResult::Accepted ? "" : receiver_.Sentence(result));
    }
    // A simulated receiver gives as many epochs as are asked for; people look at one a second.
    if (choice_.address.kind == PortKind::Simulated) Pause(kSimulatedPaceMs);
    return true;
  }

  void Show(const std::string& trouble) {
    if (options_.json) return Print(trouble);
    if (places_ != nullptr && receiver_.state().positions > 0) {
      view_.setPlace(PlaceLine(places_->Of(receiver_.state(), antennaHeight_)));
    }
    view_.Show(trouble, receiver_.state(), receiver_.tap(), link_.get(), program_.clock);
  }

  void Print(const std::string& trouble) {
    Json json = trouble.empty() ? Json{{"position", PositionJson(receiver_.state())}}
                                : Json{{"text", trouble}};
    if (places_ != nullptr && trouble.empty()) {
      json.Append(PlaceJson(places_->Of(receiver_.state(), antennaHeight_)));
    }
    if (link_) json["corrections"] = CorrectionsJson(link_->Status());
    PrintEvent(program_, trouble.empty() ? "position" : "no_position", std::move(json));
  }

  // Tries until the receiver is there again; false when the person ends it.
  bool Reconnect() {
    link_.reset();
    Show("The link to the receiver is lost; it is opened again as soon as it can be.");
    while (!receiver_.TryAgain()) {
      if (EndAsked()) return false;
      program_.clock.SleepMilliseconds(kStepMs);
    }
    StartCorrections();
    Show("The receiver is connected again.");
    return true;
  }

  void Pause(std::int64_t pauseMs) {
    const std::int64_t until = program_.clock.SteadyMilliseconds() + pauseMs;
    while (!EndAsked() && program_.clock.SteadyMilliseconds() < until) {
      program_.clock.SleepMilliseconds(kStepMs);
    }
  }

  ExitCode Ending() {
    TellBadChecksums(program_, receiver_.state().badChecksums);
    if (const std::string& problem = receiver_.tap().logProblem(); !problem.empty()) {
      return program_.Fail(problem);
    }
    if (receiver_.lost()) {
      return program_.Fail("The link to the receiver was lost and did not come back.");
    }
    if (link_) {
      const std::string verdict = CorrectionVerdict(link_->Status());
      if (!verdict.empty()) return program_.Fail(verdict);
    }
    const std::string counted =
        std::to_string(positions_) + (positions_ == 1 ? " position." : " positions.");
    if (receiver_.ended() && options_.count > 0 && positions_ < options_.count) {
      return program_.Fail("The receiver's data ended after " + counted);
    }
    if (options_.count > 0 && positions_ < options_.count) {
      return program_.Fail("Stopped after " + counted);
    }
    if (positions_ > 0) return ExitCode::Done;
    return program_.Fail(receiver_.ended() ? "The receiver's data ended. No position came."
                                           : "No position came.");
  }

  static constexpr std::int64_t kSimulatedPaceMs = 1000;
  static constexpr std::int64_t kStepMs = 50;

  const WatchOptions& options_;
  const ChosenReceiver& choice_;
  const std::optional<CorrectionPlan>& corrections_;
  const JobPlaces* places_;  // null without a job
  double antennaHeight_;
  Program& program_;
  SessionCommands commands_;
  ReceiverLink receiver_;
  std::unique_ptr<CorrectionLink> link_;
  WatchView view_;
  long long positions_ = 0;
};

// The job that the positions are shown in, when one is named.
ExitCode OpenPlaces(const WatchOptions& options, Program& program,
                    std::unique_ptr<JobPlaces>& places) {
  if (options.job.empty()) {
    if (options.to.empty() && options.antennaHeight.empty()) return ExitCode::Done;
    return program.Misuse("--to and --antenna-height need a job: give --job JOB.crd.");
  }
  places = std::make_unique<JobPlaces>(program, options.job);
  std::string problem;
  if (!places->Open(options.to, problem)) {
    return problem.empty() ? ExitCode::Failed : program.Fail(problem);
  }
  for (const std::string& warning : SystemWarnings(places->calculator())) {
    program.Warn(warning);
  }
  return ExitCode::Done;
}

ExitCode RunWatch(const WatchOptions& options, Program& program) {
  std::unique_ptr<JobPlaces> places;
  ExitCode code = OpenPlaces(options, program, places);
  if (code != ExitCode::Done) return code;
  Settings settings;
  code =
      SettleProfile(options.profile, places ? places->settings() : Settings(), program, settings);
  if (code != ExitCode::Done) return code;
  double antennaHeight = 0.0;
  if (places) code = SettleAntenna(options.antennaHeight, settings, program, antennaHeight);
  if (code != ExitCode::Done) return code;
  const ReceiverChoice receiver = WithSettings(options.receiver, settings);
  if (receiver.address.empty()) return program.Misuse(kNoPort);
  ChosenReceiver choice;
  code = SettleReceiver(receiver, settings, program, choice);
  if (code != ExitCode::Done) return code;
  std::optional<CorrectionPlan> corrections;
  code = SettleCorrections(WithSettings(options.corrections, settings, choice), choice.settings,
                           program, corrections);
  if (code != ExitCode::Done) return code;
  if (corrections &&
      (choice.address.kind == PortKind::Simulated || choice.address.kind == PortKind::File)) {
    return program.Misuse("A recorded or simulated receiver takes no corrections.");
  }
  return Watch(options, choice, corrections, places.get(), antennaHeight, program).Run();
}

}  // namespace

void DeclareWatchCommand(Command& command) {
  WatchOptions& options = command.Runs(RunWatch);
  command.Footer(
      "In a terminal the view is drawn anew with each position; otherwise each is a line.\n"
      "A link that is lost is opened again. r and Enter asks the caster for corrections again,\n"
      "q and Enter or Ctrl-C ends. Precision is in metres, what --job\n"
      "shows in the job's unit.\n"
      "Examples:\n"
      "  tarvex watch serial:/dev/ttyUSB0@115200\n"
      "  tarvex watch file:site.nmea --count 10\n"
      "  tarvex watch serial:/dev/ttyUSB0@115200 --job site.crd --to 17\n"
      "  tarvex watch tcp:192.168.1.20:9001 --corrections ntrip://me@caster.example:2101/MOUNT");
  AddReceiverSettings(command, options.receiver);
  const Option port = command.Add("PORT", options.receiver.address,
                                  "serial:DEVICE[@BAUD], tcp:HOST:PORT, file:LOG or simulated");
  command.Add("--receiver", options.receiver.address, "PORT, as the other commands take it")
      .ValueName("ADDRESS")
      .Excludes(port);
  AddProfileOption(command, options.profile);
  AddCorrectionOptions(command, options.corrections);
  command.Add("--log-stream", options.streamLog, kStreamLogHelp).ValueName("FILE");
  command.AddFlag("--json", options.json, "Print a line of JSON for each position");
  command
      .Add("--job", options.job,
           "JOB.crd: shows the grid coordinates in this job; its settings of the receiver hold")
      .ValueName("JOB.crd");
  command
      .Add("--to", options.to,
           "Point of the job: shows its distance, azimuth and N, E, EL from here")
      .ValueName("POINT");
  AddAntennaOption(command, options.antennaHeight);
  command.Add("--count", options.count, "End after so many positions (default: never)")
      .NotNegative();
}

}  // namespace tarvex
