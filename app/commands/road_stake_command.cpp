// tarvex road stake: from where one stands to a station and offset of the road.
#include "app/commands/command.h"
#include "app/commands/road_commands.h"
#include "app/coordinate_systems.h"
#include "app/job_localization.h"
#include "app/job_session.h"
#include "app/point_storing.h"
#include "app/road_file.h"
#include "app/stake_session.h"
#include "core/coordinate_file.h"
#include "core/number_text.h"
#include "core/point_store.h"
#include "roads/template_file.h"

namespace tarvex {
namespace {

struct RoadStakeOptions {
  RoadFileOptions road;
  std::string station;
  double offset = 0.0;
  std::string elevation;
  std::string section;
  std::string slope;
  std::string job;
  std::vector<std::string> points;
  std::vector<double> at;
  ReceiverChoice receiver;
  double antenna_height = 0.0;
  long long count = 0;
  double tolerance = 0.02;
  double vertical_tolerance = 0.01;
  std::string store_id;
  std::string existing = "ask";
};

// The elevation of the template's surface at an offset from the finished grade.
std::optional<double> SurfaceElevation(const DesignSection& design, double offset) {
  for (std::size_t i = 1; i < design.points.size(); ++i) {
    const SectionPoint& a = design.points[i - 1];
    const SectionPoint& b = design.points[i];
    if (offset < a.offset || offset > b.offset || a.offset == b.offset) continue;
    return a.elevation + (b.elevation - a.elevation) * (offset - a.offset) / (b.offset - a.offset);
  }
  return std::nullopt;
}

bool SettleDesign(const RoadStakeOptions& options, Program& program, const OpenedRoad& road,
                  Road& with_section, StakePlan& plan) {
  auto grade = road.DesignElevation(plan.target.station);
  if (!options.elevation.empty()) {
    grade = EnteredNumber(program, "The elevation", options.elevation);
    if (!grade) return false;
  }
  plan.target.elevation = grade;
  if (options.section.empty()) return true;
  if (LoadTemplate(program.files, with_section, options.section) != LoadTemplateResult::Loaded) {
    (void)program.Fail("The template " + options.section + " cannot be opened.");
    return false;
  }
  if (!grade) {
    program.exit_code =
        program.Misuse("A template needs a finished grade: --elevation Z or --profile FILE.");
    return false;
  }
  plan.section = &*with_section.section;
  plan.design = BuildSection(*plan.section, *grade);
  plan.target.elevation = SurfaceElevation(*plan.design, options.offset);
  if (!options.slope.empty()) plan.slope_side = options.slope == "left" ? Side::Left : Side::Right;
  return true;
}

ExitCode ShowJobPoints(const RoadStakeOptions& options, Program& program, JobSession& session,
                       StakeSession& stake) {
  const auto stream = OpenForReading(session.job());
  if (!stream) return ExitCode::Failed;
  for (const std::string& id : options.points) {
    Point point;
    if (ReadPoint(session.job(), id, stream.get(), point) != ReadPointResult::Found) {
      return program.Fail("The job holds no point " + id + ".");
    }
    stake.ShowPosition(point.at, "Point " + point.id.str());
  }
  return ExitCode::Done;
}

ExitCode ShowReceiver(const RoadStakeOptions& options, Program& program, JobSession& session,
                      StakeSession& stake) {
  ChosenReceiver receiver;
  const ExitCode settled = SettleReceiver(options.receiver, session.settings(), program, receiver);
  if (settled != ExitCode::Done) return settled;
  CTrgCalculator calculator;
  std::string problem;
  CoordinateSystems systems(program);
  if (!systems.MakeCalculator(SystemOfSettings(session.settings()), session.job().unit, calculator,
                              problem) ||
      !ApplyJobLocalization(session.job(), session.settings(), calculator, problem)) {
    return program.Fail(problem);
  }
  return stake.Follow(receiver, calculator, session.job().unit);
}

ExitCode StoreStake(const RoadStakeOptions& options, Program& program, JobSession& session,
                    const StakeSession& stake) {
  if (options.store_id.empty()) return ExitCode::Done;
  if (!stake.last()) return program.Fail("There is no position to store.");
  session.set_policy(ParseExistingPolicy(options.existing));
  return StoreUnderId(program, session, options.store_id, *stake.last(), stake.StakeText());
}

// True when the options name exactly one source of positions, and a job where one is needed.
bool SourceIsClear(const RoadStakeOptions& options) {
  const int sources = (options.at.empty() ? 0 : 1) + (options.points.empty() ? 0 : 1) +
                      (options.receiver.address.empty() ? 0 : 1);
  return sources == 1 && (options.at.empty() || options.at.size() >= 2) &&
         (!options.job.empty() || (!options.at.empty() && options.store_id.empty()));
}

ExitCode RunRoadStake(const RoadStakeOptions& options, Program& program) {
  if (!SourceIsClear(options)) {
    return program.Misuse(
        "Say where you stand: --receiver ADDRESS or --point ID with --job JOB.crd, or --at N E "
        "[EL].");
  }
  const auto road = OpenRoad(program, options.road);
  if (!road) return ExitCode::Failed;
  const auto station = FindStation(program, *road, options.station);
  if (!station)
    return program.exit_code == ExitCode::WrongUse ? ExitCode::WrongUse : ExitCode::Failed;
  WarnAboutFaults(program, *road, options.road);
  StakePlan plan;
  plan.target = {*station, options.offset, {}};
  plan.tolerance = {options.tolerance, options.vertical_tolerance};
  plan.antenna_height = options.antenna_height;
  plan.count = options.count;
  plan.json = options.road.json;
  Road with_section;
  if (!SettleDesign(options, program, *road, with_section, plan)) {
    return program.exit_code == ExitCode::WrongUse ? ExitCode::WrongUse : ExitCode::Failed;
  }
  StakeSession stake(program, *road, plan);
  if (options.job.empty()) {
    stake.ShowPosition({options.at[0], options.at[1], options.at.size() > 2 ? options.at[2] : 0.0},
                       "Entered");
    return ExitCode::Done;
  }
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  if (session.job().unit != road->unit) {
    return program.Misuse("The job is in " + std::string(UnitName(session.job().unit)) +
                          ", the road in " + std::string(UnitName(road->unit)) + " (--unit).");
  }
  ExitCode code = ExitCode::Done;
  if (!options.at.empty()) {
    stake.ShowPosition({options.at[0], options.at[1], options.at.size() > 2 ? options.at[2] : 0.0},
                       "Entered");
  } else if (!options.points.empty()) {
    code = ShowJobPoints(options, program, session, stake);
  } else {
    code = ShowReceiver(options, program, session, stake);
  }
  return code == ExitCode::Done ? StoreStake(options, program, session, stake) : code;
}

}  // namespace

void AddRoadStakeCommand(CLI::App& road, Program& program) {
  Command<RoadStakeOptions> command(road, program, "stake",
                                    "The way to a station and offset, from a receiver or a point",
                                    RunRoadStake);
  RoadStakeOptions& options = *command.options;
  CLI::App& sub = command.sub;
  AddRoadFileOptions(sub, options.road);
  sub.add_option("STATION", options.station, "1234.5, 12+34.50, 1+234.500 or \"14+75 R2\"")
      ->required();
  sub.add_option("OFFSET", options.offset, "Right positive (default: 0)");
  sub.add_option("--elevation", options.elevation, "Finished grade, instead of --profile");
  sub.add_option("--template", options.section, "Template whose surface gives the elevation");
  sub.add_option("--slope", options.slope, "Stake the catch point of this side (with --template)")
      ->check(CLI::IsMember({"left", "right"}));
  sub.add_option("--job", options.job, "The job: its points, coordinate system and unit");
  sub.add_option("--point", options.points, "Stand on these points of the job");
  sub.add_option("--at", options.at, "Stand at NORTHING EASTING [ELEVATION]")->expected(2, 3);
  AddReceiverOptions(sub, options.receiver);
  sub.add_option("--antenna-height", options.antenna_height,
                 "Height of the antenna above the point, in the job's unit");
  sub.add_option("--count", options.count, "Positions to show (default: until the receiver ends)")
      ->check(CLI::NonNegativeNumber);
  sub.add_option("--tolerance", options.tolerance, "Horizontal, for ON THE STAKE (default: 0.02)")
      ->check(CLI::PositiveNumber);
  sub.add_option("--vertical-tolerance", options.vertical_tolerance, "Vertical (default: 0.01)")
      ->check(CLI::PositiveNumber);
  sub.add_option("--store", options.store_id, "Store the last position in the job under this id");
  sub.add_option("--existing", options.existing,
                 "When the point exists: overwrite, next or cancel (default: ask)")
      ->check(CLI::IsMember({"ask", "overwrite", "next", "cancel"}));
  sub.footer(
      "One line a position: where it is, how to go forward and right along the road, north and "
      "east,\n"
      "cut (C) or fill (F). ON THE STAKE needs a FIXED position inside both tolerances.");
}

}  // namespace tarvex
