#include "app/road_file.h"

#include <CLI/CLI.hpp>
#include <cmath>

#include "app/job_session.h"
#include "core/number_text.h"
#include "core/string_table.h"
#include "exchange/landxml.h"
#include "roads/centerline_file.h"
#include "roads/road_texts.h"

namespace tarvex {

void AddRoadFileOptions(CLI::App& sub, RoadFileOptions& options) {
  sub.add_option("FILE.cl", options.file, "The centerline file")->required();
  sub.add_option("--unit", options.unit, "Unit of the file (default: metres)")
      ->check(CLI::IsMember({"us-feet", "metres", "intl-feet"}));
  sub.add_option("--stations", options.stations,
                 "How stations are shown: 100 (12+34.50), 1000 (1+234.500) or plain "
                 "(default: 1000 in metres, 100 in feet)")
      ->check(CLI::IsMember({"100", "1000", "plain"}));
  sub.add_option("--profile", options.profile,
                 "LandXML file whose profile gives design elevations");
  sub.add_flag("--limits", options.use_limits, "Keep to the station limits of the .cle file");
  sub.add_flag("--ahead-first", options.ahead_first,
               "The file's EQ records hold the ahead station first");
  sub.add_flag("--json", options.json, "Print JSON");
}

std::string OpenedRoad::StationText(double internal) const {
  return geometry.equations.Text(internal, style.mode, style.decimals);
}

Json OpenedRoad::StationJson(double internal) const {
  const DisplayedStation shown = geometry.equations.Displayed(internal);
  Json json{{"station", shown.station}, {"station_text", StationText(internal)}};
  if (!geometry.equations.empty()) {
    json["internal_station"] = internal;
    json["region"] = shown.region;
  }
  return json;
}

std::optional<double> OpenedRoad::DesignElevation(double internal) const {
  const auto at = profile ? profile->At(internal) : std::nullopt;
  return at ? std::optional(at->elevation) : std::nullopt;
}

bool OpenedRoad::OutsideLimits(double internal) const {
  return (span.start_limited && internal < span.start) || (span.end_limited && internal > span.end);
}

namespace {

StationStyle StyleOf(const RoadFileOptions& options, DistanceUnit unit) {
  const bool thousands =
      options.stations.empty() ? unit == DistanceUnit::Metres : options.stations == "1000";
  if (options.stations == "plain") return {StationMode::Plain, 3};
  return thousands ? StationStyle{StationMode::Thousands, 3}
                   : StationStyle{StationMode::Hundreds, 2};
}

std::string LoadProblem(const RoadFileOptions& options, const CenterlineLoad& load) {
  switch (load.result) {
    case LoadCenterlineResult::NotOpened:
      return Strings().Text(kTextCenterlineNotOpened, {options.file});
    case LoadCenterlineResult::TooLarge:
      return Strings().Text(kTextFileTooLarge, {options.file});
    case LoadCenterlineResult::TooLong:
      return options.file + ": " +
             Strings().Text(kTextCenterlineTooLong, {std::to_string(load.line)});
    default:
      return options.file + " holds no centerline.";
  }
}

bool LoadProfile(Program& program, const RoadFileOptions& options, OpenedRoad& opened) {
  std::string text;
  const FileStatus status = ReadWholeFile(program.files, options.profile, kLargestLandXml, text);
  if (!status.ok()) {
    (void)program.Fail(options.profile + " cannot be read: " + status.Text() + ".");
    return false;
  }
  LandXmlReading reading = ReadLandXml(text);
  if (reading.result != LandXmlResult::Read) {
    (void)program.Fail(options.profile + ": " + reading.problem);
    return false;
  }
  for (LandXmlAlignment& alignment : reading.alignments) {
    if (!alignment.profile) continue;
    opened.profile = std::move(alignment.profile);
    if (reading.unit == opened.unit) return true;
    (void)program.Fail(options.profile + " is in " + std::string(UnitName(reading.unit)) +
                       ", the centerline in " + std::string(UnitName(opened.unit)) + ".");
    return false;
  }
  (void)program.Fail(options.profile + " holds no profile.");
  return false;
}

std::string GeometryProblem(const RoadFileOptions& options, const RoadGeometryMaking& making) {
  if (making.result == AlignmentResult::OutOfRange) {
    return options.file + " line " + std::to_string(making.line) +
           ": a number of the key point is out of range.";
  }
  return options.file + " holds no two key points apart from each other.";
}

}  // namespace

std::optional<OpenedRoad> OpenRoad(Program& program, const RoadFileOptions& options) {
  Road road;
  road.use_station_limits = options.use_limits;
  const CenterlineLoad load = LoadCenterline(program.files, road, options.file);
  std::string text;
  if (load.result != LoadCenterlineResult::Loaded ||
      !ReadWholeFile(program.files, options.file, kLargestRoadFile, text).ok()) {
    (void)program.Fail(LoadProblem(options, load));
    return std::nullopt;
  }
  const DistanceUnit unit = *ParseUnit(options.unit);
  std::vector<StationEquation> equations = ReadStationEquations(text);
  if (options.ahead_first) equations = Swapped(std::move(equations));
  RoadGeometryMaking making = MakeRoadGeometry(*road.centerline, equations, CheckLimits::For(unit));
  if (!making.geometry) {
    (void)program.Fail(GeometryProblem(options, making));
    return std::nullopt;
  }
  road.centerline->elements = making.geometry->chain;
  OpenedRoad opened{.road = std::move(road),
                    .geometry = *std::move(making.geometry),
                    .text = std::move(text),
                    .equations = std::move(equations),
                    .profile = std::nullopt,
                    .unit = unit,
                    .limits = CheckLimits::For(unit),
                    .style = StyleOf(options, unit),
                    .span = {}};
  opened.span = StationRange(opened.road).value_or(StationSpan{});
  if (!options.profile.empty() && !LoadProfile(program, options, opened)) return std::nullopt;
  return opened;
}

void WarnAboutFaults(Program& program, const OpenedRoad& road, const RoadFileOptions& options) {
  std::size_t faults = 0;
  for (const AlignmentElement& element : road.alignment().elements()) faults += !element.sound;
  if (faults == 0) return;
  program.console.PrintError("WARNING: " + std::to_string(faults) +
                             (faults == 1 ? " element" : " elements") + " of " + options.file +
                             " should not be staked as they stand; see: tarvex road check " +
                             options.file + "\n");
}

std::optional<double> FindStation(Program& program, const OpenedRoad& road,
                                  const std::string& entry) {
  const auto typed = ParseStationEntry(entry);
  if (!typed) {
    program.exit_code =
        program.Misuse("\"" + entry + "\" is not a station (1234.5, 12+34.50, 1+234.5, 14+75 R2).");
    return std::nullopt;
  }
  const auto found = road.geometry.equations.Internal(typed->displayed, typed->region);
  if (found.size() == 1) return found.front().station;
  if (found.empty()) {
    (void)program.Fail("The road has no station " + entry +
                       ": it lies in the gap of a station "
                       "equation, or outside the alignment.");
    return std::nullopt;
  }
  std::string choices;
  for (const InternalStation& place : found) {
    choices +=
        (choices.empty() ? "\"" : " or \"") + entry + " R" + std::to_string(place.region) + "\"";
  }
  (void)program.Fail("Station " + entry + " exists " + std::to_string(found.size()) +
                     " times; say which: " + choices + ".");
  return std::nullopt;
}

std::optional<double> EnteredNumber(Program& program, const char* name, const std::string& text) {
  const auto value = ParseNumber(text);
  if (!value) {
    program.exit_code = program.Misuse(std::string(name) + " \"" + text + "\" is not a number.");
  }
  return value;
}

ExitCode WriteResultFile(Program& program, const std::string& path, const std::string& text,
                         bool overwrite) {
  if (!overwrite && program.files.Exists(path)) {
    return program.Fail(path + " exists; nothing was written. (--overwrite replaces it.)");
  }
  const FileStatus status = ReplaceWholeFile(program.files, path, text);
  if (!status.ok()) return program.Fail(path + " cannot be written: " + status.Text() + ".");
  program.console.PrintError("Wrote " + path + ".\n");
  return ExitCode::Done;
}

std::string PlaceText(Place place) {
  switch (place) {
    case Place::AtVertex:
      return "at an angle point";
    case Place::BeforeStart:
      return "before the start";
    case Place::AfterEnd:
      return "after the end";
    case Place::On:
      break;
  }
  return {};
}

}  // namespace tarvex
