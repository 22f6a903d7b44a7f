// tarvex road: centerlines, templates, stations and stakes.
#include <CLI/CLI.hpp>

#include "app/cli/commands/commands.h"
#include "app/cli/commands/road_commands.h"

namespace tarvex {

void AddRoadCommand(CLI::App& app, Program& program) {
  CLI::App& road =
      *app.add_subcommand("road", "Roads: check, list, compute, stake, write, exchange");
  road.require_subcommand(1);
  road.footer(
      "Stations are typed as 1234.5, 12+34.50 or 1+234.500; where a station equation gives the "
      "same\n"
      "number twice, \"14+75 R2\" names the region. Offsets are positive to the right.\n"
      "Start with: tarvex road check FILE.cl --svg road.svg");
  AddRoadCheckCommand(road, program);
  AddRoadListCommand(road, program);
  AddRoadPointCommand(road, program);
  AddRoadStationCommand(road, program);
  AddRoadStakeCommand(road, program);
  AddRoadWriteCommand(road, program);
  AddRoadSectionCommand(road, program);
  AddRoadTemplateCommand(road, program);
  AddRoadImportCommand(road, program);
  AddRoadExportCommand(road, program);
}

}  // namespace tarvex
