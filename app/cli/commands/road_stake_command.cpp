// tarvex road stake: from where one stands to a station and offset of the road.
#include "app/cli/commands/command.h"
#include "app/cli/commands/road_commands.h"
#include "app/cli/number_entry.h"
#include "app/cli/road_job.h"
#include "app/cli/road_options.h"
#include "app/workflow/coordinate_systems.h"
#include "app/workflow/job_localization.h"
#include "app/workflow/point_storing.h"
#include "app/workflow/stake_session.h"

namespace tarvex {
namespace {

struct RoadStakeOptions {
  RoadFileOptions road;
  RoadPlaceOptions place;
  std::string slope;
  std::string job;
  std::vector<std::string> points;
  std::vector<std::string> at;
  ReceiverChoice receiver;
  double antenna_height = 0.0;
  long long count = 0;
  StakeTolerance tolerance;
  std::string store_id;
  std::string existing = "ask";
};

// Nothing after a message.
std::optional<StakePlan> MakePlan(const RoadStakeOptions& options, Program& program,
                                  const OpenedRoad& road) {
  const auto station = FindStation(program, road, options.place.station);
  if (!station) return std::nullopt;
  const DesignElevation design = road.design.At(*station, options.place.offset);
  WarnAboutElevation(program, road, design, *station, options.place.offset);
  if (road.OutsideLimits(*station)) {
    program.Warn("the target " + road.StationText(*station) + " is outside the station limits.");
  }
  StakePlan plan{.target = {*station, options.place.offset, design.elevation},
                 .elevation_from = ElevationSourceText(design.source),
                 .tolerance = options.tolerance,
                 .antenna_height = options.antenna_height,
                 .count = options.count,
                 .json = options.road.json,
                 .section = road.design.section,
                 .design = road.design.SectionAt(*station),
                 .slope_side = {}};
  if (!options.slope.empty()) plan.slope_side = options.slope == "left" ? Side::Left : Side::Right;
  return plan;
}

ExitCode ShowEntered(const RoadStakeOptions& options, Program& program, StakeSession& stake) {
  const auto northing = EnteredNumber(program, "The northing", options.at[0]);
  const auto easting = EnteredNumber(program, "The easting", options.at[1]);
  if (!northing || !easting) return program.exit_code;
  std::optional<double> elevation;
  if (options.at.size() > 2) {
    elevation = EnteredNumber(program, "The elevation", options.at[2]);
    if (!elevation) return program.exit_code;
  }
  stake.ShowPosition({*northing, *easting, elevation}, "Entered");
  return ExitCode::Done;
}

ExitCode ShowJobPoints(const RoadStakeOptions& options, Program& program, JobSession& session,
                       StakeSession& stake) {
  const auto points = PointsOfJob(program, session, options.points);
  if (!points) return program.exit_code;
  for (const Point& point : *points) {
    stake.ShowPosition({point.at.northing, point.at.easting, point.at.elevation},
                       "Point " + point.id.str());
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
  const StakePosition& at = *stake.last();
  if (!at.elevation) {
    return program.Fail("The position has no elevation; nothing was stored.");
  }
  session.set_policy(ParseExistingPolicy(options.existing));
  return StoreUnderId(program, session, options.store_id, {at.northing, at.easting, *at.elevation},
                      stake.StakeText(),
                      options.road.json ? Announce::OnErrors : Announce::OnOutput);
}

// True when the options name exactly one source of positions, and a job where one is needed.
bool SourceIsClear(const RoadStakeOptions& options) {
  const int sources = (options.at.empty() ? 0 : 1) + (options.points.empty() ? 0 : 1) +
                      (options.receiver.address.empty() ? 0 : 1);
  const bool needs_job = options.at.empty() || !options.store_id.empty();
  return sources == 1 && !(needs_job && options.job.empty());
}

ExitCode RunRoadStake(const RoadStakeOptions& options, Program& program) {
  if (!SourceIsClear(options)) {
    return program.Misuse(
        "Say where you stand: --receiver ADDRESS or --point ID with --job JOB.crd, or --at N E "
        "[EL].");
  }
  const auto road = OpenRoad(program, options.road);
  if (!road) return program.exit_code;
  const auto plan = MakePlan(options, program, *road);
  if (!plan) return program.exit_code;
  const auto session = options.job.empty() ? nullptr : OpenRoadJob(program, options.job, *road);
  if (!options.job.empty() && !session) return program.exit_code;
  WarnAboutFaults(program, *road, options.road);
  StakeSession stake(program, *road, *plan);
  const ExitCode code = !options.at.empty()       ? ShowEntered(options, program, stake)
                        : !options.points.empty() ? ShowJobPoints(options, program, *session, stake)
                                                  : ShowReceiver(options, program, *session, stake);
  return code == ExitCode::Done && session ? StoreStake(options, program, *session, stake) : code;
}

}  // namespace

void AddRoadStakeCommand(CLI::App& road, Program& program) {
  Command<RoadStakeOptions> command(road, program, "stake",
                                    "The way to a station and offset, from a receiver or a point",
                                    RunRoadStake);
  RoadStakeOptions& options = *command.options;
  CLI::App& sub = command.sub;
  AddRoadFileOptions(sub, options.road);
  AddRoadPlaceOptions(sub, options.place);
  AddRoadViewOptions(sub, options.road);
  AddDesignOptions(sub, options.road);
  AddElevationOption(sub, options.road);
  sub.add_option("--slope", options.slope, "Stake the catch point of this side (with --template)")
      ->check(CLI::IsMember({"left", "right"}))
      ->needs(sub.get_option("--template"));
  sub.add_option("--job", options.job, "The job: its points, coordinate system and unit");
  sub.add_option("--point", options.points, "Stand on these points of the job");
  sub.add_option("--at", options.at, "Stand at NORTHING EASTING [ELEVATION]")->expected(2, 3);
  AddReceiverOptions(sub, options.receiver);
  AddNumber(sub, "--antenna-height", options.antenna_height,
            "Height of the antenna above the point, in the job's unit");
  sub.add_option("--count", options.count, "Positions to show (default: until the receiver ends)")
      ->check(CLI::NonNegativeNumber);
  AddNumber(sub, "--tolerance", options.tolerance.horizontal,
            "Horizontal, for ON THE STAKE (default: 0.02)", NumberKind::Positive);
  AddNumber(sub, "--vertical-tolerance", options.tolerance.vertical, "Vertical (default: 0.01)",
            NumberKind::Positive);
  sub.add_option("--store", options.store_id, "Store the last position in the job under this id");
  AddExistingOption(sub, options.existing);
  sub.footer(
      "One line a position: where it is, how to go forward and right along the road, north and "
      "east,\n"
      "cut (C) or fill (F). ON THE STAKE needs a FIXED position inside both tolerances.");
}

}  // namespace tarvex
