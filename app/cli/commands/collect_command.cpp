// tarvex collect: points from a receiver.
#include <map>

#include "app/cli/commands/command.h"
#include "app/cli/commands/commands.h"
#include "app/cli/correction_choice.h"
#include "app/cli/receiver_choice.h"
#include "app/workflow/collect_session.h"
#include "app/workflow/coordinate_systems.h"
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
ExitCode SettleFirstId(const CollectOptions& options, Job& job, Program& program) {
  const auto stream = OpenCoordinateFile(job);
  if (!stream) return ExitCode::Failed;
  if (options.first.empty()) {
    job.current_point_id = job.last_point_id;
    AdvanceCurrentPoint(job);
    return ExitCode::Done;
  }
  if (!TakePointId(program, job, options.first)) return ExitCode::WrongUse;
  return ExitCode::Done;
}

ExitCode CollectInto(const CollectOptions& options, Program& program, RecordedClock* recorded) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  session.set_policy(ParseExistingPolicy(options.existing));
  CollectPlan plan;
  ChosenReceiver receiver;
  if (const ExitCode code = SettleReceiver(options.receiver, session.settings(), program, receiver);
      code != ExitCode::Done) {
    return code;
  }
  plan.receiver = receiver.address;
  plan.receiver_type = receiver.make_code;
  plan.receiver_settings = receiver.settings;
  plan.average = options.average;
  plan.override_gate = options.override_gate;
  plan.stream_log = options.stream_log;
  plan.recorded = recorded;
  if (const ExitCode code = SettleGate(options, session.settings(), program, plan.gate);
      code != ExitCode::Done) {
    return code;
  }
  if (const ExitCode code =
          SettleCorrections(options.corrections, plan.receiver_settings, program, plan.corrections);
      code != ExitCode::Done) {
    return code;
  }
  if (plan.corrections &&
      (plan.receiver.kind == PortKind::Simulated || plan.receiver.kind == PortKind::File)) {
    return program.Misuse("A recorded or simulated receiver takes no corrections.");
  }
  const auto antenna = ParseNumber(options.antenna_height);
  if (!antenna || *antenna < 0.0 || *antenna > kHighestAntenna) {
    return program.Misuse("The antenna height \"" + options.antenna_height +
                          "\" is not a number from 0 to 1000.");
  }
  plan.antenna_height = *antenna;
  plan.count = options.count;
  plan.description = options.description;
  plan.patience_ms = options.patience_s * 1000;
  CTrgCalculator calculator;
  std::string problem;
  CoordinateSystems systems(program);
  if (!systems.MakeCalculator(SystemOfSettings(session.settings()), session.job().unit, calculator,
                              problem) ||
      !ApplyJobLocalization(session.job(), session.settings(), calculator, problem)) {
    return program.Fail(problem);
  }
  if (const ExitCode code = SettleFirstId(options, session.job(), program); code != ExitCode::Done)
    return code;
  return CollectSession(program, session.job(), calculator, plan).Run();
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
