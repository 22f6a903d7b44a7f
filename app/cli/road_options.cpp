#include "app/cli/road_options.h"

#include <CLI/CLI.hpp>

#include "app/cli/number_entry.h"

namespace tarvex {

void AddRoadFileOptions(CLI::App& sub, RoadFileOptions& options) {
  sub.add_option("FILE.cl", options.file, "The centerline file")->required();
  sub.add_option("--unit", options.unit, "Unit of the file (default: metres)")
      ->check(CLI::IsMember({"us-feet", "metres", "intl-feet"}));
  sub.add_flag("--ahead-first", options.aheadFirst,
               "The file's EQ records hold the ahead station first");
}

void AddRoadViewOptions(CLI::App& sub, RoadFileOptions& options) {
  sub.add_option("--stations", options.stations,
                 "How stations are shown: 100 (12+34.50), 1000 (1+234.500) or plain "
                 "(default: 1000 in metres, 100 in feet)")
      ->check(CLI::IsMember({"100", "1000", "plain"}));
  sub.add_flag("--limits", options.useLimits, "Keep to the station limits of the .cle file");
  sub.add_flag("--json", options.json, "Print JSON");
}

void AddProfileOption(CLI::App& sub, RoadFileOptions& options) {
  auto* file = sub.add_option("--profile", options.design.profile.file,
                              "LandXML file whose profile gives design elevations");
  sub.add_option("--profile-alignment", options.design.profile.alignment,
                 "Whose profile, when the file holds several alignments")
      ->needs(file);
}

void AddDesignOptions(CLI::App& sub, RoadFileOptions& options) {
  AddProfileOption(sub, options);
  auto* section =
      sub.add_option("--template", options.design.section,
                     "Template whose surface gives the elevation beside the centerline");
  sub.add_option("--superelevation", options.design.superelevation,
                 "Grades of the lanes LEFT,RIGHT in percent, positive rising outward")
      ->needs(section);
  sub.add_flag("--level", options.design.level,
               "Without a template: the centerline's elevation holds at every offset")
      ->excludes(section);
}

void AddElevationOption(CLI::App& sub, RoadFileOptions& options) {
  sub.add_option("--elevation", options.design.elevation,
                 "Instead of --profile: the finished grade with --template, else the elevation of "
                 "the point itself");
}

CLI::Option* AddFormOption(CLI::App& sub, std::string& form) {
  return sub
      .add_option("--form", form,
                  "Of the records: plain (no ids, 6 decimals), ids (point ids, 5 decimals, curve "
                  "starts 8) or exact (ids, 12 decimals; the default)")
      ->check(CLI::IsMember({"plain", "ids", "exact"}));
}

CenterlineFormat FormOf(const std::string& form) {
  if (form == "plain") return kPlainCenterline;
  return form == "ids" ? kCenterlineWithIds : kExactCenterline;
}

void AddRoadPlaceOptions(CLI::App& sub, RoadPlaceOptions& options) {
  sub.add_option("STATION", options.station, "1234.5, 12+34.50, 1+234.500 or \"14+75 R2\"")
      ->required();
  AddNumber(sub, "OFFSET", options.offset, "Right positive (default: 0)");
}

void AddExistingOption(CLI::App& sub, std::string& existing) {
  sub.add_option("--existing", existing,
                 "When the point exists: overwrite it, store under the next free id, or cancel "
                 "(default: ask)")
      ->check(CLI::IsMember({"ask", "overwrite", "next", "cancel"}));
}

}  // namespace tarvex
