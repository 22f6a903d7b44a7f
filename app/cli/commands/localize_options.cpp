#include "app/cli/commands/localize_options.h"

#include <CLI/CLI.hpp>

namespace tarvex {
namespace {

void AddPointOptions(CLI::App& sub, LocalizeOptions& options) {
  const std::string group = "Adding a control point";
  sub.add_option("--gnss", options.gnss_id,
                 "GNSS position: the last one of this point in the raw file")
      ->group(group);
  sub.add_option("--wgs84", options.wgs84,
                 "GNSS position: latitude, longitude (degrees), height (m)")
      ->expected(3)
      ->type_name("LAT LON HEIGHT")
      ->group(group);
  sub.add_option("--known", options.known_id, "Local coordinates: those of this point of the job")
      ->group(group);
  sub.add_option("--local", options.local, "Local coordinates in the job's unit")
      ->expected(3)
      ->type_name("N E EL")
      ->group(group);
  sub.add_option("--description", options.description, "Description (default: the point's id)")
      ->group(group);
  sub.add_option("--hrms", options.hrms, "Horizontal RMS of the GNSS position")->group(group);
  sub.add_option("--vrms", options.vrms, "Vertical RMS of the GNSS position")->group(group);
  sub.add_flag("--no-horizontal", options.no_horizontal, "The point takes no part horizontally")
      ->group(group);
  sub.add_flag("--no-vertical", options.no_vertical, "The point takes no part vertically")
      ->group(group);
}

void AddListOptions(CLI::App& sub, LocalizeOptions& options) {
  const std::string group = "Changing the list (points by their number in it)";
  sub.add_option("--toggle-horizontal", options.toggle_horizontal, "Use horizontally, or no more")
      ->group(group);
  sub.add_option("--toggle-vertical", options.toggle_vertical, "Use vertically, or no more")
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

}  // namespace

void AddLocalizeOptions(CLI::App& sub, LocalizeOptions& options) {
  AddPointOptions(sub, options);
  AddListOptions(sub, options);
  AddFitOptions(sub, options);
}

}  // namespace tarvex
