#include "app/cli/commands/localize_options.h"

#include <algorithm>
#include <cmath>

#include "app/cli/line_conversion.h"

namespace tarvex {
namespace {

void AddPointOptions(Command& command, LocalizeOptions& options) {
  const std::string group = "Adding a control point";
  command.Add("--gnss", options.gnssId, "GNSS position: the last one of this point in the raw file")
      .ValueName("ID")
      .InGroup(group);
  command
      .Add("--wgs84", options.wgs84,
           "GNSS position: latitude, longitude (decimal degrees or 46d30'15.5\"), height (m)")
      .Values(3)
      .ValueName("LAT LON HEIGHT")
      .InGroup(group);
  command.Add("--known", options.knownId, "Local coordinates: those of this point of the job")
      .ValueName("ID")
      .InGroup(group);
  command.Add("--local", options.local, "Local coordinates in the job's unit")
      .Values(3)
      .ValueName("N E EL")
      .InGroup(group);
  command.Add("--description", options.description, "Description (default: the point's id)")
      .InGroup(group);
  command.Add("--hrms", options.hrms, "Horizontal RMS of the GNSS position").InGroup(group);
  command.Add("--vrms", options.vrms, "Vertical RMS of the GNSS position").InGroup(group);
  command.AddFlag("--no-horizontal", options.noHorizontal, "The point takes no part horizontally")
      .InGroup(group);
  command.AddFlag("--no-vertical", options.noVertical, "The point takes no part vertically")
      .InGroup(group);
}

void AddListOptions(Command& command, LocalizeOptions& options) {
  const std::string group = "Changing the list (points by their number in it)";
  command
      .Add("--toggle-horizontal", options.toggleHorizontal, "Use them horizontally, or no longer")
      .InGroup(group);
  command.Add("--toggle-vertical", options.toggleVertical, "Use them vertically, or no longer")
      .InGroup(group);
  command.Add("--remove", options.remove, "Take points off the list").InGroup(group);
  command.Add("--from", options.from, "Take the whole list from another .loc file")
      .ValueName("FILE.loc")
      .InGroup(group);
}

void AddFitOptions(Command& command, LocalizeOptions& options) {
  const std::string group = "Fitting";
  command
      .Add("--method", options.method,
           "similarity (scale, rotation, translation), fixed-scale, rotation (scale 1) or "
           "translation")
      .OneOf({"similarity", "fixed-scale", "rotation", "translation"})
      .InGroup(group);
  command.Add("--scale", options.scale, "The scale for fixed-scale and translation").InGroup(group);
  command.Add("--heights", options.heights, "shift, or an inclined plane")
      .OneOf({"shift", "plane"})
      .InGroup(group);
  const Option off =
      command.AddFlag("--off", options.off, "The job no longer uses the localization");
  off.InGroup(group);
  command.AddFlag("--on", options.on, "The job uses it again").Excludes(off).InGroup(group);
}

bool AreNumbers(const std::vector<double>& values) {
  return std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); });
}

bool TakePosition(const LocalizeOptions& options, ControlPointSource& source,
                  std::string& problem) {
  if (options.wgs84.empty() == options.gnssId.empty()) {
    problem = "Give the GNSS position with --wgs84 LAT LON HEIGHT or --gnss ID.";
    return false;
  }
  source.gnssId = options.gnssId;
  if (options.wgs84.empty()) return true;
  const auto position =
      ReadPosition(options.wgs84[0] + " " + options.wgs84[1] + " " + options.wgs84[2]);
  if (!position || position->count != 3) {
    problem = "--wgs84 takes latitude, longitude (degrees) and height (metres)" +
              (position ? "." : ": " + position.failure().text + ".");
    return false;
  }
  const auto& values = position->values;
  source.position =
      Geodetic{values[0] * kRadiansPerDegree, values[1] * kRadiansPerDegree, values[2]};
  return true;
}

bool TakeLocal(const LocalizeOptions& options, ControlPointSource& source, std::string& problem) {
  if (options.local.empty() == options.knownId.empty()) {
    problem = "Give the local coordinates with --local N E EL or --known ID.";
    return false;
  }
  source.knownId = options.knownId;
  if (options.local.empty()) return true;
  if (!AreNumbers(options.local)) {
    problem = "--local takes northing, easting and elevation as numbers.";
    return false;
  }
  source.local = GridPoint{options.local[0], options.local[1], options.local[2]};
  return true;
}

// The control point that is to be added.
bool TakeControlPoint(const LocalizeOptions& options, ControlPointSource& source,
                      std::string& problem) {
  if (!TakePosition(options, source, problem) || !TakeLocal(options, source, problem)) return false;
  for (const double rms : {options.hrms, options.vrms}) {
    if (std::isfinite(rms) && rms >= 0.0) continue;
    problem = "--hrms and --vrms take the RMS of the position, 0 or more.";
    return false;
  }
  source.description = options.description;
  source.hrms = options.hrms;
  source.vrms = options.vrms;
  source.useHorizontal = !options.noHorizontal;
  source.useVertical = !options.noVertical;
  return true;
}

}  // namespace

bool TakeLocalizationRequest(const LocalizeOptions& options, LocalizationRequest& request,
                             std::string& problem) {
  if (options.adds() && !TakeControlPoint(options, request.add.emplace(), problem)) return false;
  request.remove = options.remove;
  request.toggleHorizontal = options.toggleHorizontal;
  request.toggleVertical = options.toggleVertical;
  request.from = options.from;
  request.horizontal = ParseHorizontalMethod(options.method);
  request.vertical = ParseVerticalMethod(options.heights);
  request.scale = options.scale;
  request.on = options.on;
  request.off = options.off;
  return true;
}

void AddLocalizeOptions(Command& command, LocalizeOptions& options) {
  AddPointOptions(command, options);
  AddListOptions(command, options);
  AddFitOptions(command, options);
}

}  // namespace tarvex
