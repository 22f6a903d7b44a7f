#include "app/cli/road_options.h"

#include "app/cli/number_entry.h"

namespace tarvex {

void AddRoadFileOptions(Command& command, RoadFileOptions& options) {
  command.Add("FILE.cl", options.file, "The centerline file").Required();
  command.Add("--unit", options.unit, "Unit of the file (default: metres)")
      .OneOf({"us-feet", "metres", "intl-feet"});
  command.AddFlag("--ahead-first", options.aheadFirst,
                  "The file's EQ records hold the ahead station first");
}

void AddRoadViewOptions(Command& command, RoadFileOptions& options) {
  command
      .Add("--stations", options.stations,
           "How stations are shown: 100 (12+34.50), 1000 (1+234.500) or plain "
           "(default: 1000 in metres, 100 in feet)")
      .OneOf({"100", "1000", "plain"});
  command.AddFlag("--limits", options.useLimits, "Keep to the station limits of the .cle file");
  command.AddFlag("--json", options.json, "Print JSON");
}

void AddProfileOption(Command& command, RoadFileOptions& options) {
  const Option file = command
                          .Add("--profile", options.design.profile.file,
                               "LandXML file whose profile gives design elevations")
                          .ValueName("FILE");
  command
      .Add("--profile-alignment", options.design.profile.alignment,
           "Whose profile, when the file holds several alignments")
      .Needs(file);
}

Option AddDesignOptions(Command& command, RoadFileOptions& options) {
  AddProfileOption(command, options);
  const Option section =
      command
          .Add("--template", options.design.section,
               "Template whose surface gives the elevation beside the centerline")
          .ValueName("FILE.tpl");
  command
      .Add("--superelevation", options.design.superelevation,
           "Grades of the lanes LEFT,RIGHT in percent, positive rising outward")
      .Needs(section);
  command
      .AddFlag("--level", options.design.level,
               "Without a template: the centerline's elevation holds at every offset")
      .Excludes(section);
  return section;
}

void AddElevationOption(Command& command, RoadFileOptions& options) {
  command.Add("--elevation", options.design.elevation,
              "Instead of --profile: the finished grade with --template, else the elevation of "
              "the point itself");
}

Option AddFormOption(Command& command, std::string& form) {
  return command
      .Add("--form", form,
           "Of the records: plain (no ids, 6 decimals), ids (point ids, 5 decimals, curve "
           "starts 8) or exact (ids, 12 decimals; the default)")
      .OneOf({"plain", "ids", "exact"});
}

CenterlineFormat FormOf(const std::string& form) {
  if (form == "plain") return kPlainCenterline;
  return form == "ids" ? kCenterlineWithIds : kExactCenterline;
}

void AddRoadPlaceOptions(Command& command, RoadPlaceOptions& options) {
  command.Add("STATION", options.station, "1234.5, 12+34.50, 1+234.500 or \"14+75 R2\"").Required();
  AddNumber(command, "OFFSET", options.offset, "Right positive (default: 0)");
}

void AddExistingOption(Command& command, std::string& existing) {
  command
      .Add("--existing", existing,
           "When the point exists: overwrite it, store under the next free id, or cancel "
           "(default: ask)")
      .OneOf({"ask", "overwrite", "next", "cancel"});
}

}  // namespace tarvex
