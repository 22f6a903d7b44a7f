// tarvex road write: the centerline back into a file, as it was or restationed.
#include <algorithm>
#include <map>
#include <vector>

#include "app/cli/command_line.h"
#include "app/cli/result_file.h"
#include "app/cli/road_options.h"
#include "core/text/number_text.h"
#include "roads/centerline_writer.h"

namespace tarvex {
namespace {

constexpr int kStationDecimals = 6;

struct RoadWriteOptions {
  RoadFileOptions road;
  std::string out;
  std::string form;
  bool restation = false;
  bool normalise = false;
  bool overwrite = false;
};

// The file with new stations in its own lines, those of records that were merged into another one
// included; nothing else changes.
std::string Restationed(const OpenedRoad& road) {
  const auto& chain = road.geometry.chain;
  const auto stations = road.alignment().GeometricStations(chain);
  std::map<int, double> byLine;
  for (std::size_t i = 0; i < chain.size(); ++i) {
    if (chain[i].line > 0) byLine[chain[i].line] = stations[i];
  }
  // Backward: what a record was merged into may have been merged later.
  const auto& merged = road.road.centerline->merged;
  std::for_each(merged.rbegin(), merged.rend(), [&byLine](const auto& gone) {
    const auto kept = byLine.find(gone.into);
    if (kept != byLine.end() && gone.line > 0) byLine[gone.line] = kept->second;
  });
  std::vector<LineStation> lines;
  lines.reserve(byLine.size());
  for (const auto& [line, station] : byLine) lines.push_back({line, station});
  return WithStations(road.road.centerline->text, lines, kStationDecimals);
}

// Stations that are written count through; where the file's own jumped at its equations, they are
// other numbers than before.
void TellInternalStations(Program& program, const OpenedRoad& road) {
  if (!road.geometry.converted) return;
  program.Warn(
      "the stations of the file jumped at its equations; those written count through, "
      "and the equations give the numbers of before.");
}

ExitCode RunRoadWrite(const RoadWriteOptions& options, Program& program) {
  const bool anew = options.normalise || !options.form.empty();
  if (options.restation && anew) {
    return program.Misuse("Give --restation or --normalise (--form), not both.");
  }
  const auto road = OpenRoad(program, options.road);
  if (!road) return program.exitCode;
  const Centerline& centerline = *road->road.centerline;
  std::string text = centerline.text;
  if (options.restation || anew) TellInternalStations(program, *road);
  if (options.restation) text = Restationed(*road);
  if (anew) {
    if (!IsWritable(centerline, centerline.equations)) {
      return program.Fail("A number of the centerline is out of range; nothing was written.");
    }
    text = CenterlineText(centerline, centerline.equations, FormOf(options.form));
  }
  return WriteResultFile(program, options.out, text, options.overwrite);
}

}  // namespace

void DeclareRoadWriteCommand(Command& command) {
  RoadWriteOptions& options = command.Runs(RunRoadWrite);
  AddRoadFileOptions(command, options.road);
  command.Add("--out", options.out, "The file to write").ValueName("FILE").Required();
  command.AddFlag("--restation", options.restation,
                  "Stations by the coordinates, counted through from the start station");
  command.AddFlag("--normalise", options.normalise,
                  "Write the loaded chain anew: merged points gone, equations kept");
  AddFormOption(command, options.form);
  command.AddFlag("--overwrite", options.overwrite, "Replace a file that exists");
  command.Footer(
      "Without --restation, --normalise or --form the file is written byte for byte as it is.\n"
      "Example: tarvex road write road.cl --restation --out restationed.cl");
}

}  // namespace tarvex
