// tarvex road write: the centerline back into a file, as it was or restationed.
#include "app/cli/commands/command.h"
#include "app/cli/commands/road_commands.h"
#include "app/cli/result_file.h"
#include "app/cli/road_options.h"
#include "core/number_text.h"
#include "roads/centerline_writer.h"

namespace tarvex {
namespace {

constexpr int kStationDecimals = 8;

struct RoadWriteOptions {
  RoadFileOptions road;
  std::string out;
  bool restation = false;
  bool normalise = false;
  bool overwrite = false;
};

// The file with new stations in its own lines; nothing else changes.
std::string Restationed(const OpenedRoad& road) {
  const auto& chain = road.geometry.chain;
  const auto stations = road.alignment().GeometricStations(chain);
  std::vector<LineStation> lines;
  for (std::size_t i = 0; i < chain.size(); ++i) {
    if (chain[i].line > 0) lines.push_back({chain[i].line, stations[i]});
  }
  return WithStations(road.road.centerline->text, lines, kStationDecimals);
}

ExitCode RunRoadWrite(const RoadWriteOptions& options, Program& program) {
  if (options.restation && options.normalise) {
    return program.Misuse("Give --restation or --normalise, not both.");
  }
  const auto road = OpenRoad(program, options.road);
  if (!road) return program.exit_code;
  std::string text = road->road.centerline->text;
  if (options.restation) text = Restationed(*road);
  if (options.normalise) {
    if (!IsWritable(*road->road.centerline, road->road.centerline->equations)) {
      return program.Fail("A number of the centerline is out of range; nothing was written.");
    }
    text = CenterlineText(*road->road.centerline, road->road.centerline->equations);
  }
  return WriteResultFile(program, options.out, text, options.overwrite);
}

}  // namespace

void AddRoadWriteCommand(CLI::App& road, Program& program) {
  Command<RoadWriteOptions> command(road, program, "write", "Write the centerline to a file",
                                    RunRoadWrite);
  RoadWriteOptions& options = *command.options;
  AddRoadFileOptions(command.sub, options.road);
  command.sub.add_option("--out", options.out, "The file to write")->required();
  command.sub.add_flag("--restation", options.restation,
                       "Stations by the coordinates, from the start station on");
  command.sub.add_flag("--normalise", options.normalise,
                       "Write the loaded chain anew: merged points gone, equations kept");
  command.sub.add_flag("--overwrite", options.overwrite, "Replace a file that exists");
  command.sub.footer(
      "Without --restation or --normalise the file is written byte for byte as it is.\n"
      "Example: tarvex road write road.cl --restation --out restationed.cl");
}

}  // namespace tarvex
