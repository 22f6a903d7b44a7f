// tarvex collect: points from a receiver.
#include <algorithm>
#include <cmath>

#include "app/cli/collect_view.h"
#include "app/cli/command_line.h"
#include "app/cli/json_events.h"
#include "app/cli/key_reader.h"
#include "app/cli/number_entry.h"
#include "app/cli/session_input.h"
#include "app/cli/session_options.h"
#include "app/cli/storing_text.h"
#include "app/workflow/collect_session.h"
#include "app/workflow/job_calculator.h"
#include "app/workflow/job_codes.h"
#include "app/workflow/job_localization.h"
#include "app/workflow/job_session.h"
#include "app/workflow/point_storing.h"
#include "core/codes/line_work.h"

namespace tarvex {
namespace {

constexpr long long kNotGiven = -1;

struct CollectOptions {
  std::string job;
  SessionOptions session;
  long long count = kNotGiven;
  bool onEnter = false;
  double everyS = 0.0;  // 0: not given
  double distance = 0.0;
  std::string first;
  std::string description;
  std::string existing = "cancel";
  std::string recordedAt;
  bool json = false;
};

ExitCode Collect(const CollectPlan& plan, bool json, JobSession& session, Program& program) {
  CTrgCalculator calculator;
  std::string problem;
  CoordinateSystems systems(program);
  if (!MakeJobCalculator(session, systems, calculator, problem)) return program.Fail(problem);
  CollectView view(program);
  JsonEvents events(program);
  SessionListener& listener = json ? static_cast<SessionListener&>(events) : view;
  SessionCommands commands;
  CollectSession collecting(program, session, calculator, plan, listener, commands,
                            InterruptRequested);
  SessionEnd end = SessionEnd::Failed;
  {
    const SessionInput input(program, commands, plan.codes, KeyUse::Collecting);
    if (input.takesKeys()) view.TakesKeys();
    if (input.takesLines() && plan.trigger == StoreTrigger::OnCommand) {
      program.console.PrintError("Enter stores the next position; q and Enter ends.\n");
    }
    end = collecting.Run();
  }
  const ExitCode code = TellSessionEnd(program, collecting, plan, end, plan.count == 0);
  const long long stored = collecting.stored();
  if (json) {
    PrintEvent(program, "ended",
               {{"end", SessionEndName(end)}, {"stored", stored}, {"job", session.job().path}});
    return code;
  }
  program.console.Print("Stored " + std::to_string(stored) + (stored == 1 ? " point" : " points") +
                        " in " + session.job().path + ".\n");
  return code;
}

// On a terminal a person says when to store, unless it is said beforehand.
void SettleTrigger(const CollectOptions& options, Program& program, CollectPlan& plan) {
  const bool counted = options.count != kNotGiven;
  const bool recorded = options.session.receiver.address.starts_with("file:");
  const bool waits = !counted && !recorded && HasKeysAndScreen(program.console);
  if (options.everyS > 0.0) {
    constexpr double kLongestS = 1e9;
    plan.trigger = StoreTrigger::ByTime;
    plan.everyMs = std::llround(std::min(options.everyS, kLongestS) * 1000.0);
  } else if (options.distance > 0.0) {
    plan.trigger = StoreTrigger::ByDistance;
    plan.distance = options.distance;
  } else if (options.onEnter || waits) {
    plan.trigger = StoreTrigger::OnCommand;
  }
  plan.count = counted ? options.count : plan.trigger == StoreTrigger::EveryEpoch ? 1 : 0;
}

ExitCode CollectInto(const CollectOptions& options, Program& program, RecordedClock* recorded) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  session.setPolicy(ParseExistingPolicy(options.existing));
  CollectPlan plan;
  plan.recorded = recorded;
  SettleTrigger(options, program, plan);
  plan.description = options.description;
  if (program.console.IsTyped()) {
    plan.codes = LoadJobCodes(session);
    const std::string warning = UnknownCodeWarning(plan.description, plan.codes);
    if (!warning.empty()) program.Warn(warning);
  }
  if (plan.count == 0 && program.console.IsTyped()) plan.simulatedPaceMs = kSimulatedPaceMs;
  ExitCode code = SettleSession(options.session, session.settings(), program, plan);
  if (options.onEnter && !program.console.IsTyped()) {
    return program.Misuse("--on-enter needs a terminal to type in.");
  }
  std::string problem;
  if (code == ExitCode::Done && !TakeFirstId(session, options.first, problem)) {
    return TellNoFirstId(program, options.first, problem);
  }
  return code == ExitCode::Done ? Collect(plan, options.json, session, program) : code;
}

// A recording can be collected at the time of the field.
ExitCode RunCollect(const CollectOptions& options, Program& program) {
  if (options.recordedAt.empty()) return CollectInto(options, program, nullptr);
  const auto start = ParseLocalTime(options.recordedAt);
  if (!start) {
    return program.Misuse("\"" + options.recordedAt +
                          "\" is not a date and time: give --recorded-at \"2026-11-21 10:15:30\".");
  }
  if (!options.session.receiver.address.starts_with("file:")) {
    return program.Misuse("--recorded-at is for recordings: give --receiver file:LOG.");
  }
  RecordedClock clock(program.clock, *start);
  Program then{.files = program.files, .clock = clock, .console = program.console};
  return CollectInto(options, then, &clock);
}

}  // namespace

void DeclareCollectCommand(Command& command) {
  CollectOptions& options = command.Runs(RunCollect);
  command.Footer(
      "Receivers: serial:/dev/ttyUSB0@115200, tcp:192.168.1.20:9001, file:LOG, simulated\n"
      "Each point is stored in the coordinate file, its observation in the raw file and its\n"
      "quality in the notes. Ctrl-C ends the session between two points.\n"
      "On a terminal it waits for keys, unless --count, --every or --distance is given (they work\n"
      "then as well): Enter or space stores the next position that keeps the limits,\n"
      "d description, h antenna height, i next id, a how many epochs make a point,\n"
      "u takes the last point back, p pauses, c continues, r asks for corrections again,\n"
      "? shows the keys, q ends.");
  command.Add("JOB.crd", options.job, "The job's coordinate file").Required();
  AddSessionOptions(command, options.session);
  command
      .Add("--count", options.count,
           "So many positions become points, one after the other; 0: all until Ctrl-C or the\n"
           "end of a recording (default: 1; on a terminal, with --every and --distance, until q)")
      .Between(0, 1000000000);
  const Option onEnter =
      command.AddFlag("--on-enter", options.onEnter,
                      "Store a point at each Enter typed in the terminal, not each position");
  const Option every = AddNumber(command, "--every", options.everyS,
                                 "Store a point every so many seconds", NumberKind::Positive)
                           .ValueName("SECONDS");
  AddNumber(command, "--distance", options.distance,
            "Store a point so far from the one before, horizontally, in the job's unit",
            NumberKind::Positive)
      .Excludes(every)
      .Excludes(onEnter);
  every.Excludes(onEnter);
  command.Add("--first", options.first, "Id of the first point (default: the next of the job)")
      .ValueName("ID");
  command.Add("--description", options.description, "Description of the points");
  command
      .Add("--existing", options.existing,
           "When a point exists: overwrite it, use the next free id, or end (default: cancel)")
      .OneOf({"overwrite", "next", "cancel"});
  command
      .Add("--recorded-at", options.recordedAt,
           "Local date and time, as \"2026-11-21 10:15:30\", when a recording began; the\n"
           "job's files then bear the times of the field")
      .ValueName("DATE TIME");
  command.AddFlag("--json", options.json, "Print a line of JSON for each event");
}

}  // namespace tarvex
