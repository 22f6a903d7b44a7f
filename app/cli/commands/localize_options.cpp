#include "app/cli/commands/localize_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>

namespace tarvex {
namespace {

void AddPointOptions(CLI::App& sub, LocalizeOptions& options) {
  const std::string group = "Adding a control point";
  sub.add_option("--gnss", options.gnssId,
                 "GNSS position: the last one of this point in the raw file")
      ->group(group);
  sub.add_option("--wgs84", options.wgs84,
                 "GNSS position: latitude, longitude (degrees), height (m)")
      ->expected(3)
      ->type_name("LAT LON HEIGHT")
      ->group(group);
  sub.add_option("--known", options.knownId, "Local coordinates: those of this point of the job")
      ->group(group);
  sub.add_option("--local", options.local, "Local coordinates in the job's unit")
      ->expected(3)
      ->type_name("N E EL")
      ->group(group);
  sub.add_option("--description", options.description, "Description (default: the point's id)")
      ->group(group);
  sub.add_option("--hrms", options.hrms, "Horizontal RMS of the GNSS position")->group(group);
  sub.add_option("--vrms", options.vrms, "Vertical RMS of the GNSS position")->group(group);
  sub.add_flag("--no-horizontal", options.noHorizontal, "The point takes no part horizontally")
      ->group(group);
  sub.add_flag("--no-vertical", options.noVertical, "The point takes no part vertically")
      ->group(group);
}

void AddListOptions(CLI::App& sub, LocalizeOptions& options) {
  const std::string group = "Changing the list (points by their number in it)";
  sub.add_option("--toggle-horizontal", options.toggleHorizontal,
                 "Use them horizontally, or no longer")
      ->group(group);
  sub.add_option("--toggle-vertical", options.toggleVertical, "Use them vertically, or no longer")
      ->group(group);
  sub.add_option("--remove", options.remove, "Take points off the list")->group(group);
  sub.add_option("--from", options.from, "Take the whole list from another .loc file")
      ->group(group);
}

void AddFitOptions(CLI::App& sub, LocalizeOptions& options) {
  const std::string group = "Fitting";
  sub.add_option("--method", options.method,
                 "similarity (scale, rotation, translation), fixed-scale, rotation (scale 1) or "
                 "translation")
      ->check(CLI::IsMember({"similarity", "fixed-scale", "rotation", "translation"}))
      ->group(group);
  sub.add_option("--scale", options.scale, "The scale for fixed-scale and translation")
      ->group(group);
  sub.add_option("--heights", options.heights, "shift, or an inclined plane")
      ->check(CLI::IsMember({"shift", "plane"}))
      ->group(group);
  auto* off = sub.add_flag("--off", options.off, "The job no longer uses the localization");
  off->group(group);
  sub.add_flag("--on", options.on, "The job uses it again")->excludes(off)->group(group);
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
  const double latitude = options.wgs84[0];
  const double longitude = options.wgs84[1];
  if (!AreNumbers(options.wgs84) || std::abs(latitude) > 90.0 || std::abs(longitude) > 360.0) {
    problem = "--wgs84 takes latitude, longitude (decimal degrees) and height (metres).";
    return false;
  }
  source.position =
      Geodetic{latitude * kRadiansPerDegree, longitude * kRadiansPerDegree, options.wgs84[2]};
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

void AddLocalizeOptions(CLI::App& sub, LocalizeOptions& options) {
  AddPointOptions(sub, options);
  AddListOptions(sub, options);
  AddFitOptions(sub, options);
}

}  // namespace tarvex
