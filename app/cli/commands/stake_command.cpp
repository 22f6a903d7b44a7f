// tarvex stake: from the present position to points, lines and arcs of the job.
#include "app/cli/command_line.h"
#include "app/cli/number_entry.h"
#include "app/cli/stake_following.h"
#include "app/cli/storing_text.h"
#include "app/workflow/alignment_target.h"
#include "app/workflow/point_storing.h"
#include "app/workflow/raw_positions.h"
#include "app/workflow/stake_selection.h"
#include "core/raw_data/raw_file.h"
#include "core/text/number_text.h"
#include "roads/road_geometry.h"

namespace tarvex {

void DeclareStakeReportCommand(Command& command);

namespace {

constexpr std::uint64_t kLargestList = 1U << 26U;
constexpr int kShownDecimals = 3;

constexpr CommandRow kStakeCommands[] = {
    {"report", "What was staked in a job, and how well", DeclareStakeReportCommand}};

struct StakeCommandOptions {
  StakeOptions stake;
  std::string job;
  std::vector<std::string> points;
  std::vector<std::string> line;
  std::vector<std::string> arc;
  std::optional<double> radius;
  bool longWay = false;
  std::optional<double> station;
  std::optional<double> offset;
  std::optional<double> interval;
  std::string list;
  std::optional<double> elevation;
  bool again = false;
  bool inOrder = false;
  bool fromNorth = false;
  std::string toward;
  bool storeOnStake = false;
  std::string first;
};

/// What is to be set out; the targets of a line point into it.
struct WhatToStake {
  StakeableJob job;
  std::optional<PlainAlignment> alignment;
  StakeList targets;
};

// False after a message.
bool LoadJob(Program& program, JobSession& session, StakeableJob& job, std::string& rawFile) {
  if (LoadAllPoints(session.job(), job.points) != LoadPointsResult::Loaded) return false;
  job.alphanumeric = session.job().store.alphanumeric;
  std::string problem;
  if (program.files.Exists(RawFilePath(session.job())) &&
      !ReadRawFile(session.job(), rawFile, problem)) {
    (void)program.Fail(problem);
    return false;
  }
  job.staked = MakeStakeReport(rawFile, job.alphanumeric);
  return true;
}

std::optional<StakeDesign> DesignNamed(Program& program, const StakeableJob& job,
                                       const std::string& id) {
  auto design = FindDesign(job, id);
  if (!design) (void)program.Fail("There is no point " + id + " in the job.");
  return design;
}

bool SelectDesigns(const StakeCommandOptions& options, Program& program, const StakeableJob& job,
                   std::vector<StakeDesign>& designs) {
  std::string problem;
  if (options.list.empty()) {
    if (SelectPoints(job, options.points, designs, problem)) return true;
    return (void)program.Fail(problem), false;
  }
  std::string text;
  const FileStatus status = ReadWholeFile(program.files, options.list, kLargestList, text);
  if (!status.ok()) problem = "It cannot be read: " + status.Text() + ".";
  if (status.ok() && SelectFromList(job, text, designs, problem)) return true;
  return (void)program.Fail(options.list + ": " + problem), false;
}

// The line or arc; nothing after a message.
std::optional<PlainAlignment> MakeAlignment(const StakeCommandOptions& options, Program& program,
                                            const StakeableJob& job, DistanceUnit unit) {
  const std::vector<std::string>& ids = options.line.empty() ? options.arc : options.line;
  std::vector<StakeDesign> ends;
  for (const std::string& id : ids) {
    const auto design = DesignNamed(program, job, id);
    if (!design) return std::nullopt;
    ends.push_back(*design);
  }
  std::string problem;
  const CheckLimits limits = CheckLimits::For(unit);
  std::optional<PlainAlignment> made;
  if (!options.line.empty()) {
    made = LineBetween(ends.front(), ends.back(), limits, problem);
  } else {
    const auto center =
        options.radius ? CenterOfArc(ends.front(), ends.back(), *options.radius, options.longWay)
                       : std::optional(PlanPoint{ends[1].northing, ends[1].easting});
    problem = "A radius of " + ShortestNumber(options.radius.value_or(0.0)) +
              " is too short to reach from " + ends.front().name + " to " + ends.back().name + ".";
    if (center) {
      made = ArcBetween({.start = ends.front(),
                         .end = ends.back(),
                         .center = *center,
                         .longWay = options.longWay,
                         .turn = options.radius},
                        limits, problem);
    }
  }
  if (!made) (void)program.Fail(problem);
  return made;
}

// The stations of a line that are to be staked; one that is missing: wherever the rover is.
std::vector<std::optional<double>> StationsOf(const StakeCommandOptions& options,
                                              const PlainAlignment& line) {
  if (!options.interval) return {options.station};
  const RoadGeometry road{.alignment = line.alignment,
                          .equations = {},
                          .chain = {},
                          .converted = false,
                          .refusedEquation = {}};
  std::vector<std::optional<double>> stations;
  for (const double station :
       StakeStations(road, nullptr, *options.interval, 0.0, line.alignment.endStation())) {
    stations.emplace_back(station);
  }
  return stations;
}

std::vector<std::unique_ptr<StakeTarget>> LineTargets(const StakeCommandOptions& options,
                                                      const PlainAlignment& line) {
  const std::vector<std::string>& ids = options.line.empty() ? options.arc : options.line;
  std::vector<std::unique_ptr<StakeTarget>> targets;
  for (const std::optional<double>& station : StationsOf(options, line)) {
    AlignmentPlace place{
        .name = ids.front() + "-" + ids.back(),
        .station = station,
        .offset = options.offset.value_or(0.0),
        .elevation = [&line, entered = options.elevation](
                         double at) { return entered ? entered : line.ElevationAt(at); },
        .stationText = [](double at) { return FixedNumber(at, kShownDecimals); },
        .outsideLimits = {},
        .slope = {}};
    targets.push_back(std::make_unique<AlignmentTarget>(line.alignment, std::move(place)));
  }
  return targets;
}

std::vector<std::unique_ptr<StakeTarget>> PointTargets(const StakeCommandOptions& options,
                                                       std::vector<StakeDesign> designs) {
  std::vector<std::unique_ptr<StakeTarget>> targets;
  for (StakeDesign& design : designs) {
    if (options.elevation) design.elevation = options.elevation;
    targets.push_back(std::make_unique<PointTarget>(std::move(design)));
  }
  return targets;
}

// What was staked before comes up no more, unless it is all that was asked for.
bool FillList(const StakeCommandOptions& options, Program& program, WhatToStake& what,
              std::vector<std::unique_ptr<StakeTarget>> targets) {
  what.targets = StakeList(options.inOrder ? StakeOrder::AsGiven : StakeOrder::Nearest);
  const bool skips = !options.again && targets.size() > 1;
  for (auto& target : targets) {
    const auto place = target->place();
    what.targets.Add(std::move(target), skips && place && WasStaked(what.job, *place));
  }
  const std::size_t staked = what.targets.staked();
  if (staked == 0) return true;
  const std::string told =
      std::to_string(staked) + " of " + std::to_string(what.targets.size()) + " are staked already";
  if (what.targets.open() == 0) {
    return (void)program.Fail(told + ". (--again stakes them once more.)"), false;
  }
  program.console.PrintError(told + " and come up no more.\n");
  return true;
}

// False after a message.
bool Choose(const StakeCommandOptions& options, Program& program, DistanceUnit unit,
            WhatToStake& what) {
  if (options.line.empty() && options.arc.empty()) {
    std::vector<StakeDesign> designs;
    return SelectDesigns(options, program, what.job, designs) &&
           FillList(options, program, what, PointTargets(options, std::move(designs)));
  }
  what.alignment = MakeAlignment(options, program, what.job, unit);
  return what.alignment && FillList(options, program, what, LineTargets(options, *what.alignment));
}

// What makes no sense together, in a sentence; empty when all is clear.
std::string Unclear(const StakeCommandOptions& options) {
  const bool line = !options.line.empty() || !options.arc.empty();
  const int sources = (options.points.empty() ? 0 : 1) + (options.line.empty() ? 0 : 1) +
                      (options.arc.empty() ? 0 : 1) + (options.list.empty() ? 0 : 1);
  if (options.job.empty()) return "Say in which job: tarvex stake JOB.crd POINT ...";
  if (sources > 1) {
    return "Give points, --line, --arc or --list: one of them at a time.";
  }
  if (sources != 1) {
    return "Say what is to be staked: points of the job (12, 1..20), --line A B, --arc PC CENTER "
           "PT, or --list FILE.";
  }
  if (!line && (options.station || options.offset || options.interval)) {
    return "--station, --offset and --interval are places along a --line or an --arc.";
  }
  if (options.station && options.interval) return "Give --station or --interval, not both.";
  if (options.interval && !(*options.interval > 0.0)) return "--interval is a distance above 0.";
  if (options.arc.size() == 2 && !options.radius) {
    return "--arc with two points needs --radius: positive curves right, negative left.";
  }
  if (options.radius && options.arc.size() != 2) {
    return "--radius belongs to --arc with two points, the start and the end.";
  }
  if (options.longWay && options.arc.empty()) return "--long-way belongs to --arc.";
  if (line && options.storeOnStake && !options.station && !options.interval) {
    return "--store-on-stake needs a place on the line: --station or --interval.";
  }
  return "";
}

// False after a message.
bool PlanReference(const StakeCommandOptions& options, Program& program, const StakeableJob& job,
                   StakePlan& plan) {
  if (options.fromNorth) plan.reference = StakeReference::North;
  if (options.toward.empty()) return true;
  const auto toward = DesignNamed(program, job, options.toward);
  if (!toward) return false;
  plan.reference = StakeReference::TowardPoint;
  plan.toward = {toward->northing, toward->easting};
  return true;
}

ExitCode RunStake(const StakeCommandOptions& options, Program& program) {
  if (const std::string unclear = Unclear(options); !unclear.empty()) {
    return program.Misuse(unclear);
  }
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  std::string rawFile;
  WhatToStake what;
  StakePlan plan;
  if (!LoadJob(program, session, what.job, rawFile) ||
      !Choose(options, program, session.job().options.unit, what) ||
      !PlanReference(options, program, what.job, plan)) {
    return program.exitCode == ExitCode::Done ? ExitCode::Failed : program.exitCode;
  }
  std::string problem;
  if (!TakeFirstId(session, options.first, problem)) {
    return TellNoFirstId(program, options.first, problem);
  }
  plan.store = true;
  plan.storeOnStake = plan.mustStore = options.storeOnStake;
  StakeWords words;
  words.stationJson = [](double station) { return Json{{"station", station}}; };
  return FollowReceiver(options.stake, program, session, plan, what.targets, std::move(words));
}

void AddTargetOptions(Command& command, StakeCommandOptions& options) {
  constexpr const char* kGroup = "What to stake";
  const auto group = [&](Option option) { return option.InGroup(kGroup); };
  group(command.Add("--line", options.line, "A B: the line between two points of the job")
            .Values(2)
            .ValueName("ID"));
  group(command
            .Add("--arc", options.arc,
                 "PC CENTER PT: the arc between two points about a third; or PC PT with\n"
                 "--radius")
            .Values(2, 3)
            .ValueName("ID"));
  group(AddNumber(command, "--radius", options.radius,
                  "Of an arc from two points: positive curves right, negative left"));
  group(command.AddFlag("--long-way", options.longWay, "The arc above half a circle"));
  group(AddNumber(command, "--station", options.station,
                  "Along the line from its start (default: wherever you are beside it)"));
  group(AddNumber(command, "--offset", options.offset,
                  "Beside the line, right positive (default: 0)"));
  group(AddNumber(command, "--interval", options.interval,
                  "Stake the line at every so many units, and its ends"));
  group(command
            .Add("--list", options.list,
                 "File with a point a line: an id or a range, or id,northing,easting[,elevation]")
            .ValueName("FILE"));
  group(AddNumber(command, "--elevation", options.elevation,
                  "In place of the points' own elevations"));
  group(command.AddFlag("--again", options.again, "Also what was staked before"));
  group(command.AddFlag("--in-order", options.inOrder,
                        "One after the other as given, not the nearest first"));
}

}  // namespace

void DeclareStakeCommand(Command& command) {
  StakeCommandOptions& options = command.Runs(RunStake);
  options.stake.existing = "cancel";
  command.Add("JOB.crd", options.job, "The job's coordinate file");
  command.Add("POINT", options.points, "Points of the job to set out: 12, or 1..20");
  AddTargetOptions(command, options);
  const Option north =
      command.AddFlag("--from-north", options.fromNorth, "Say the way in north and east alone");
  command
      .Add("--toward", options.toward,
           "Forward is toward this point (default: the way you walk, of a line its own)")
      .ValueName("ID")
      .Excludes(north);
  AddStakeOptions(command, options.stake);
  command.AddFlag("--store-on-stake", options.storeOnStake,
                  "Store the first position that is ON THE STAKE, without a key");
  command.Add("--first", options.first, "Id of the first stake (default: the next of the job)")
      .ValueName("ID");
  command
      .Add("--existing", options.stake.existing,
           "When a point exists: overwrite it, use the next free id, or end (default: cancel)")
      .OneOf({"overwrite", "next", "cancel"});
  command.AddFlag("--json", options.stake.json, "Print JSON, a line an event");
  command.MayHaveCommands(kStakeCommands);
  command.Footer(
      "Enter stores the present position as a stake; one off the stake wants a second Enter.\n"
      "n goes on to the next target, k leaves one out, t takes one by its name, u takes the\n"
      "last stake back, ? shows all keys, q ends.\n"
      "ON THE STAKE needs a FIXED position inside both tolerances. A point at elevation 0 has no\n"
      "design elevation.\n"
      "Example: tarvex stake site.crd 1..20 --receiver serial:/dev/ttyUSB0@115200");
}

}  // namespace tarvex
