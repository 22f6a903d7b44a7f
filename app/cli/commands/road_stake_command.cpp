// tarvex road stake: from the present position to a station and offset of the road.
#include "app/cli/collect_view.h"
#include "app/cli/command_line.h"
#include "app/cli/number_entry.h"
#include "app/cli/road_job.h"
#include "app/cli/road_options.h"
#include "app/cli/road_stake_guide.h"
#include "app/cli/session_options.h"
#include "app/cli/storing_text.h"
#include "app/cli/typed_commands.h"
#include "app/workflow/job_calculator.h"

namespace tarvex {
namespace {

struct RoadStakeOptions {
  RoadFileOptions road;
  RoadPlaceOptions place;
  std::string slope;
  std::string job;
  std::vector<std::string> points;
  std::vector<std::string> at;
  SessionOptions session;
  long long count = 0;
  StakeTolerance tolerance;
  std::string storeId;
  bool storeOnStake = false;
  std::string existing = "ask";
};

// Nothing after a message.
std::optional<RoadStakePlan> MakePlan(const RoadStakeOptions& options, Program& program,
                                      const OpenedRoad& road) {
  const auto station = FindStation(program, road, options.place.station);
  if (!station) return std::nullopt;
  const DesignElevation design = road.design.At(*station, options.place.offset);
  WarnAboutElevation(program, road, design, *station, options.place.offset);
  if (road.OutsideLimits(*station)) {
    program.Warn("the target " + road.StationText(*station) + " is outside the station limits.");
  }
  RoadStakePlan plan{.target = {*station, options.place.offset, design.elevation},
                     .elevationFrom = ElevationSourceText(design.source),
                     .tolerance = options.tolerance,
                     .json = options.road.json,
                     .section = road.design.section,
                     .design = road.design.SectionAt(*station),
                     .slopeSide = {}};
  if (!options.slope.empty()) plan.slopeSide = options.slope == "left" ? Side::Left : Side::Right;
  return plan;
}

ExitCode ShowEntered(const RoadStakeOptions& options, Program& program, RoadStakeGuide& guide) {
  const auto northing = EnteredNumber(program, "The northing", options.at[0]);
  const auto easting = EnteredNumber(program, "The easting", options.at[1]);
  if (!northing || !easting) return program.exitCode;
  std::optional<double> elevation;
  if (options.at.size() > 2) {
    elevation = EnteredNumber(program, "The elevation", options.at[2]);
    if (!elevation) return program.exitCode;
  }
  (void)guide.Show({*northing, *easting, elevation}, true, "Entered");
  return ExitCode::Done;
}

ExitCode ShowJobPoints(const RoadStakeOptions& options, Program& program, JobSession& session,
                       RoadStakeGuide& guide) {
  const auto points = PointsOfJob(program, session, options.points);
  if (!points) return program.exitCode;
  for (const Point& point : *points) {
    (void)guide.Show({point.at.northing, point.at.easting, point.at.elevation}, true,
                     "Point " + point.id.str());
  }
  return ExitCode::Done;
}

// One position of the receiver is stored when the person says so, by a line on the standard input.
ExitCode FollowReceiver(const RoadStakeOptions& options, Program& program, JobSession& session,
                        RoadStakeGuide& guide) {
  StakePlan plan;
  plan.count = options.count;
  plan.store = !options.storeId.empty();
  plan.storeOnStake = options.storeOnStake;
  if (plan.count == 0 && program.console.IsTyped()) plan.simulatedPaceMs = kSimulatedPaceMs;
  if (const ExitCode code = SettleSession(options.session, session.settings(), program, plan);
      code != ExitCode::Done) {
    return code;
  }
  session.setPolicy(ParseExistingPolicy(options.existing));
  std::string problem;
  if (plan.store) {
    if (!OpenForReading(session.job())) return ExitCode::Failed;
    if (!TakePointId(session, options.storeId, problem)) return program.Misuse(problem);
    program.console.PrintError(
        (plan.storeOnStake
             ? "The first position on the stake that keeps the limits is stored as point "
             : "Enter stores the next position that keeps the limits as point ") +
        session.job().ids.current + (plan.storeOnStake ? ".\n" : ", q ends.\n"));
  }
  CTrgCalculator calculator;
  CoordinateSystems systems(program);
  if (!MakeJobCalculator(session, systems, calculator, problem)) return program.Fail(problem);
  CollectView view(
      program, options.road.json ? CollectView::Stored::OnErrors : CollectView::Stored::InAWord);
  SessionCommands commands;
  std::optional<TypedCommands> typed;
  const bool enterStores = plan.store && !plan.storeOnStake;
  if (enterStores || program.console.IsTyped()) typed.emplace(program, commands);
  StakeSession staking(program, session, calculator, plan, guide, view, commands,
                       InterruptRequested);
  const SessionEnd end = staking.Run();
  if (plan.store && staking.stored() == 0) program.console.PrintError("Nothing was stored.\n");
  if (end == SessionEnd::RecordingEnded && staking.shown() == 0) {
    return program.Fail("The receiver gave no position to stake from.");
  }
  const bool done = !plan.store || staking.stored() > 0;
  return TellSessionEnd(program, staking, plan, end, plan.count == 0 && done);
}

// The position that was entered, or the point of the job: what was typed is stored as typed.
ExitCode StoreEntered(const RoadStakeOptions& options, Program& program, JobSession& session,
                      const RoadStakeGuide& guide) {
  if (options.storeId.empty()) return ExitCode::Done;
  if (!guide.last()) return program.Fail("There is no position to store.");
  const StakePosition& at = *guide.last();
  if (!at.elevation) {
    return program.Fail("The position has no elevation; nothing was stored.");
  }
  session.setPolicy(ParseExistingPolicy(options.existing));
  return TellStored(program, session,
                    StoreTypedPoint(session, {.id = options.storeId,
                                              .at = {at.northing, at.easting, *at.elevation},
                                              .description = guide.Description(),
                                              .comments = guide.Records()}),
                    options.road.json ? Announce::OnErrors : Announce::OnOutput);
}

// True when the options name exactly one source of positions, and a job where one is needed.
bool SourceIsClear(const RoadStakeOptions& options) {
  const int sources = (options.at.empty() ? 0 : 1) + (options.points.empty() ? 0 : 1) +
                      (options.session.receiver.address.empty() ? 0 : 1);
  const bool needsJob = options.at.empty() || !options.storeId.empty();
  return sources == 1 && !(needsJob && options.job.empty());
}

ExitCode RunRoadStake(const RoadStakeOptions& options, Program& program) {
  if (!SourceIsClear(options)) {
    return program.Misuse(
        "Say where you stand: --receiver ADDRESS or --point ID with --job JOB.crd, or --at N E "
        "[EL].");
  }
  const auto road = OpenRoad(program, options.road);
  if (!road) return program.exitCode;
  const auto plan = MakePlan(options, program, *road);
  if (!plan) return program.exitCode;
  const auto session = options.job.empty() ? nullptr : OpenRoadJob(program, options.job, *road);
  if (!options.job.empty() && !session) return program.exitCode;
  WarnAboutFaults(program, *road, options.road);
  RoadStakeGuide guide(program, *road, *plan);
  if (options.at.empty() && options.points.empty()) {
    return FollowReceiver(options, program, *session, guide);
  }
  const ExitCode code = options.at.empty() ? ShowJobPoints(options, program, *session, guide)
                                           : ShowEntered(options, program, guide);
  return code == ExitCode::Done && session ? StoreEntered(options, program, *session, guide) : code;
}

}  // namespace

void DeclareRoadStakeCommand(Command& command) {
  RoadStakeOptions& options = command.Runs(RunRoadStake);
  AddRoadFileOptions(command, options.road);
  AddRoadPlaceOptions(command, options.place);
  AddRoadViewOptions(command, options.road);
  const Option section = AddDesignOptions(command, options.road);
  AddElevationOption(command, options.road);
  command.Add("--slope", options.slope, "Stake the catch point of this side (with --template)")
      .OneOf({"left", "right"})
      .Needs(section);
  command.Add("--job", options.job, "The job: its points, coordinate system and unit");
  command.Add("--point", options.points, "Stand on these points of the job");
  command.Add("--at", options.at, "Stand at NORTHING EASTING [ELEVATION]").Values(2, 3);
  AddSessionOptions(command, options.session);
  command.Add("--count", options.count, "Positions to show (default: until the receiver ends)")
      .NotNegative();
  AddNumber(command, "--tolerance", options.tolerance.horizontal,
            "Horizontal, for ON THE STAKE (default: 0.02)", NumberKind::Positive);
  AddNumber(command, "--vertical-tolerance", options.tolerance.vertical, "Vertical (default: 0.01)",
            NumberKind::Positive);
  const Option store =
      command.Add("--store", options.storeId,
                  "Store a position in the job under this id: with --receiver the next one that\n"
                  "keeps the limits after Enter was pressed, else the one that was named");
  command
      .AddFlag("--store-on-stake", options.storeOnStake,
               "With --store: store the first position that is ON THE STAKE, without a key")
      .Needs(store);
  AddExistingOption(command, options.existing);
  command.Footer(
      "One line per position: where it is, how to go forward and right along the road, north and "
      "east,\n"
      "cut (C) or fill (F). ON THE STAKE needs a FIXED position inside both tolerances.");
}

}  // namespace tarvex
