// The options that road commands share, each declared once.
#pragma once

#include <string>

#include "app/cli/command_line.h"
#include "app/cli/road_file.h"
#include "roads/centerline_writer.h"

namespace tarvex {

/// FILE.cl, --unit and --ahead-first: what the file is.
void AddRoadFileOptions(Command& command, RoadFileOptions& options);
/// --stations, --limits and --json: how the road is shown.
void AddRoadViewOptions(Command& command, RoadFileOptions& options);
/// --profile and --profile-alignment.
void AddProfileOption(Command& command, RoadFileOptions& options);
/// These and --template, --superelevation, --level: where design elevations come from. Returns
/// --template.
Option AddDesignOptions(Command& command, RoadFileOptions& options);
/// --elevation, in place of --profile.
void AddElevationOption(Command& command, RoadFileOptions& options);

/// --form: how numbers and ids of a centerline file are written.
Option AddFormOption(Command& command, std::string& form);
CenterlineFormat FormOf(const std::string& form);

/// A place of the road as it is typed.
struct RoadPlaceOptions {
  std::string station;
  double offset = 0.0;
};
/// STATION and OFFSET.
void AddRoadPlaceOptions(Command& command, RoadPlaceOptions& options);

/// --existing: what happens when the point to store exists.
void AddExistingOption(Command& command, std::string& existing);

}  // namespace tarvex
