// tarvex road check: the file against its own numbers.
#include <algorithm>
#include <cmath>

#include "app/cli/command_line.h"
#include "app/cli/result_file.h"
#include "app/cli/road_options.h"
#include "app/cli/table_text.h"
#include "core/text/number_text.h"
#include "core/text/string_table.h"

namespace tarvex {
namespace {

struct RoadCheckOptions {
  RoadFileOptions road;
  std::string svg;
};

std::string ShapeText(const AlignmentElement& element) {
  switch (element.shape) {
    case ElementShape::Arc:
      return "arc";
    case ElementShape::Spiral:
      return "spiral";
    case ElementShape::Tangent:
      break;
  }
  return element.fault == ElementFault::None ? "tangent" : "chord";
}

// Radius with its side; a spiral between two curvatures shows both.
std::string RadiusText(double curvature) {
  if (std::fabs(curvature) < 1e-9) return "-";
  return FixedNumber(1.0 / std::fabs(curvature), 3) + (curvature > 0.0 ? " R" : " L");
}

std::string ElementRow(const OpenedRoad& road, const AlignmentElement& e) {
  const CenterlineElement& node = road.geometry.chain[e.fromNode];
  return Left(std::string(RecordName(node)), 4) + Left(ShapeText(e), 9) +
         Right(road.StationText(e.stationStart), 16) + Right(FixedNumber(e.length, 4), 13) +
         Right(RadiusText(e.curvatureStart), 14) + Right(RadiusText(e.curvatureEnd), 14) +
         Right(e.shape == ElementShape::Spiral ? FixedNumber(e.SpiralParameter(), 3) : "", 11) +
         Right(FixedNumber(e.azimuthStart * kDegreesPerRadian, 6), 13) +
         (e.sound ? "" : "  do not stake") + "\n";
}

void PrintElements(Program& program, const OpenedRoad& road) {
  program.console.Print(Left("", 4) + Left("Element", 9) + Right("Station", 16) +
                        Right("Length", 13) + Right("Radius in", 14) + Right("Radius out", 14) +
                        Right("A", 11) + Right("Azimuth", 13) + "\n");
  for (const AlignmentElement& e : road.alignment().elements()) {
    program.console.Print(ElementRow(road, e));
  }
  program.console.Print("End " + road.StationText(road.alignment().endStation()) + ", length " +
                        FixedNumber(road.alignment().length(), kRoadDecimals) + " " +
                        std::string(UnitName(road.unit)) + "\n");
}

void AddResidual(Json& json, const char* name, const std::optional<double>& value) {
  if (value) json[name] = *value;
}

Json ElementJson(const OpenedRoad& road, const AlignmentElement& e) {
  Json json{{"record", RecordName(road.geometry.chain[e.fromNode])},
            {"line", road.geometry.chain[e.fromNode].line},
            {"element", ShapeText(e)}};
  json.Append(road.StationJson(e.stationStart));
  json["length"] = e.length;
  json["station_length"] = e.StationLength();
  json["curvature_start"] = e.curvatureStart;
  json["curvature_end"] = e.curvatureEnd;
  if (e.shape == ElementShape::Spiral) json["spiral_parameter"] = e.SpiralParameter();
  json["azimuth_start_degrees"] = e.azimuthStart * kDegreesPerRadian;
  json["azimuth_end_degrees"] = e.azimuthEnd * kDegreesPerRadian;
  json["sound"] = e.sound;
  Json residuals = Json::EmptyObject();
  AddResidual(residuals, "length", e.residuals.length);
  AddResidual(residuals, "end_radius", e.residuals.endRadius);
  AddResidual(residuals, "angle_rad", e.residuals.angle);
  AddResidual(residuals, "chord", e.residuals.chord);
  AddResidual(residuals, "azimuth_field_rad", e.residuals.azimuthField);
  AddResidual(residuals, "join_rad", e.residuals.join);
  if (e.residuals.turnAgainstSign) residuals["turn_against_sign"] = true;
  json["residuals"] = std::move(residuals);
  return json;
}

Json CheckJson(const OpenedRoad& road, const RoadCheckOptions& options,
               const std::vector<CheckFinding>& findings) {
  Json json{{"file", options.road.file}, {"unit", options.road.unit}};
  json["elements"] = Json::EmptyList();
  for (const AlignmentElement& e : road.alignment().elements()) {
    json["elements"].Add(ElementJson(road, e));
  }
  json["findings"] = Json::EmptyList();
  for (const CheckFinding& finding : findings) {
    json["findings"].Add({{"line", finding.line},
                          {"refused", finding.kind == FindingKind::Refused},
                          {"text", finding.text}});
  }
  json["skipped_lines"] = Json::EmptyList();
  for (const LineNote& note : road.road.centerline->notes) {
    json["skipped_lines"].Add(
        {{"line", note.line}, {"text", Strings().Text(note.text, {note.argument})}});
  }
  json["equations"] = Json::EmptyList();
  for (const StationEquation& equation : road.geometry.equations.equations()) {
    json["equations"].Add({{"back", equation.back}, {"ahead", equation.ahead}});
  }
  json["station_start"] = road.span.start;
  json["station_end"] = road.span.end;
  return json;
}

void PrintEquations(Program& program, const OpenedRoad& road) {
  const StationEquations& equations = road.geometry.equations;
  for (const StationEquation& equation : equations.equations()) {
    program.console.Print(
        "Equation " + FormatStation(equation.back, road.style.mode, road.style.decimals) +
        " BK = " + FormatStation(equation.ahead, road.style.mode, road.style.decimals) + " AH\n");
  }
}

void PrintFindings(Program& program, const OpenedRoad& road,
                   const std::vector<CheckFinding>& findings) {
  for (const LineNote& note : road.road.centerline->notes) {
    program.console.Print("Line " + std::to_string(note.line) + ": " +
                          Strings().Text(note.text, {note.argument}) + "\n");
  }
  for (const CheckFinding& finding : findings) {
    const std::string line =
        finding.line > 0 ? "Line " + std::to_string(finding.line) + ": " : std::string();
    program.console.Print((finding.kind == FindingKind::Refused ? "FAULT  " : "note   ") + line +
                          finding.text + "\n");
  }
  const LargestMismatch largest = FindLargestMismatch(road.alignment());
  const auto& elements = road.alignment().elements();
  program.console.Print(std::to_string(elements.size()) + " elements, largest mismatch " +
                        FixedNumber(largest.amount, 4) + " at " +
                        road.StationText(elements[largest.element].stationStart) + "\n");
}

void PrintCheck(Program& program, const OpenedRoad& road,
                const std::vector<CheckFinding>& findings) {
  PrintElements(program, road);
  PrintEquations(program, road);
  if (road.span.startLimited || road.span.endLimited) {
    program.console.Print("Station limits " + road.StationText(road.span.start) + " to " +
                          road.StationText(road.span.end) + "\n");
  }
  PrintFindings(program, road, findings);
}

ExitCode RunRoadCheck(const RoadCheckOptions& options, Program& program) {
  const auto road = OpenRoad(program, options.road);
  if (!road) return program.exitCode;
  const auto findings = CheckAlignment(road->geometry, road->limits, road->style);
  if (options.road.json) {
    program.console.Print(JsonText(CheckJson(*road, options, findings)));
  } else {
    PrintCheck(program, *road, findings);
  }
  if (!options.svg.empty()) {
    const ExitCode code =
        WriteResultFile(program, options.svg, road->Picture(options.road.file), true);
    if (code != ExitCode::Done) return code;
  }
  const bool refused = std::any_of(findings.begin(), findings.end(), [](const auto& finding) {
    return finding.kind == FindingKind::Refused;
  });
  return refused ? ExitCode::Failed : ExitCode::Done;
}

}  // namespace

void DeclareRoadCheckCommand(Command& command) {
  RoadCheckOptions& options = command.Runs(RunRoadCheck);
  AddRoadFileOptions(command, options.road);
  AddRoadViewOptions(command, options.road);
  command.Add("--svg", options.svg, "Draw the alignment into this file").ValueName("FILE.svg");
  command.Footer(
      "A FAULT marks an element that should not be staked as it is (exit code 1).\n"
      "Where coordinates and stations disagree, the coordinates win;\n"
      "tarvex road write --restation computes the stations anew.");
}

}  // namespace tarvex
