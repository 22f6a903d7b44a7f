#include "app/cli/session_options.h"

#include "app/cli/correction_text.h"
#include "app/cli/stream_log_name.h"
#include "app/workflow/known_settings.h"
#include "app/workflow/setup_comments.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

// What a position must keep: the job's limits, then the command line's. A limit of the job that is
// not understood is one that somebody relies on: nothing is stored without it.
ExitCode SettleGate(const SessionOptions& options, const Settings& jobSettings, Program& program,
                    GateLimits& gate) {
  for (const auto& [key, value] : jobSettings.Entries()) {
    if (!key.starts_with("gate_") || SetGateLimit(key, value, gate)) continue;
    return program.Fail("The job's limit " + key + "=" + value +
                        " is not understood; nothing is stored until it is put right or removed.");
  }
  for (const auto& [key, value] : options.gates) {
    if (value.empty() || SetGateLimit(key, value, gate)) continue;
    return program.Misuse("\"" + value + "\" is not a value for the limit " + key + ": " +
                          (key == "gate_solution"     ? "fixed, float, dgps or autonomous."
                           : key == "gate_satellites" ? "a whole number of 0 or more."
                                                      : "a number of 0 or more."));
  }
  return ExitCode::Done;
}

ExitCode SettleAverage(const SessionOptions& options, const Settings& settings, Program& program,
                       ReceiverPlan& plan) {
  plan.average = options.average;
  if (options.average > 0) return ExitCode::Done;
  const std::string text = settings.GetOr("average", "1");
  if (!SettingProblem("average", text).empty()) {
    return program.Fail("The setting average=" + text + " makes no sense (" +
                        FindSetting("average")->Values() + ").");
  }
  plan.average = static_cast<std::size_t>(ParseInteger(text).value_or(1));
  return ExitCode::Done;
}

// With corrections a point is meant to be an RTK point, whatever becomes of them.
void DemandFixed(ReceiverPlan& plan, Program& program) {
  if (!plan.corrections || plan.gate.solution || plan.overrideGate) return;
  plan.gate.solution = SolutionType::Fixed;
  program.console.PrintError(
      "With corrections only FIXED positions are stored (--gate-solution says otherwise).\n");
}

// What a position must keep to be stored.
void AddGateOptions(Command& command, SessionOptions& options) {
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
    command.Add(std::string("--gate-") + name, options.gates[std::string("gate_") + name], help)
        .ValueName(name == std::string_view("solution") ? "fixed|float|dgps|autonomous" : "NUMBER")
        .InGroup(kGroup);
  }
  command
      .AddFlag("--override-gate", options.overrideGate,
               "Store all the same; the raw file says which limit was not kept")
      .InGroup(kGroup);
}

std::string Seconds(std::int64_t milliseconds) {
  return std::to_string(milliseconds / 1000) + " s";
}

}  // namespace

Option AddAntennaOption(Command& command, std::string& antennaHeight) {
  return command
      .Add("--antenna-height", antennaHeight,
           "Height of the antenna above the point, in the job's unit (default: the settings', else "
           "0)")
      .ValueName("NUMBER");
}

ExitCode SettleAntenna(const std::string& entered, const Settings& settings, Program& program,
                       double& height) {
  const std::string text = entered.empty() ? settings.GetOr("antenna_height", "0") : entered;
  const auto antenna = ParseNumber(text);
  if (!antenna || *antenna < 0.0 || *antenna > kHighestAntenna) {
    return program.Misuse("The antenna height \"" + text + "\" is not a number from 0 to 1000.");
  }
  height = *antenna;
  return ExitCode::Done;
}

Option AddSessionOptions(Command& command, SessionOptions& options, const char* profileOption,
                         const char* averageHelp) {
  Option receiver = AddReceiverOptions(command, options.receiver);
  AddProfileOption(command, options.profile, profileOption);
  AddAntennaOption(command, options.antennaHeight);
  command.Add("--average", options.average, averageHelp).Between(1, 100000);
  command.Add("--log-stream", options.streamLog, kStreamLogHelp).ValueName("FILE");
  AddGateOptions(command, options);
  AddCorrectionOptions(command, options.corrections);
  command
      .Add("--patience", options.patienceS,
           "Seconds to wait for a new position, or for a receiver that was lost (default: 60)")
      .Between(1, 86400);
  return receiver;
}

ExitCode SettleSession(const SessionOptions& options, const Settings& jobSettings, Program& program,
                       ReceiverPlan& plan) {
  Settings settings;
  ExitCode code = SettleProfile(options.profile, jobSettings, program, settings);
  if (code != ExitCode::Done) return code;
  const ReceiverChoice receiver = WithSettings(options.receiver, settings);
  if (receiver.address.empty()) return program.Misuse(kNoReceiver);
  code = SettleReceiver(receiver, settings, program, plan.receiver);
  if (code == ExitCode::Done) code = SettleGate(options, settings, program, plan.gate);
  if (code == ExitCode::Done) {
    code = SettleCorrections(WithSettings(options.corrections, settings, plan.receiver),
                             plan.receiver.settings, program, plan.corrections);
  }
  if (code == ExitCode::Done) {
    plan.antennaType = AntennaOfSettings(settings);
    code = SettleAntenna(options.antennaHeight, settings, program, plan.antennaHeight);
  }
  if (code == ExitCode::Done) code = SettleAverage(options, settings, program, plan);
  if (code != ExitCode::Done) return code;
  if (plan.corrections && !plan.receiver.takesCorrections()) {
    return program.Misuse("A recorded or simulated receiver takes no corrections.");
  }
  plan.overrideGate = options.overrideGate;
  plan.streamLog = StreamLogName(options.streamLog, program.clock.Now());
  plan.patienceMs = options.patienceS * 1000;
  DemandFixed(plan, program);
  return ExitCode::Done;
}

ExitCode TellSessionEnd(Program& program, const ReceiverSession& session, const ReceiverPlan& plan,
                        SessionEnd end, bool untilStopped) {
  program.console.EndProgress();
  TellBadChecksums(program, session.badChecksums());
  ExitCode code = program.exitCode;
  switch (end) {
    case SessionEnd::Complete:
      break;
    case SessionEnd::Asked:
      program.console.PrintError(session.receiverLost()
                                     ? "Stopped while the receiver was lost; the job is whole.\n"
                                     : "Stopped; the job is whole.\n");
      if (!untilStopped || session.receiverLost()) code = ExitCode::Failed;
      break;
    case SessionEnd::RecordingEnded:
      code = program.Fail("The log ended before the points asked for were stored.");
      break;
    case SessionEnd::NoPosition:
      code = program.Fail(session.receiverLost()
                              ? "The receiver was lost and did not come back within " +
                                    Seconds(plan.patienceMs) + "."
                              : "No new position came within " + Seconds(plan.patienceMs) + ".");
      break;
    case SessionEnd::Failed:
      code = ExitCode::Failed;
      break;
  }
  if (const auto& corrections = session.corrections()) {
    program.console.PrintError(CorrectionSummary(*corrections) + "\n");
    const std::string verdict = CorrectionVerdict(*corrections);
    if (!verdict.empty()) code = program.Fail(verdict);
  }
  return code;
}

}  // namespace tarvex
