// tarvex road list: what lies along the road.
#include <map>

#include "app/cli/command_line.h"
#include "app/cli/number_entry.h"
#include "app/cli/road_options.h"
#include "app/cli/table_text.h"
#include "core/text/number_text.h"
#include "roads/stakeout.h"

namespace tarvex {
namespace {

struct RoadListOptions {
  RoadFileOptions road;
  double interval = 0.0;
  std::string from;
  std::string to;
  double offset = 0.0;
};

// Names of the key points by station.
class KeyPointNames {
 public:
  explicit KeyPointNames(const std::vector<CenterlineElement>& chain) {
    for (const CenterlineElement& node : chain) {
      if (node.record == KeyPointKind::LeadIn || node.record == KeyPointKind::Line) continue;
      names_.emplace(node.station, RecordName(node));
    }
  }

  std::string At(double station) const {
    constexpr double kSame = 1e-4;
    std::string names;
    const auto end = names_.upper_bound(station + kSame);
    for (auto at = names_.lower_bound(station - kSame); at != end; ++at) {
      names += (names.empty() ? "" : " ") + std::string(at->second);
    }
    return names;
  }

 private:
  std::multimap<double, std::string_view> names_;
};

void PrintPlace(Program& program, const OpenedRoad& road, const KeyPointNames& names,
                double station, double offset) {
  const auto point = road.alignment().PointAt(station, offset);
  const auto elevation = road.design.At(station, offset).elevation;
  program.console.Print(Right(road.StationText(station), 16) +
                        Right(FixedNumber(point->at.northing, kRoadDecimals), 17) +
                        Right(FixedNumber(point->at.easting, kRoadDecimals), 17) +
                        Right(elevation ? FixedNumber(*elevation, kRoadDecimals) : "", 13) +
                        Right(FixedNumber(point->azimuth * kDegreesPerRadian, 5), 12) + "  " +
                        names.At(station) + "\n");
}

Json PlaceJson(const OpenedRoad& road, const KeyPointNames& names, double station, double offset) {
  const auto point = road.alignment().PointAt(station, offset);
  Json json = road.StationJson(station);
  json["offset"] = offset;
  json["northing"] = point->at.northing;
  json["easting"] = point->at.easting;
  const DesignElevation design = road.design.At(station, offset);
  if (design.elevation) json["elevation"] = *design.elevation;
  AddElevationSource(json, design);
  json["azimuth_degrees"] = point->azimuth * kDegreesPerRadian;
  json["key_point"] = names.At(station);
  return json;
}

// Why stations have no elevation, each reason once, and what else must be known of those that do.
void TellElevations(Program& program, const OpenedRoad& road, const std::vector<double>& stations,
                    double offset) {
  std::map<ElevationSource, std::vector<double>> bySource;
  for (const double station : stations) {
    bySource[road.design.At(station, offset).source].push_back(station);
  }
  for (const auto& [source, those] : bySource) {
    WarnAboutElevation(program, road, road.design.At(those.front(), offset), those.front(), offset);
    if (source == ElevationSource::Level) {
      program.Warn("the elevations are " + ElevationSourceText(source) + ".");
    }
  }
}

struct StationSpanEntry {
  double from = 0.0;
  double to = 0.0;
};

// The stations between which to list; nothing after a message.
std::optional<StationSpanEntry> SpanToList(const RoadListOptions& options, Program& program,
                                           const OpenedRoad& road) {
  const auto from = options.from.empty() ? std::optional(road.span.start)
                                         : FindStation(program, road, options.from);
  const auto to =
      options.to.empty() ? std::optional(road.span.end) : FindStation(program, road, options.to);
  if (!from || !to) return std::nullopt;
  if (*from <= *to) return StationSpanEntry{*from, *to};
  (void)program.Misuse("Nothing lies between " + road.StationText(*from) + " and " +
                       road.StationText(*to) + ": the list goes the way of rising stations.");
  return std::nullopt;
}

ExitCode RunRoadList(const RoadListOptions& options, Program& program) {
  const auto road = OpenRoad(program, options.road);
  if (!road) return program.exitCode;
  const auto span = SpanToList(options, program, *road);
  if (!span) return program.exitCode;
  WarnAboutFaults(program, *road, options.road);
  const Profile* profile = road->design.profile ? &*road->design.profile : nullptr;
  const auto stations =
      StakeStations(road->geometry, profile, options.interval, span->from, span->to);
  if (stations.empty()) {
    return program.Misuse("The interval gives more than " + std::to_string(kMostStakeStations) +
                          " stations; take a longer one.");
  }
  TellElevations(program, *road, stations, options.offset);
  const KeyPointNames names(road->geometry.chain);
  if (options.road.json) {
    Json list = Json::EmptyList();
    for (const double station : stations)
      list.Add(PlaceJson(*road, names, station, options.offset));
    program.console.Print(JsonText({{"file", options.road.file}, {"stations", std::move(list)}}));
    return ExitCode::Done;
  }
  program.console.Print(Right("Station", 16) + Right("Northing", 17) + Right("Easting", 17) +
                        Right("Elevation", 13) + Right("Azimuth", 12) + "\n");
  for (const double station : stations) PrintPlace(program, *road, names, station, options.offset);
  return ExitCode::Done;
}

}  // namespace

void DeclareRoadListCommand(Command& command) {
  RoadListOptions& options = command.Runs(RunRoadList);
  AddRoadFileOptions(command, options.road);
  AddRoadViewOptions(command, options.road);
  AddDesignOptions(command, options.road);
  AddNumber(command, "--interval", options.interval, "Distance between round stations",
            NumberKind::Positive)
      .Required();
  command.Add("--from", options.from, "First station (default: the start)");
  command.Add("--to", options.to, "Last station (default: the end)");
  AddNumber(command, "--offset", options.offset, "Offset of the points, right positive");
  command.Footer("Example: tarvex road list road.cl --interval 20 --offset -3.6");
}

}  // namespace tarvex
