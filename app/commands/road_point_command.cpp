// tarvex road point: station and offset to coordinates. tarvex road station: coordinates to station
// and offset.
#include <cmath>

#include "app/commands/command.h"
#include "app/commands/road_commands.h"
#include "app/job_session.h"
#include "app/point_storing.h"
#include "app/road_file.h"
#include "core/coordinate_file.h"
#include "core/number_text.h"
#include "core/point_list.h"
#include "core/point_store.h"
#include "exchange/road_picture.h"
#include "roads/stakeout.h"

namespace tarvex {
namespace {

struct RoadPointOptions {
  RoadFileOptions road;
  std::string station;
  double offset = 0.0;
  std::string elevation;
  std::string job;
  std::string id;
  std::string description;
  std::string existing = "ask";
  std::string svg;
};

std::string PointLine(const GridPoint& at, bool elevation) {
  return "N " + FixedNumber(at.northing, kRoadDecimals) + "  E " +
         FixedNumber(at.easting, kRoadDecimals) +
         (elevation ? "  EL " + FixedNumber(at.elevation, kRoadDecimals) : "");
}

// Stores the point in the job, whose unit must be the road's.
ExitCode StoreRoadPoint(const RoadPointOptions& options, Program& program, const OpenedRoad& road,
                        const GridPoint& at, const std::string& description) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  if (session.job().unit != road.unit) {
    return program.Misuse("The job is in " + std::string(UnitName(session.job().unit)) +
                          ", the road in " + std::string(UnitName(road.unit)) + " (--unit).");
  }
  session.set_policy(ParseExistingPolicy(options.existing));
  return StoreUnderId(program, session, options.id, at, description);
}

ExitCode RunRoadPoint(const RoadPointOptions& options, Program& program) {
  if (options.job.empty() != options.id.empty()) {
    return program.Misuse("Storing needs both --store JOB.crd and --id ID.");
  }
  const auto road = OpenRoad(program, options.road);
  if (!road) return ExitCode::Failed;
  const auto station = FindStation(program, *road, options.station);
  if (!station)
    return program.exit_code == ExitCode::WrongUse ? ExitCode::WrongUse : ExitCode::Failed;
  const auto point = road->alignment().PointAt(*station, options.offset);
  if (!point) return program.Misuse("The station or the offset is out of range.");
  auto elevation = road->DesignElevation(*station);
  if (!options.elevation.empty()) {
    elevation = EnteredNumber(program, "The elevation", options.elevation);
    if (!elevation) return ExitCode::WrongUse;
  }
  if (!options.id.empty() && !elevation) {
    return program.Misuse("A stored point needs an elevation: --elevation Z or --profile FILE.");
  }
  const GridPoint at{point->at.northing, point->at.easting, elevation.value_or(0.0)};
  const std::string where =
      road->StationText(*station) + " " + OffsetText(options.offset, kRoadDecimals);
  const std::string place = PlaceText(point->place);
  if (!point->sound) {
    program.console.PrintError("WARNING: the element there should not be staked as it stands.\n");
  }
  if (road->OutsideLimits(*station)) {
    program.console.PrintError("WARNING: the station is outside the station limits.\n");
  }
  if (options.road.json) {
    Json json = road->StationJson(*station);
    json.update({{"offset", options.offset}, {"northing", at.northing}, {"easting", at.easting}});
    if (elevation) json["elevation"] = *elevation;
    json["azimuth_degrees"] = point->azimuth * kDegreesPerRadian;
    json["curvature"] = point->curvature;
    json["place"] = place.empty() ? "on the alignment" : place;
    json["sound"] = point->sound;
    program.console.Print(JsonText(json));
  } else {
    program.console.Print(where + ": " + PointLine(at, elevation.has_value()) + "  azimuth " +
                          FixedNumber(point->azimuth * kDegreesPerRadian, 6) +
                          (place.empty() ? "" : "  (" + place + ")") + "\n");
  }
  if (!options.svg.empty()) {
    const PictureMark mark{point->at, where};
    const std::string svg =
        AlignmentPicture(road->geometry, options.road.file, road->style, {&mark, 1});
    if (WriteResultFile(program, options.svg, svg, true) != ExitCode::Done) return ExitCode::Failed;
  }
  if (options.id.empty()) return ExitCode::Done;
  return StoreRoadPoint(options, program, *road, at,
                        options.description.empty() ? where : options.description);
}

struct RoadStationOptions {
  RoadFileOptions road;
  std::vector<std::string> coordinates;
  std::string job;
  std::vector<std::string> ids;
  bool candidates = false;
  std::string svg;
};

Json FoundJson(const OpenedRoad& road, const StationOffset& found) {
  Json json = road.StationJson(found.station);
  const std::string place = PlaceText(found.place);
  json["offset"] = found.offset;
  json["distance"] = found.distance;
  json["place"] = place.empty() ? "on the alignment" : place;
  json["outside_limits"] = road.OutsideLimits(found.station);
  json["sound"] = found.sound;
  return json;
}

std::string FoundLine(const OpenedRoad& road, const StationOffset& found) {
  std::string line =
      road.StationText(found.station) + "  " + OffsetText(found.offset, kRoadDecimals);
  const std::string place = PlaceText(found.place);
  if (!place.empty()) line += "  (" + place + ")";
  if (road.OutsideLimits(found.station)) line += "  (outside the station limits)";
  if (!found.sound) line += "  (on an element that should not be staked)";
  return line;
}

// The points to ask: entered coordinates, or points of a job (all of them without ids).
std::optional<PointList> PointsToAsk(const RoadStationOptions& options, Program& program,
                                     DistanceUnit unit) {
  PointList points;
  if (options.job.empty()) {
    const auto northing = EnteredNumber(program, "The northing", options.coordinates[0]);
    const auto easting = EnteredNumber(program, "The easting", options.coordinates[1]);
    if (!northing || !easting) return std::nullopt;
    points.push_back({.at = {*northing, *easting, 0.0}, .description = {}, .id = {}});
    return points;
  }
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return std::nullopt;
  if (session.job().unit != unit) {
    program.exit_code =
        program.Misuse("The job is in " + std::string(UnitName(session.job().unit)) +
                       ", the road in " + std::string(UnitName(unit)) + " (--unit).");
    return std::nullopt;
  }
  if (options.ids.empty()) {
    if (LoadAllPoints(session.job(), points) != LoadPointsResult::Loaded) return std::nullopt;
    return points;
  }
  const auto stream = OpenForReading(session.job());
  if (!stream) return std::nullopt;
  for (const std::string& id : options.ids) {
    Point point;
    if (ReadPoint(session.job(), id, stream.get(), point) != ReadPointResult::Found) {
      (void)program.Fail("The job holds no point " + id + ".");
      return std::nullopt;
    }
    points.push_back(point);
  }
  return points;
}

std::vector<StationOffset> Answers(const OpenedRoad& road, const Point& point, bool candidates) {
  const PlanPoint at{point.at.northing, point.at.easting};
  if (candidates) {
    auto found = Alignment::WorthOffering(road.alignment().Candidates(at));
    if (!found.empty()) return found;
  }
  const auto closest = road.alignment().Closest(at);
  return closest ? std::vector<StationOffset>{*closest} : std::vector<StationOffset>{};
}

ExitCode RunRoadStation(const RoadStationOptions& options, Program& program) {
  if (options.job.empty() ? options.coordinates.size() != 2 : !options.coordinates.empty()) {
    return program.Misuse("Give NORTHING EASTING, or points of a job with --job JOB.crd.");
  }
  const auto road = OpenRoad(program, options.road);
  if (!road) return ExitCode::Failed;
  const auto points = PointsToAsk(options, program, road->unit);
  if (!points) {
    return program.exit_code == ExitCode::WrongUse ? ExitCode::WrongUse : ExitCode::Failed;
  }
  Json list = Json::array();
  std::vector<PictureMark> marks;
  for (const Point& point : *points) {
    Json answers = Json::array();
    for (const StationOffset& found : Answers(*road, point, options.candidates)) {
      const auto design = road->DesignElevation(found.station);
      const bool cut = design && !options.job.empty();
      if (options.road.json) {
        answers.push_back(FoundJson(*road, found));
        if (design) answers.back()["design_elevation"] = *design;
        if (cut) answers.back()["cut"] = point.at.elevation - *design;
        continue;
      }
      program.console.Print(
          (point.id.empty() ? "" : "Point " + point.id.str() + ": ") + FoundLine(*road, found) +
          (cut ? "  " + CutFillText(point.at.elevation - *design, 3) : "") + "\n");
    }
    marks.push_back({{point.at.northing, point.at.easting}, point.id.str()});
    if (!options.road.json) continue;
    list.push_back(options.job.empty()
                       ? Json{{"northing", point.at.northing}, {"easting", point.at.easting}}
                       : PointJson(point));
    list.back()["answers"] = std::move(answers);
  }
  if (options.road.json) {
    program.console.Print(JsonText({{"file", options.road.file}, {"points", std::move(list)}}));
  }
  if (options.svg.empty()) return ExitCode::Done;
  return WriteResultFile(program, options.svg,
                         AlignmentPicture(road->geometry, options.road.file, road->style, marks),
                         true);
}

}  // namespace

void AddRoadPointCommand(CLI::App& road, Program& program) {
  Command<RoadPointOptions> command(road, program, "point",
                                    "Coordinates of a station and offset, stored if wanted",
                                    RunRoadPoint);
  RoadPointOptions& options = *command.options;
  CLI::App& sub = command.sub;
  AddRoadFileOptions(sub, options.road);
  sub.add_option("STATION", options.station, "1234.5, 12+34.50, 1+234.500 or \"14+75 R2\"")
      ->required();
  sub.add_option("OFFSET", options.offset, "Right positive (default: 0)");
  sub.add_option("--elevation", options.elevation, "Elevation of the point");
  sub.add_option("--store", options.job, "Store the point in this job");
  sub.add_option("--id", options.id, "Point id to store under");
  sub.add_option("--description", options.description, "Default: station and offset");
  sub.add_option("--existing", options.existing,
                 "When the point exists: overwrite, next or cancel (default: ask)")
      ->check(CLI::IsMember({"ask", "overwrite", "next", "cancel"}));
  sub.add_option("--svg", options.svg, "Draw the point on the alignment into this file");
}

void AddRoadStationCommand(CLI::App& road, Program& program) {
  Command<RoadStationOptions> command(road, program, "station",
                                      "Station and offset of coordinates or of points of a job",
                                      RunRoadStation);
  RoadStationOptions& options = *command.options;
  CLI::App& sub = command.sub;
  AddRoadFileOptions(sub, options.road);
  sub.add_option("COORDINATES", options.coordinates, "NORTHING EASTING")->expected(0, 2);
  sub.add_option("--job", options.job, "Take points of this job");
  sub.add_option("--point", options.ids, "Their ids (default: all points)");
  sub.add_flag("--candidates", options.candidates, "Every place of the road that may be meant");
  sub.add_option("--svg", options.svg, "Draw the points beside the alignment into this file");
}

}  // namespace tarvex
