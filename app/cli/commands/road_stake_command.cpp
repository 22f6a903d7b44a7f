// tarvex road stake: from the present position to a station and offset of the road.
#include "app/cli/command_line.h"
#include "app/cli/number_entry.h"
#include "app/cli/road_job.h"
#include "app/cli/road_options.h"
#include "app/cli/stake_following.h"
#include "app/cli/stake_text.h"
#include "app/cli/storing_text.h"
#include "app/workflow/alignment_target.h"
#include "app/workflow/point_storing.h"

namespace tarvex {
namespace {

struct RoadStakeOptions {
  RoadFileOptions road;
  RoadPlaceOptions place;
  std::string slope;
  std::string job;
  std::vector<std::string> points;
  std::vector<std::string> at;
  StakeOptions stake;
  std::string storeId;
  bool storeOnStake = false;
};

/// The place of the road, how it is shown, and how near is on the stake.
struct RoadStaking {
  std::unique_ptr<AlignmentTarget> target;
  StakeWords words;
  StakeTolerance tolerance;
};

// Nothing after a message. What is made points into the road.
std::optional<RoadStaking> MakeStaking(const RoadStakeOptions& options, Program& program,
                                       const OpenedRoad& road) {
  const auto station = FindStation(program, road, options.place.station);
  if (!station) return std::nullopt;
  const DesignElevation design = road.design.At(*station, options.place.offset);
  WarnAboutElevation(program, road, design, *station, options.place.offset);
  if (road.OutsideLimits(*station)) {
    program.Warn("the target " + road.StationText(*station) + " is outside the station limits.");
  }
  AlignmentPlace place{
      .name = {},
      .station = station,
      .offset = options.place.offset,
      .elevation = [elevation = design.elevation](double) { return elevation; },
      .stationText = [&road](double internal) { return road.StationText(internal); },
      .outsideLimits = [&road](double internal) { return road.OutsideLimits(internal); },
      .slope = {}};
  const auto section = road.design.SectionAt(*station);
  if (!options.slope.empty() && road.design.section && section) {
    place.slope = {.section = *road.design.section,
                   .design = *section,
                   .side = options.slope == "left" ? Side::Left : Side::Right};
  }
  return RoadStaking{
      .target = std::make_unique<AlignmentTarget>(road.alignment(), std::move(place)),
      .words = {.json = options.road.json,
                .inPlace = false,
                .elevationFrom = ElevationSourceText(design.source),
                .stationJson = [&road](double internal) { return road.StationJson(internal); }},
      .tolerance = ToleranceIn(options.stake, road.unit)};
}

/// A position that a person gave, or a point of the job on which one is taken to be.
struct GivenPosition {
  std::string name;
  StakePosition at;
};

std::optional<std::vector<GivenPosition>> EnteredPosition(const RoadStakeOptions& options,
                                                          Program& program) {
  const auto northing = EnteredNumber(program, "The northing", options.at[0]);
  const auto easting = EnteredNumber(program, "The easting", options.at[1]);
  if (!northing || !easting) return std::nullopt;
  std::optional<double> elevation;
  if (options.at.size() > 2) {
    elevation = EnteredNumber(program, "The elevation", options.at[2]);
    if (!elevation) return std::nullopt;
  }
  return std::vector<GivenPosition>{{"Entered", {*northing, *easting, elevation}}};
}

std::optional<std::vector<GivenPosition>> JobPositions(const RoadStakeOptions& options,
                                                       Program& program, JobSession& session) {
  const auto points = PointsOfJob(program, session, options.points);
  if (!points) return std::nullopt;
  std::vector<GivenPosition> given;
  for (const Point& point : *points) {
    given.push_back(
        {"Point " + point.id.str(), {point.at.northing, point.at.easting, point.at.elevation}});
  }
  return given;
}

// What was typed is stored as typed.
ExitCode StoreGiven(const RoadStakeOptions& options, Program& program, JobSession& session,
                    const StakeRelation& relation, const StakePosition& at,
                    const StakeTolerance& tolerance) {
  if (!at.elevation) {
    return program.Fail("The position has no elevation; nothing was stored.");
  }
  const GridPoint place{at.northing, at.easting, *at.elevation};
  const StakeRecord record = StakeRecordOf(relation, place, tolerance, true);
  session.setPolicy(ParseExistingPolicy(options.stake.existing));
  return TellStored(program, session,
                    StoreTypedPoint(session, {.id = options.storeId,
                                              .at = place,
                                              .description = StakeDescription(relation),
                                              .comments = {StakeComments(record)}}),
                    options.road.json ? Announce::OnErrors : Announce::OnOutput);
}

// Shows each position; the last one is stored when that was asked for.
ExitCode ShowGiven(const RoadStakeOptions& options, Program& program, JobSession* session,
                   RoadStaking& staking) {
  const auto given = options.at.empty() ? JobPositions(options, program, *session)
                                        : EnteredPosition(options, program);
  if (!given) return program.exitCode;
  StakeView view(program, staking.words);
  ToleranceGate gate(staking.tolerance);
  std::optional<StakeRelation> last;
  for (const GivenPosition& position : *given) {
    last = staking.target->Relate(position.at, {});
    if (!last) continue;
    const bool onStake = gate.Update(last->deltas.distance, last->cut, last->sound);
    view.OnStake(StakeSeen{.relation = *last, .from = position.name, .onStake = onStake});
  }
  if (options.storeId.empty()) return program.exitCode;
  if (!last) return program.Fail("There is no position to store.");
  return StoreGiven(options, program, *session, *last, given->back().at, staking.tolerance);
}

ExitCode Follow(const RoadStakeOptions& options, Program& program, JobSession& session,
                RoadStaking& staking) {
  StakePlan plan;
  plan.store = plan.mustStore = !options.storeId.empty();
  plan.storeOnStake = options.storeOnStake;
  std::string problem;
  if (plan.store) {
    if (!OpenForReading(session.job())) return ExitCode::Failed;
    if (!TakePointId(session, options.storeId, problem)) return program.Misuse(problem);
  }
  StakeList targets(std::move(staking.target));
  return FollowReceiver(options.stake, program, session, plan, targets, std::move(staking.words));
}

// True when the options name exactly one source of positions, and a job where one is needed.
bool SourceIsClear(const RoadStakeOptions& options) {
  const int sources = (options.at.empty() ? 0 : 1) + (options.points.empty() ? 0 : 1) +
                      (options.stake.session.receiver.address.empty() ? 0 : 1);
  const bool needsJob = options.at.empty() || !options.storeId.empty();
  // Without any of them it is the receiver that the job or the profile names.
  return sources <= 1 && !(needsJob && options.job.empty());
}

ExitCode RunRoadStake(const RoadStakeOptions& entered, Program& program) {
  RoadStakeOptions options = entered;
  options.stake.json = options.road.json;
  if (!SourceIsClear(options)) {
    return program.Misuse(
        "Say where you stand: --receiver ADDRESS or --point ID with --job JOB.crd, or --at N E "
        "[EL].");
  }
  const auto road = OpenRoad(program, options.road);
  if (!road) return program.exitCode;
  auto staking = MakeStaking(options, program, *road);
  if (!staking) return program.exitCode;
  const auto session = options.job.empty() ? nullptr : OpenRoadJob(program, options.job, *road);
  if (!options.job.empty() && !session) return program.exitCode;
  WarnAboutFaults(program, *road, options.road);
  if (options.at.empty() && options.points.empty()) {
    return Follow(options, program, *session, *staking);
  }
  return ShowGiven(options, program, session.get(), *staking);
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
  command.Add("--job", options.job, "The job: its points, coordinate system and unit")
      .ValueName("JOB.crd");
  command.Add("--point", options.points, "Stand on these points of the job");
  command.Add("--at", options.at, "Stand at NORTHING EASTING [ELEVATION]").Values(2, 3);
  // --profile is that of the road.
  AddStakeOptions(command, options.stake, "--receiver-profile");
  const Option store =
      command.Add("--store", options.storeId,
                  "Store a position in the job under this id: with --receiver the next one that\n"
                  "keeps the limits after Enter was pressed, else the one that was named");
  command
      .AddFlag("--store-on-stake", options.storeOnStake,
               "With --store: store the first position that is ON THE STAKE, without a key")
      .Needs(store);
  AddExistingOption(command, options.stake.existing);
  command.Footer(
      "One line per position: where it is, how to go forward and right along the road, north and "
      "east,\n"
      "cut (C) or fill (F). ON THE STAKE needs a FIXED position inside both tolerances.");
}

}  // namespace tarvex
