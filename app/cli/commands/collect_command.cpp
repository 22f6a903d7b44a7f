// tarvex collect: points from a receiver.
#include <map>

#include "app/cli/collect_view.h"
#include "app/cli/commands/command.h"
#include "app/cli/commands/commands.h"
#include "app/cli/correction_choice.h"
#include "app/cli/correction_text.h"
#include "app/cli/receiver_choice.h"
#include "app/workflow/collect_session.h"
#include "app/workflow/coordinate_systems.h"
#include "app/workflow/job_calculator.h"
#include "app/workflow/job_localization.h"
#include "app/workflow/job_session.h"
#include "app/workflow/point_storing.h"
#include "core/coordinate_file.h"
#include "core/number_text.h"

namespace tarvex {
namespace {

constexpr double kHighestAntenna = 1000.0;

struct CollectOptions {
  std::string job;
  ReceiverChoice receiver;
  long long count = 1;
  std::string first;
  std::string description;
  std::string antenna_height = "0";
  std::string existing = "cancel";
  long long patience_s = 60;
  std::size_t average = 1;
  CorrectionChoice corrections;
  std::string stream_log;
  std::string recorded_at;
  std::map<std::string, std::string> gates;  ///< limits by their keys
  bool override_gate = false;
};

// What a position must keep: the job's limits, then the command line's.
ExitCode SettleGate(const CollectOptions& options, const Settings& job_settings, Program& program,
                    GateLimits& gate) {
  ReadGateLimits(job_settings.Text(), gate);
  for (const auto& [key, value] : options.gates) {
    if (value.empty() || SetGateLimit(key, value, gate)) continue;
    return program.Misuse("\"" + value + "\" is no value for the limit " + key +
                          "; docs/receivers.md lists them.");
  }
  return ExitCode::Done;
}

// The first id to store under: the one asked for, or the one behind the last of the job.
ExitCode SettleFirstId(const CollectOptions& options, JobSession& session, Program& program) {
  Job& job = session.job();
  const auto stream = OpenCoordinateFile(job);
  if (!stream) return ExitCode::Failed;
  std::string problem;
  if (!options.first.empty()) {
    return TakePointId(session, options.first, problem) ? ExitCode::Done : program.Misuse(problem);
  }
  job.current_point_id = job.last_point_id;
  AdvanceCurrentPoint(job);
  return ExitCode::Done;
}

ExitCode SettleAntenna(const CollectOptions& options, Program& program, double& height) {
  const auto antenna = ParseNumber(options.antenna_height);
  if (!antenna || *antenna < 0.0 || *antenna > kHighestAntenna) {
    return program.Misuse("The antenna height \"" + options.antenna_height +
                          "\" is not a number from 0 to 1000.");
  }
  height = *antenna;
  return ExitCode::Done;
}

// With corrections a point is meant to be an RTK point, whatever becomes of them.
void DemandFixed(CollectPlan& plan, Program& program) {
  if (!plan.corrections || plan.gate.solution || plan.override_gate) return;
  plan.gate.solution = SolutionType::Fixed;
  program.console.PrintError(
      "With corrections only FIXED positions are stored (--gate-solution says otherwise).\n");
}

ExitCode MakePlan(const CollectOptions& options, const Settings& settings, Program& program,
                  CollectPlan& plan) {
  ExitCode code = SettleReceiver(options.receiver, settings, program, plan.receiver);
  if (code == ExitCode::Done) code = SettleGate(options, settings, program, plan.gate);
  if (code == ExitCode::Done) {
    code =
        SettleCorrections(options.corrections, plan.receiver.settings, program, plan.corrections);
  }
  if (code == ExitCode::Done) code = SettleAntenna(options, program, plan.antenna_height);
  if (code != ExitCode::Done) return code;
  if (plan.corrections && !plan.receiver.takes_corrections()) {
    return program.Misuse("A recorded or simulated receiver takes no corrections.");
  }
  plan.average = options.average;
  plan.override_gate = options.override_gate;
  plan.stream_log = options.stream_log;
  plan.count = options.count;
  plan.description = options.description;
  plan.patience_ms = options.patience_s * 1000;
  DemandFixed(plan, program);
  return ExitCode::Done;
}

// How the session ended, in words and as the program's exit code.
ExitCode TellEnd(const CollectPlan& plan, const CollectSession& session, SessionEnd end,
                 Program& program) {
  const bool whole = program.exit_code == ExitCode::Done && !session.receiver_lost();
  switch (end) {
    case SessionEnd::Complete:
      return ExitCode::Done;
    case SessionEnd::Asked:
      program.console.PrintError(session.receiver_lost()
                                     ? "Stopped while the receiver was lost; the job is whole.\n"
                                     : "Stopped; the job is whole.\n");
      return plan.count == 0 && whole ? ExitCode::Done : ExitCode::Failed;
    case SessionEnd::RecordingEnded:
      if (session.bad_checksums() > 0) {
        program.console.PrintError(std::to_string(session.bad_checksums()) +
                                   (session.bad_checksums() == 1 ? " sentence" : " sentences") +
                                   " with a wrong checksum were left out.\n");
      }
      return program.Fail("The log ended before the points asked for were stored.");
    case SessionEnd::NoPosition:
      return program.Fail(session.receiver_lost()
                              ? "The receiver was lost and did not come back within " +
                                    std::to_string(plan.patience_ms / 1000) + " s."
                              : "No new position came within " +
                                    std::to_string(plan.patience_ms / 1000) + " s.");
    case SessionEnd::Failed:
      break;
  }
  return ExitCode::Failed;
}

ExitCode Collect(CollectPlan plan, JobSession& session, Program& program) {
  CTrgCalculator calculator;
  std::string problem;
  CoordinateSystems systems(program);
  if (!MakeJobCalculator(session, systems, calculator, problem)) return program.Fail(problem);
  CollectView view(program);
  SessionCommands commands;
  CollectSession collecting(program, session, calculator, plan, view, commands, InterruptRequested);
  const SessionEnd end = collecting.Run();
  program.console.EndProgress();
  ExitCode code = TellEnd(plan, collecting, end, program);
  if (const auto& corrections = collecting.corrections()) {
    program.console.PrintError(CorrectionSummary(*corrections) + "\n");
    if (corrections->frames == 0) code = program.Fail("No corrections came.");
  }
  const long long stored = collecting.stored();
  program.console.Print("Stored " + std::to_string(stored) + (stored == 1 ? " point" : " points") +
                        " in " + session.job().path + ".\n");
  return code == ExitCode::Done ? program.exit_code : code;
}

ExitCode CollectInto(const CollectOptions& options, Program& program, RecordedClock* recorded) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  session.set_policy(ParseExistingPolicy(options.existing));
  CollectPlan plan{.recorded = recorded};
  ExitCode code = MakePlan(options, session.settings(), program, plan);
  if (code == ExitCode::Done) code = SettleFirstId(options, session, program);
  return code == ExitCode::Done ? Collect(std::move(plan), session, program) : code;
}

// A recording can be collected at the time of the field.
ExitCode RunCollect(const CollectOptions& options, Program& program) {
  if (options.recorded_at.empty()) return CollectInto(options, program, nullptr);
  const auto start = ParseLocalTime(options.recorded_at);
  if (!start) {
    return program.Misuse("\"" + options.recorded_at +
                          "\" is no date and time: give --recorded-at \"2026-11-21 10:15:30\".");
  }
  if (!options.receiver.address.starts_with("file:")) {
    return program.Misuse("--recorded-at is for recordings: give --receiver file:LOG.");
  }
  RecordedClock clock(program.clock, *start);
  Program then{.files = program.files, .clock = clock, .console = program.console};
  return CollectInto(options, then, &clock);
}

// What a position must keep to be stored.
void AddGateOptions(CLI::App& sub, CollectOptions& options) {
  constexpr const char* kGroup = "Limits (a position that does not keep one is not stored)";
  const std::pair<const char*, const char*> limits[] = {
      {"solution", "At least this good: fixed, float, dgps or autonomous"},
      {"hrms", "Greatest HRMS, in the job's unit"},
      {"vrms", "Greatest VRMS, in the job's unit"},
      {"pdop", "Greatest PDOP"},
      {"satellites", "Fewest satellites"},
      {"age", "Greatest age of the corrections, seconds"},
      {"stale", "Greatest age of the position, seconds"}};
  for (const auto& [name, help] : limits) {
    sub.add_option(std::string("--gate-") + name, options.gates[std::string("gate_") + name], help)
        ->group(kGroup);
  }
  sub.add_flag("--override-gate", options.override_gate,
               "Store all the same; the raw file says which limit was not kept")
      ->group(kGroup);
}

}  // namespace

void AddCollectCommand(CLI::App& app, Program& program) {
  Command<CollectOptions> command(app, program, "collect", "Store points from a receiver",
                                  RunCollect);
  CollectOptions& options = *command.options;
  CLI::App& sub = command.sub;
  sub.footer(
      "Receivers: serial:/dev/ttyUSB0@115200, tcp:192.168.1.20:9001, file:LOG, simulated\n"
      "Each point is stored in the coordinate file, its observation in the raw file and its\n"
      "quality in the notes. Ctrl-C ends the session between two points.");
  sub.add_option("JOB.crd", options.job, "The job's coordinate file")->required();
  AddReceiverOptions(sub, options.receiver)->required();
  sub.add_option("--count", options.count, "Points to store (default: 1); 0: until the end")
      ->check(CLI::Range(0LL, 1000000000LL));
  sub.add_option("--first", options.first, "Id of the first point (default: the next of the job)");
  sub.add_option("--description", options.description, "Description of the points");
  sub.add_option("--antenna-height", options.antenna_height,
                 "Height of the antenna above the point, in the job's unit");
  sub.add_option(
         "--existing", options.existing,
         "When a point exists: overwrite it, use the next free id, or end (default: cancel)")
      ->check(CLI::IsMember({"overwrite", "next", "cancel"}));
  sub.add_option("--average", options.average,
                 "Distinct epochs whose mean is stored as one point (default: 1)")
      ->check(CLI::Range(1, 100000));
  sub.add_option("--log-stream", options.stream_log,
                 "Keep what the receiver sends in a new file, to be replayed");
  sub.add_option("--recorded-at", options.recorded_at,
                 "Local date and time, as \"2026-11-21 10:15:30\", when a recording began; the\n"
                 "job's files then bear the times of the field");
  AddGateOptions(sub, options);
  AddCorrectionOptions(sub, options.corrections);
  sub.add_option("--patience", options.patience_s,
                 "Seconds to wait for a new position (default: 60)")
      ->check(CLI::Range(1LL, 86400LL));
}

}  // namespace tarvex
