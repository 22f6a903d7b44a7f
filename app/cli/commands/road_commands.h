// The commands below `tarvex road`, added by AddRoadCommand.
#pragma once

#include "app/cli/program.h"

namespace CLI {
class App;
}  // namespace CLI

namespace tarvex {

void AddRoadCheckCommand(CLI::App& road, Program& program);
void AddRoadListCommand(CLI::App& road, Program& program);
void AddRoadPointCommand(CLI::App& road, Program& program);
void AddRoadStationCommand(CLI::App& road, Program& program);
void AddRoadStakeCommand(CLI::App& road, Program& program);
void AddRoadWriteCommand(CLI::App& road, Program& program);
void AddRoadSectionCommand(CLI::App& road, Program& program);
void AddRoadTemplateCommand(CLI::App& road, Program& program);
void AddRoadImportCommand(CLI::App& road, Program& program);
void AddRoadExportCommand(CLI::App& road, Program& program);

}  // namespace tarvex
