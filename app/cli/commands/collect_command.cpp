// tarvex collect: points from a receiver.
#include "app/cli/collect_view.h"
#include "app/cli/command_line.h"
#include "app/cli/session_options.h"
#include "app/cli/typed_commands.h"
#include "app/workflow/collect_session.h"
#include "app/workflow/job_calculator.h"
#include "app/workflow/job_localization.h"
#include "app/workflow/job_session.h"
#include "app/workflow/point_storing.h"
#include "core/coordinates/coordinate_file.h"
#include "core/observations/next_id.h"

namespace tarvex {
namespace {

constexpr long long kNotGiven = -1;

struct CollectOptions {
  std::string job;
  SessionOptions session;
  long long count = kNotGiven;
  bool onEnter = false;
  std::string first;
  std::string description;
  std::string existing = "cancel";
  std::string recordedAt;
};

// The first id to store under: the one asked for, or the one behind the last of the job.
ExitCode SettleFirstId(const CollectOptions& options, JobSession& session, Program& program) {
  Job& job = session.job();
  const auto stream = OpenCoordinateFile(job);
  if (!stream) return ExitCode::Failed;
  std::string problem;
  if (!options.first.empty()) {
    return TakePointId(session, options.first, problem) ? ExitCode::Done : program.Misuse(problem);
  }
  const auto next = NextIdToUse(job, *stream);
  if (!next) return program.Fail("No free point id was found behind " + job.ids.current + ".");
  job.ids.current = *next;
  return ExitCode::Done;
}

ExitCode Collect(const CollectPlan& plan, JobSession& session, Program& program) {
  CTrgCalculator calculator;
  std::string problem;
  CoordinateSystems systems(program);
  if (!MakeJobCalculator(session, systems, calculator, problem)) return program.Fail(problem);
  CollectView view(program);
  SessionCommands commands;
  std::optional<TypedCommands> typed;
  if (program.console.IsTyped()) typed.emplace(program, commands);
  CollectSession collecting(program, session, calculator, plan, view, commands, InterruptRequested);
  if (plan.trigger == StoreTrigger::OnCommand) {
    program.console.PrintError("Enter stores the next position; q and Enter ends.\n");
  }
  const SessionEnd end = collecting.Run();
  const ExitCode code = TellSessionEnd(program, collecting, plan, end, plan.count == 0);
  const long long stored = collecting.stored();
  program.console.Print("Stored " + std::to_string(stored) + (stored == 1 ? " point" : " points") +
                        " in " + session.job().path + ".\n");
  return code;
}

ExitCode CollectInto(const CollectOptions& options, Program& program, RecordedClock* recorded) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  session.setPolicy(ParseExistingPolicy(options.existing));
  CollectPlan plan;
  plan.recorded = recorded;
  plan.trigger = options.onEnter ? StoreTrigger::OnCommand : StoreTrigger::EveryEpoch;
  const long long byDefault = options.onEnter ? 0 : 1;
  plan.count = options.count == kNotGiven ? byDefault : options.count;
  plan.description = options.description;
  if (plan.count == 0 && program.console.IsTyped()) plan.simulatedPaceMs = kSimulatedPaceMs;
  ExitCode code = SettleSession(options.session, session.settings(), program, plan);
  if (options.onEnter && !program.console.IsTyped()) {
    return program.Misuse("--on-enter needs a terminal to type in.");
  }
  if (code == ExitCode::Done) code = SettleFirstId(options, session, program);
  return code == ExitCode::Done ? Collect(plan, session, program) : code;
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
      "While it runs, a line typed in the terminal is a command: Enter (with --on-enter: store),\n"
      "d TEXT, h HEIGHT (description and antenna height of the next points), p (pause),\n"
      "c (continue), r (ask the caster for corrections again), q (end).");
  command.Add("JOB.crd", options.job, "The job's coordinate file").Required();
  AddSessionOptions(command, options.session);
  command
      .Add("--count", options.count,
           "Points to store (default: 1, with --on-enter 0); 0: until Ctrl-C or the end of\n"
           "a recording")
      .Between(0, 1000000000);
  command.AddFlag("--on-enter", options.onEnter,
                  "Store a point at each Enter typed in the terminal, not each position");
  command.Add("--first", options.first, "Id of the first point (default: the next of the job)");
  command.Add("--description", options.description, "Description of the points");
  command
      .Add("--existing", options.existing,
           "When a point exists: overwrite it, use the next free id, or end (default: cancel)")
      .OneOf({"overwrite", "next", "cancel"});
  command.Add("--recorded-at", options.recordedAt,
              "Local date and time, as \"2026-11-21 10:15:30\", when a recording began; the\n"
              "job's files then bear the times of the field");
}

}  // namespace tarvex
