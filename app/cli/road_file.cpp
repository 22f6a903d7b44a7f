#include "app/cli/road_file.h"

#include "app/cli/number_entry.h"
#include "app/cli/template_opening.h"
#include "app/workflow/job_session.h"
#include "core/text/number_text.h"
#include "core/text/string_table.h"
#include "roads/centerline_file.h"
#include "roads/road_texts.h"
#include "roads/stakeout.h"

namespace tarvex {

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

bool OpenedRoad::OutsideLimits(double internal) const {
  return (span.startLimited && internal < span.start) || (span.endLimited && internal > span.end);
}

std::string OpenedRoad::Picture(const std::string& title,
                                std::span<const PictureMark> marks) const {
  return AlignmentPicture(geometry, title, {style, unit}, marks);
}

namespace {

StationStyle StyleOf(const RoadFileOptions& options, DistanceUnit unit) {
  if (options.stations == "plain") return {StationMode::Plain, 3};
  if (options.stations == "1000") return {StationMode::Thousands, 3};
  if (options.stations == "100") return {StationMode::Hundreds, 2};
  return DefaultStationStyle(unit);
}

std::string LoadProblem(const RoadFileOptions& options, const Failure<CenterlineFault>& failure) {
  switch (failure.code) {
    case CenterlineFault::NotOpened:
      return Strings().Text(kTextCenterlineNotOpened, {options.file});
    case CenterlineFault::TooLarge:
      return Strings().Text(kTextFileTooLarge, {options.file});
    case CenterlineFault::TooLong:
      return options.file + ": " +
             Strings().Text(kTextCenterlineTooLong, {std::to_string(failure.place)});
    case CenterlineFault::Nothing:
      break;
  }
  return options.file + " holds no centerline.";
}

std::string GeometryProblem(const RoadFileOptions& options,
                            const Failure<AlignmentFault>& failure) {
  if (failure.code == AlignmentFault::OutOfRange) {
    return options.file + " line " + std::to_string(failure.place) +
           ": a number of the key point is out of range.";
  }
  return "All key points of " + options.file + " lie at one place: there is no alignment.";
}

// What design elevations are made of; false after a message.
bool OpenDesign(Program& program, const DesignOptions& options, OpenedRoad& road) {
  DesignSurface& design = road.design;
  if (!options.profile.file.empty()) {
    design.profile = OpenProfile(program, options.profile, road.unit, road.span);
    if (!design.profile) return false;
  }
  if (!options.elevation.empty()) {
    design.entered = EnteredNumber(program, "The elevation", options.elevation);
    if (!design.entered) return false;
  }
  design.level = options.level;
  if (options.section.empty()) return true;
  if (!design.profile && !design.entered) {
    (void)program.Misuse("A template needs a finished grade under it: --profile FILE.xml.");
    return false;
  }
  design.section = OpenTemplate(program, options.section);
  if (!design.section) return false;
  if (options.superelevation.empty()) return true;
  design.superelevation = EnteredSuperelevation(program, options.superelevation);
  return design.superelevation.has_value();
}

}  // namespace

StationStyle DefaultStationStyle(DistanceUnit unit) {
  return unit == DistanceUnit::Metres ? StationStyle{StationMode::Thousands, 3}
                                      : StationStyle{StationMode::Hundreds, 2};
}

std::optional<OpenedRoad> OpenRoad(Program& program, const RoadFileOptions& options) {
  Road road;
  road.useStationLimits = options.useLimits;
  const auto loaded = LoadCenterline(program.files, road, options.file);
  if (!loaded) {
    (void)program.Fail(LoadProblem(options, loaded.failure()));
    return std::nullopt;
  }
  const DistanceUnit unit = *ParseUnit(options.unit);
  Centerline& centerline = **loaded;
  if (options.aheadFirst) centerline.equations = Swapped(std::move(centerline.equations));
  auto made = MakeRoadGeometry(centerline, centerline.equations, CheckLimits::For(unit));
  if (!made) {
    (void)program.Fail(GeometryProblem(options, made.failure()));
    return std::nullopt;
  }
  centerline.elements = made->chain;
  OpenedRoad opened{.road = std::move(road),
                    .geometry = *std::move(made),
                    .design = {},
                    .unit = unit,
                    .limits = CheckLimits::For(unit),
                    .style = StyleOf(options, unit),
                    .span = {}};
  opened.span = StationRange(opened.road).value_or(StationSpan{});
  if (!OpenDesign(program, options.design, opened)) return std::nullopt;
  return opened;
}

void WarnAboutFaults(Program& program, const OpenedRoad& road, const RoadFileOptions& options) {
  std::size_t faults = 0;
  for (const AlignmentElement& element : road.alignment().elements()) faults += !element.sound;
  if (faults == 0) return;
  program.Warn(std::to_string(faults) + (faults == 1 ? " element" : " elements") + " of " +
               options.file + " should not be staked as the file is; see: tarvex road check " +
               options.file);
}

void WarnAboutElevation(Program& program, const OpenedRoad& road, const DesignElevation& design,
                        double station, double offset) {
  const std::string where = road.StationText(station) + " " + OffsetText(offset, kRoadDecimals);
  if (!design.elevation && design.source != ElevationSource::NoGrade) {
    program.Warn("there is no design elevation at " + where + ": " +
                 ElevationSourceText(design.source) +
                 (design.source == ElevationSource::NoTemplate
                      ? ". --template FILE.tpl gives the surface, --level takes the road as level."
                      : "."));
  }
  if (design.step) {
    program.Warn("the surface steps at " + where + " from " +
                 FixedNumber(*design.elevation, kRoadDecimals) + " to " +
                 FixedNumber(*design.step, kRoadDecimals) +
                 "; the side nearer to the centerline was taken.");
  }
  const auto onRoad = road.alignment().PointAt(station);
  if (design.source == ElevationSource::Surface && !road.design.superelevation && onRoad &&
      onRoad->curvature != 0.0) {
    program.Warn("the road curves at " + road.StationText(station) +
                 " and no --superelevation was given: the template's own grades hold.");
  }
}

std::string ElevationText(const DesignElevation& design) {
  if (design.source == ElevationSource::NoGrade) return {};
  const std::string source = " (" + ElevationSourceText(design.source) + ")";
  if (!design.elevation) return "no design elevation" + source;
  const bool plain =
      design.source == ElevationSource::Centerline || design.source == ElevationSource::Entered;
  return "EL " + FixedNumber(*design.elevation, kRoadDecimals) + (plain ? "" : source);
}

void AddElevationSource(Json& json, const DesignElevation& design) {
  if (design.source == ElevationSource::NoGrade) return;
  json["elevation_from"] = ElevationSourceText(design.source);
  if (design.step) json["elevation_outside_step"] = *design.step;
}

std::optional<double> FindStation(Program& program, const OpenedRoad& road,
                                  const std::string& entry) {
  const auto typed = ParseStationEntry(entry);
  if (!typed) {
    (void)program.Misuse("\"" + entry +
                         "\" is not a station (1234.5, 12+34.50, 1+234.5, 14+75 R2).");
    return std::nullopt;
  }
  const StationEquations& equations = road.geometry.equations;
  auto found = equations.Internal(typed->displayed, typed->region);
  if (found.empty()) found = equations.Beyond(typed->displayed, typed->region);
  if (found.size() == 1) return found.front().station;
  if (found.empty()) {
    (void)program.Fail("The road has no station " + entry +
                       ": it lies in the gap of a station equation.");
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

std::string PlaceName(Place place) {
  return place == Place::On ? "on the alignment" : PlaceText(place);
}

}  // namespace tarvex
