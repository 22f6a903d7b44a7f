// tarvex road point: station and offset to coordinates.
#include "app/cli/command_line.h"
#include "app/cli/number_entry.h"
#include "app/cli/result_file.h"
#include "app/cli/road_job.h"
#include "app/cli/road_options.h"
#include "app/cli/storing_text.h"
#include "app/workflow/point_storing.h"
#include "core/text/number_text.h"
#include "roads/stakeout.h"

namespace tarvex {
namespace {

struct RoadPointOptions {
  RoadFileOptions road;
  RoadPlaceOptions place;
  std::string job;
  std::string id;
  std::string description;
  std::string existing = "ask";
  std::string svg;
};

// The point that was asked for.
struct RoadPoint {
  double station = 0.0;
  AlignmentPoint onRoad;
  DesignElevation design;
  std::string where;  // station and offset

  GridPoint at() const {
    return {onRoad.at.northing, onRoad.at.easting, design.elevation.value_or(0.0)};
  }
};

// Nothing after a message.
std::optional<RoadPoint> FindPoint(const RoadPointOptions& options, Program& program,
                                   const OpenedRoad& road) {
  const auto station = FindStation(program, road, options.place.station);
  if (!station) return std::nullopt;
  const double offset = options.place.offset;
  const auto onRoad = road.alignment().PointAt(*station, offset);
  if (!onRoad) {
    (void)program.Misuse("The station or the offset is out of range.");
    return std::nullopt;
  }
  const DesignElevation design = road.design.At(*station, offset);
  if (!options.id.empty() && !design.elevation) {
    WarnAboutElevation(program, road, design, *station, offset);
    (void)program.Misuse(
        "A stored point needs an elevation: --elevation Z, or --profile FILE.xml"
        " and beside the centerline --template FILE.tpl.");
    return std::nullopt;
  }
  return RoadPoint{.station = *station,
                   .onRoad = *onRoad,
                   .design = design,
                   .where = road.StationText(*station) + " " + OffsetText(offset, kRoadDecimals)};
}

void WarnAbout(Program& program, const OpenedRoad& road, const RoadPoint& point, double offset) {
  if (!point.onRoad.sound) program.Warn("the element there should not be staked as it is.");
  if (road.OutsideLimits(point.station)) program.Warn("the station is outside the station limits.");
  WarnAboutElevation(program, road, point.design, point.station, offset);
}

std::string PointLine(const RoadPoint& point) {
  const GridPoint at = point.at();
  std::string line = point.where + ": N " + FixedNumber(at.northing, kRoadDecimals) + "  E " +
                     FixedNumber(at.easting, kRoadDecimals);
  const std::string elevation = ElevationText(point.design);
  if (!elevation.empty()) line += "  " + elevation;
  line += "  azimuth " + FixedNumber(point.onRoad.azimuth * kDegreesPerRadian, 6);
  const std::string place = PlaceText(point.onRoad.place);
  return line + (place.empty() ? "" : "  (" + place + ")") + "\n";
}

Json RoadPointJson(const OpenedRoad& road, const RoadPoint& point, double offset) {
  Json json = road.StationJson(point.station);
  json["offset"] = offset;
  json["northing"] = point.onRoad.at.northing;
  json["easting"] = point.onRoad.at.easting;
  if (point.design.elevation) json["elevation"] = *point.design.elevation;
  AddElevationSource(json, point.design);
  json["azimuth_degrees"] = point.onRoad.azimuth * kDegreesPerRadian;
  json["curvature"] = point.onRoad.curvature;
  json["place"] = PlaceName(point.onRoad.place);
  json["sound"] = point.onRoad.sound;
  return json;
}

ExitCode StorePoint(const RoadPointOptions& options, Program& program, JobSession& session,
                    const RoadPoint& point) {
  session.setPolicy(ParseExistingPolicy(options.existing));
  return TellStored(
      program, session,
      StoreTypedPoint(session, {.id = options.id,
                                .at = point.at(),
                                .description = options.description.empty() ? point.where
                                                                           : options.description}),
      options.road.json ? Announce::OnErrors : Announce::OnOutput);
}

ExitCode RunRoadPoint(const RoadPointOptions& options, Program& program) {
  if (options.job.empty() != options.id.empty()) {
    return program.Misuse("Storing needs both --store JOB.crd and --id ID.");
  }
  const auto road = OpenRoad(program, options.road);
  if (!road) return program.exitCode;
  const auto point = FindPoint(options, program, *road);
  if (!point) return program.exitCode;
  const auto session = options.job.empty() ? nullptr : OpenRoadJob(program, options.job, *road);
  if (!options.job.empty() && !session) return program.exitCode;
  WarnAbout(program, *road, *point, options.place.offset);
  program.console.Print(options.road.json
                            ? JsonText(RoadPointJson(*road, *point, options.place.offset))
                            : PointLine(*point));
  if (!options.svg.empty()) {
    const PictureMark mark{point->onRoad.at, point->where};
    const std::string svg = road->Picture(options.road.file, {&mark, 1});
    if (WriteResultFile(program, options.svg, svg, true) != ExitCode::Done) return ExitCode::Failed;
  }
  return session ? StorePoint(options, program, *session, *point) : ExitCode::Done;
}

}  // namespace

void DeclareRoadPointCommand(Command& command) {
  RoadPointOptions& options = command.Runs(RunRoadPoint);
  AddRoadFileOptions(command, options.road);
  AddRoadPlaceOptions(command, options.place);
  AddRoadViewOptions(command, options.road);
  AddDesignOptions(command, options.road);
  AddElevationOption(command, options.road);
  command.Add("--store", options.job, "Store the point in this job");
  command.Add("--id", options.id, "Point id to store under");
  command.Add("--description", options.description, "Default: station and offset");
  AddExistingOption(command, options.existing);
  command.Add("--svg", options.svg, "Draw the point on the alignment into this file")
      .ValueName("FILE.svg");
  command.Footer(
      "Example: tarvex road point road.cl 1+210 -3.6 --elevation 1101.6 --store site.crd "
      "--id R1");
}

}  // namespace tarvex
