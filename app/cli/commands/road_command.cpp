// tarvex road: centerlines, templates, stations and stakes.
#include "app/cli/command_line.h"

namespace tarvex {

// Each is in the file of its name: road_check_command.cpp and so on; import and export are in
// road_exchange_command.cpp.
void DeclareRoadCheckCommand(Command& command);
void DeclareRoadListCommand(Command& command);
void DeclareRoadPointCommand(Command& command);
void DeclareRoadStationCommand(Command& command);
void DeclareRoadStakeCommand(Command& command);
void DeclareRoadWriteCommand(Command& command);
void DeclareRoadSectionCommand(Command& command);
void DeclareRoadTemplateCommand(Command& command);
void DeclareRoadImportCommand(Command& command);
void DeclareRoadExportCommand(Command& command);

namespace {

constexpr CommandRow kRoadCommands[] = {
    {"check", "Explain a centerline and say which of its numbers is wrong",
     DeclareRoadCheckCommand},
    {"list", "List round stations and key points with their coordinates", DeclareRoadListCommand},
    {"point", "Coordinates of a station and offset, stored if wanted", DeclareRoadPointCommand},
    {"station", "Station and offset of coordinates or of points of a job",
     DeclareRoadStationCommand},
    {"stake", "The way to a station and offset, from a receiver or a point",
     DeclareRoadStakeCommand},
    {"write", "Write the centerline to a file", DeclareRoadWriteCommand},
    {"section", "The design section of a template and where it meets the ground",
     DeclareRoadSectionCommand},
    {"template", "Templates: make a new one", DeclareRoadTemplateCommand},
    {"import", "Make a centerline file from a LandXML alignment", DeclareRoadImportCommand},
    {"export", "Write the alignment (and a profile) as LandXML", DeclareRoadExportCommand},
};

}  // namespace

void DeclareRoadCommand(Command& command) {
  command.Footer(
      "Stations are typed as 1234.5, 12+34.50 or 1+234.500; where a station equation gives the "
      "same\n"
      "number twice, \"14+75 R2\" names the region. Offsets are positive to the right.\n"
      "Start with: tarvex road check FILE.cl --svg road.svg");
  command.Commands(kRoadCommands);
}

}  // namespace tarvex
