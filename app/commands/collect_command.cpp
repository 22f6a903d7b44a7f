// tarvex collect: points from a receiver.
#include "app/collect_session.h"
#include "app/commands/command.h"
#include "app/commands/commands.h"
#include "app/coordinate_systems.h"
#include "core/coordinate_file.h"
#include "core/number_text.h"
#include "core/point_id.h"
#include "core/point_store.h"

namespace tarvex {
namespace {

struct CollectOptions {
  std::string job;
  std::string receiver;
  std::string make;
  std::vector<std::string> settings;
  long long count = 1;
  std::string first;
  std::string description;
  std::string antenna_height = "0";
  int position_sentence = 0;
  std::string existing = "cancel";
  long long patience_s = 60;
};

ExistingPolicy PolicyOf(const std::string& name) {
  if (name == "overwrite") return ExistingPolicy::Overwrite;
  return name == "next" ? ExistingPolicy::Next : ExistingPolicy::Cancel;
}

// The make and settings of the receiver: the make's own, then the job's, then the command line's.
ExitCode SettleReceiver(const CollectOptions& options, const Settings& job_settings,
                        Program& program, CollectPlan& plan) {
  std::string problem;
  if (!ParsePortAddress(options.receiver, plan.receiver, problem)) return program.Misuse(problem);
  plan.receiver_type = plan.receiver.kind == PortKind::Simulated ? kMakeSimulated : kMakeAnyNmea;
  const std::string make_name =
      options.make.empty() ? job_settings.GetOr("receiver_make", "") : options.make;
  if (!make_name.empty() && plan.receiver.kind != PortKind::Simulated) {
    const ReceiverMake* make = FindMake(make_name);
    if (make == nullptr) {
      std::string names;
      for (const ReceiverMake& known : ReceiverMakes()) names += " " + std::string(known.name);
      return program.Misuse("There is no receiver make \"" + make_name + "\"; there are:" + names +
                            ".");
    }
    plan.receiver_type = make->code;
  }
  plan.receiver_settings = FindMake(plan.receiver_type).settings;
  ReadReceiverSettings(job_settings.Text(), plan.receiver_settings);
  std::vector<std::string> entered = options.settings;
  if (options.position_sentence != 0)
    entered.push_back("nmea_pos=" + std::to_string(options.position_sentence));
  for (const std::string& setting : entered) {
    const std::size_t equals = std::min(setting.find('='), setting.size());
    const std::string value = setting.substr(std::min(equals + 1, setting.size()));
    if (SetReceiverSetting(setting.substr(0, equals), value, plan.receiver_settings)) continue;
    return program.Misuse("\"" + setting +
                          "\" is no receiver setting; docs/receivers.md lists them.");
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
  const auto number = ParseInteger(options.first);
  if (!job.alphanumeric && (!number || *number < 1 || *number > kHighestPointNumber)) {
    return program.Misuse("\"" + options.first +
                          "\" is no point number: this job numbers its points 1 to 999999999.");
  }
  job.current_point_id =
      job.alphanumeric ? NormalisePointId(options.first).str() : std::to_string(*number);
  if (job.current_point_id.empty()) return program.Misuse("The first point id is empty.");
  return ExitCode::Done;
}

ExitCode RunCollect(const CollectOptions& options, Program& program) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  session.set_policy(PolicyOf(options.existing));
  CollectPlan plan;
  if (const ExitCode code = SettleReceiver(options, session.settings(), program, plan);
      code != ExitCode::Done) {
    return code;
  }
  const auto antenna = ParseNumber(options.antenna_height);
  if (!antenna || *antenna < 0.0) {
    return program.Misuse("The antenna height \"" + options.antenna_height +
                          "\" is not a number of 0 or more.");
  }
  plan.antenna_height = *antenna;
  plan.count = options.count;
  plan.description = options.description;
  plan.patience_ms = options.patience_s * 1000;
  CTrgCalculator calculator;
  std::string problem;
  CoordinateSystems systems(program);
  if (!systems.MakeCalculator(SystemOfSettings(session.settings()), session.job().unit, calculator,
                              problem)) {
    return program.Fail(problem);
  }
  if (const ExitCode code = SettleFirstId(options, session.job(), program); code != ExitCode::Done)
    return code;
  return CollectSession(program, session, calculator, plan).Run();
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
  sub.add_option("--receiver", options.receiver,
                 "serial:DEVICE[@BAUD], tcp:HOST:PORT, file:LOG or simulated")
      ->required();
  sub.add_option("--make", options.make,
                 "Make of the receiver (default: any that sends NMEA sentences)");
  sub.add_option("--set", options.settings, "A receiver setting KEY=VALUE; may be repeated");
  sub.add_option("--nmea-pos", options.position_sentence,
                 "Sentence with the position: 1 GGA, 2 GLL, 4 GNS, 8 GGK, 16 GGQ, 32 PTNL,GGK");
  sub.add_option("--count", options.count, "Points to store (default: 1); 0: until the end")
      ->check(CLI::NonNegativeNumber);
  sub.add_option("--first", options.first, "Id of the first point (default: the next of the job)");
  sub.add_option("--description", options.description, "Description of the points");
  sub.add_option("--antenna-height", options.antenna_height,
                 "Height of the antenna above the point, in the job's unit");
  sub.add_option(
         "--existing", options.existing,
         "When a point exists: overwrite it, use the next free id, or end (default: cancel)")
      ->check(CLI::IsMember({"overwrite", "next", "cancel"}));
  sub.add_option("--patience", options.patience_s,
                 "Seconds to wait for a new position (default: 60)")
      ->check(CLI::PositiveNumber);
}

}  // namespace tarvex
