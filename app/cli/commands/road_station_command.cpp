// tarvex road station: coordinates, or points of a job, to station and offset.
#include "app/cli/command_line.h"
#include "app/cli/number_entry.h"
#include "app/cli/result_file.h"
#include "app/cli/road_job.h"
#include "app/cli/road_options.h"
#include "core/text/number_text.h"
#include "roads/stakeout.h"

namespace tarvex {
namespace {

struct RoadStationOptions {
  RoadFileOptions road;
  std::string northing;
  std::string easting;
  std::string job;
  std::vector<std::string> ids;
  bool candidates = false;
  std::string svg;
};

// A place of the road that a point lies at.
struct Answer {
  StationOffset found;
  DesignElevation design;
  std::optional<double> cut;  // of a point of a job, which has an elevation
};

Json AnswerJson(const OpenedRoad& road, const Answer& answer) {
  const StationOffset& found = answer.found;
  Json json = road.StationJson(found.station);
  json["offset"] = found.offset;
  json["distance"] = found.distance;
  json["place"] = PlaceName(found.place);
  json["outside_limits"] = road.OutsideLimits(found.station);
  json["sound"] = found.sound;
  if (answer.design.elevation) json["design_elevation"] = *answer.design.elevation;
  AddElevationSource(json, answer.design);
  if (answer.cut) json["cut"] = *answer.cut;
  return json;
}

std::string AnswerLine(const OpenedRoad& road, const Answer& answer) {
  constexpr int kCutDecimals = 3;
  const StationOffset& found = answer.found;
  std::string line =
      road.StationText(found.station) + "  " + OffsetText(found.offset, kRoadDecimals);
  const std::string place = PlaceText(found.place);
  if (!place.empty()) line += "  (" + place + ")";
  if (road.OutsideLimits(found.station)) line += "  (outside the station limits)";
  if (!found.sound) line += "  (on an element that should not be staked)";
  if (answer.cut) line += "  " + CutFillText(*answer.cut, kCutDecimals);
  // What is on the centerline or the template needs no word; the rest does.
  if (answer.design.source == ElevationSource::Level || !answer.design.elevation) {
    const std::string elevation = ElevationText(answer.design);
    if (!elevation.empty()) line += "  " + elevation;
  }
  return line + "\n";
}

std::vector<StationOffset> PlacesOf(const OpenedRoad& road, const PlanPoint& at, bool candidates) {
  if (candidates) {
    auto found = Alignment::WorthOffering(road.alignment().Candidates(at));
    if (!found.empty()) return found;
  }
  const auto closest = road.alignment().Closest(at);
  return closest ? std::vector<StationOffset>{*closest} : std::vector<StationOffset>{};
}

std::vector<Answer> AnswersTo(const RoadStationOptions& options, const OpenedRoad& road,
                              const GridPoint& point) {
  std::vector<Answer> answers;
  for (const StationOffset& found :
       PlacesOf(road, {point.northing, point.easting}, options.candidates)) {
    Answer answer{.found = found, .design = road.design.At(found.station, found.offset), .cut = {}};
    if (answer.design.elevation && !options.job.empty()) {
      answer.cut = point.elevation - *answer.design.elevation;
    }
    answers.push_back(answer);
  }
  return answers;
}

// The points to ask: entered coordinates, or points of a job. Nothing after a message.
std::optional<PointList> PointsToAsk(const RoadStationOptions& options, Program& program,
                                     const OpenedRoad& road) {
  if (!options.job.empty()) {
    const auto session = OpenRoadJob(program, options.job, road);
    return session ? PointsOfJob(program, *session, options.ids) : std::nullopt;
  }
  const auto northing = EnteredNumber(program, "The northing", options.northing);
  const auto easting = EnteredNumber(program, "The easting", options.easting);
  if (!northing || !easting) return std::nullopt;
  return PointList{{.at = {*northing, *easting, 0.0}, .description = {}, .id = {}}};
}

void PrintLines(const RoadStationOptions& options, Program& program, const OpenedRoad& road,
                const PointList& points) {
  for (const Point& point : points) {
    const std::string name = point.id.empty() ? "" : "Point " + point.id.str() + ": ";
    for (const Answer& answer : AnswersTo(options, road, point.at)) {
      program.console.Print(name + AnswerLine(road, answer));
    }
  }
}

void PrintJson(const RoadStationOptions& options, Program& program, const OpenedRoad& road,
               const PointList& points) {
  Json list = Json::EmptyList();
  for (const Point& point : points) {
    Json json = options.job.empty()
                    ? Json{{"northing", point.at.northing}, {"easting", point.at.easting}}
                    : PointJson(point);
    json["answers"] = Json::EmptyList();
    for (const Answer& answer : AnswersTo(options, road, point.at)) {
      json["answers"].Add(AnswerJson(road, answer));
    }
    list.Add(std::move(json));
  }
  program.console.Print(JsonText({{"file", options.road.file}, {"points", std::move(list)}}));
}

ExitCode RunRoadStation(const RoadStationOptions& options, Program& program) {
  if (options.job.empty() ? options.easting.empty() : !options.northing.empty()) {
    return program.Misuse("Give NORTHING EASTING, or points of a job with --job JOB.crd.");
  }
  const auto road = OpenRoad(program, options.road);
  if (!road) return program.exitCode;
  const auto points = PointsToAsk(options, program, *road);
  if (!points) return program.exitCode;
  if (options.road.json) {
    PrintJson(options, program, *road, *points);
  } else {
    PrintLines(options, program, *road, *points);
  }
  if (options.svg.empty()) return ExitCode::Done;
  std::vector<PictureMark> marks;
  for (const Point& point : *points) {
    marks.push_back({{point.at.northing, point.at.easting}, point.id.str()});
  }
  return WriteResultFile(program, options.svg, road->Picture(options.road.file, marks), true);
}

}  // namespace

void DeclareRoadStationCommand(Command& command) {
  RoadStationOptions& options = command.Runs(RunRoadStation);
  AddRoadFileOptions(command, options.road);
  command.Add("NORTHING", options.northing, "In the file's unit");
  command.Add("EASTING", options.easting, "In the file's unit");
  AddRoadViewOptions(command, options.road);
  AddDesignOptions(command, options.road);
  const Option job =
      command.Add("--job", options.job, "Take points of this job").ValueName("JOB.crd");
  command.Add("--point", options.ids, "Their ids (default: all points)").Needs(job);
  command.AddFlag("--candidates", options.candidates, "Every place of the road that may be meant");
  command.Add("--svg", options.svg, "Draw the points beside the alignment into this file")
      .ValueName("FILE.svg");
  command.Footer(
      "With --profile, and beside the centerline --template, points of a job show cut (C) or fill "
      "(F).\n"
      "Example: tarvex road station road.cl 5184687.8 520489.5");
}

}  // namespace tarvex
