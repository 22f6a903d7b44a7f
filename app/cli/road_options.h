// The options that road commands share, each declared once.
#pragma once

#include <string>

#include "app/cli/road_file.h"
#include "roads/centerline_writer.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tarvex {

/// FILE.cl, --unit and --ahead-first: what the file is.
void AddRoadFileOptions(CLI::App& sub, RoadFileOptions& options);
/// --stations, --limits and --json: how the road is shown.
void AddRoadViewOptions(CLI::App& sub, RoadFileOptions& options);
/// --profile and --profile-alignment.
void AddProfileOption(CLI::App& sub, RoadFileOptions& options);
/// These and --template, --superelevation, --level: where design elevations come from.
void AddDesignOptions(CLI::App& sub, RoadFileOptions& options);
/// --elevation, in place of --profile.
void AddElevationOption(CLI::App& sub, RoadFileOptions& options);

/// --form: how numbers and ids of a centerline file are written.
CLI::Option* AddFormOption(CLI::App& sub, std::string& form);
CenterlineFormat FormOf(const std::string& form);

/// A place of the road as it is typed.
struct RoadPlaceOptions {
  std::string station;
  double offset = 0.0;
};
/// STATION and OFFSET.
void AddRoadPlaceOptions(CLI::App& sub, RoadPlaceOptions& options);

/// --existing: what happens when the point to store exists.
void AddExistingOption(CLI::App& sub, std::string& existing);

}  // namespace tarvex
