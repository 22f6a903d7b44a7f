// tarvex road section: the design section of a template, its catch points, its picture.
#include "app/cli/command_line.h"
#include "app/cli/json_text.h"
#include "app/cli/number_entry.h"
#include "app/cli/result_file.h"
#include "app/cli/road_file.h"
#include "app/cli/table_text.h"
#include "app/cli/template_opening.h"
#include "core/text/number_text.h"
#include "core/text/string_table.h"
#include "core/text/text.h"
#include "exchange/road_picture.h"
#include "roads/catch_point.h"
#include "roads/section.h"
#include "roads/stakeout.h"

namespace tarvex {
namespace {

constexpr std::size_t kNumberWidth = 14;

struct RoadSectionOptions {
  std::string file;
  std::string elevation;
  std::string superelevation;
  std::string groundLeft;
  std::string groundRight;
  std::string out;
  std::string svg;
  bool overwrite = false;
  bool json = false;
};

// "plane ELEVATION,SLOPE" or "0,99.0 6,98.8 10,97.9".
std::optional<GroundLine> ParseGround(std::string_view text) {
  text = WithoutOuterBlanks(text);
  if (text.starts_with("plane")) {
    const auto plane = ParseNumberPair(text.substr(5));
    return plane ? std::optional(GroundLine::Plane(plane->first, plane->second)) : std::nullopt;
  }
  std::vector<GroundLine::Vertex> vertices;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    const auto vertex = ParseNumberPair(word);
    if (!vertex) return std::nullopt;
    vertices.push_back({vertex->first, vertex->second});
    text = WithoutLeadingBlanks(text.substr(word.size()));
  }
  return GroundLine::Polyline(std::move(vertices));
}

std::string_view KindText(EarthworkKind kind) {
  return kind == EarthworkKind::Cut ? "cut" : kind == EarthworkKind::Fill ? "fill" : "none";
}

std::string CatchText(const CatchPoint& caught) {
  switch (caught.result) {
    case CatchResult::OnGrade:
      return "the edge lies on the ground";
    case CatchResult::NoCatch:
      return "no catch: the slope never meets the ground";
    case CatchResult::NoGround:
      return "the ground is not known at the edge of the road";
    case CatchResult::GroundEnds:
      return "no catch within the ground that is known";
    case CatchResult::NoSlopes:
      return "the template has no " + std::string(KindText(caught.kind)) + " slope on this side";
    case CatchResult::Caught:
      break;
  }
  std::string text = std::string(KindText(caught.kind)) + " " + ShortestNumber(caught.ratio) +
                     ":1 (row " + std::to_string(caught.row) + ") to offset " +
                     FixedNumber(caught.offset, kRoadDecimals) + ", elevation " +
                     FixedNumber(caught.elevation, kRoadDecimals) + ", height " +
                     FixedNumber(caught.height, kRoadDecimals);
  if (caught.ditchDaylights) text += "; the ditch daylights, so it is fill";
  if (caught.beyondRightOfWay) text += "; beyond the right of way";
  return text;
}

Json PointsJson(const std::vector<SectionPoint>& points) {
  Json list = Json::EmptyList();
  for (const SectionPoint& point : points) {
    list.Add({{"offset", point.offset},
              {"elevation", point.elevation},
              {"description", point.description}});
  }
  return list;
}

Json CatchJson(const CatchPoint& caught) {
  Json json{{"result", CatchText(caught)},
            {"caught", caught.result == CatchResult::Caught},
            {"kind", KindText(caught.kind)}};
  if (caught.result != CatchResult::Caught) return json;
  json.Append({{"ratio", caught.ratio},
               {"row", caught.row},
               {"offset", caught.offset},
               {"elevation", caught.elevation},
               {"height", caught.height},
               {"hinge_offset", caught.hingeOffset},
               {"hinge_elevation", caught.hingeElevation},
               {"between", PointsJson(caught.between)},
               {"breaks", PointsJson(caught.breaks)},
               {"beyond_right_of_way", caught.beyondRightOfWay}});
  return json;
}

void PrintSection(Program& program, const RoadTemplate& section, const DesignSection& design) {
  for (const LineNote& note : section.notes) {
    program.console.PrintError("Line " + std::to_string(note.line) + ": " +
                               Strings().Text(note.text, {note.argument}) + "\n");
  }
  for (const Surface& surface : section.surface) {
    for (const SurfaceInsert& insert : surface.inserts) {
      program.console.PrintError(
          std::string(insert.kind == SurfaceInsert::Kind::Curb ? "Curb " : "Median ") +
          insert.name + " is kept in the file but not part of the section.\n");
    }
  }
  for (const SectionPoint& point : design.points) {
    program.console.Print(Right(OffsetText(point.offset, kRoadDecimals), kNumberWidth) +
                          Right(FixedNumber(point.elevation, kRoadDecimals), kNumberWidth) + "  " +
                          OneLine(point.description) + "\n");
  }
}

// The ground and the catch point of a side; false after a message.
bool SettleSide(Program& program, const RoadTemplate& section, const DesignSection& design,
                Side side, const std::string& entered, SectionSide& shown) {
  if (entered.empty()) return true;
  shown.ground = ParseGround(entered);
  if (!shown.ground) {
    (void)program.Misuse("The ground \"" + entered +
                         "\" is neither \"plane ELEVATION,SLOPE\" nor pairs "
                         "\"OFFSET,ELEVATION\" of rising offsets.");
    return false;
  }
  shown.caught = FindCatchPoint(section, design, side, *shown.ground);
  return true;
}

// Nothing after a message.
std::optional<DesignSection> DesignOf(const RoadSectionOptions& options, Program& program,
                                      const RoadTemplate& section) {
  const auto elevation = EnteredNumber(program, "The elevation", options.elevation);
  if (!elevation) return std::nullopt;
  if (options.superelevation.empty()) return BuildSection(section, *elevation);
  const auto superelevation = EnteredSuperelevation(program, options.superelevation);
  if (!superelevation) return std::nullopt;
  return BuildSection(section, *elevation, superelevation);
}

void PrintResult(const RoadSectionOptions& options, Program& program, const RoadTemplate& section,
                 const DesignSection& design, const SectionSide& left, const SectionSide& right) {
  if (options.json) {
    Json json{{"file", options.file}, {"points", PointsJson(design.points)}};
    if (left.caught) json["left"] = CatchJson(*left.caught);
    if (right.caught) json["right"] = CatchJson(*right.caught);
    program.console.Print(JsonText(json));
    return;
  }
  PrintSection(program, section, design);
  if (left.caught) program.console.Print("Left:  " + CatchText(*left.caught) + "\n");
  if (right.caught) program.console.Print("Right: " + CatchText(*right.caught) + "\n");
}

ExitCode RunRoadSection(const RoadSectionOptions& options, Program& program) {
  const auto section = OpenTemplate(program, options.file);
  if (!section) return program.exitCode;
  const auto design = DesignOf(options, program, *section);
  if (!design) return program.exitCode;
  SectionSide left;
  SectionSide right;
  if (!SettleSide(program, *section, *design, Side::Left, options.groundLeft, left) ||
      !SettleSide(program, *section, *design, Side::Right, options.groundRight, right)) {
    return program.exitCode;
  }
  PrintResult(options, program, *section, *design, left, right);
  if (!options.svg.empty()) {
    const std::string svg = SectionPicture(*design, left, right, options.file);
    if (WriteResultFile(program, options.svg, svg, true) != ExitCode::Done) return ExitCode::Failed;
  }
  if (options.out.empty()) return ExitCode::Done;
  return WriteResultFile(program, options.out, section->text, options.overwrite);
}

}  // namespace

void DeclareRoadSectionCommand(Command& command) {
  RoadSectionOptions& options = command.Runs(RunRoadSection);
  command.Add("FILE.tpl", options.file, "The template file").Required();
  command.Add("--elevation", options.elevation, "Finished grade on the centerline").Required();
  command.Add("--superelevation", options.superelevation,
              "Grades of the lanes LEFT,RIGHT in percent, positive rising outward");
  command.Add("--ground-left", options.groundLeft, "Ground outward on the left side");
  command.Add("--ground-right", options.groundRight, "Ground outward on the right side");
  command.Add("--svg", options.svg, "Draw the section into this file").ValueName("FILE.svg");
  command.Add("--out", options.out, "Write the template to this file, nothing lost")
      .ValueName("FILE");
  command.AddFlag("--overwrite", options.overwrite, "Replace a file that exists");
  command.AddFlag("--json", options.json, "Print JSON");
  command.Footer(
      "Ground: \"plane 99.2,-0.01\" (elevation at the centerline, slope outward) or pairs of "
      "outward\n"
      "offset and elevation, \"0,99.0 6,98.8 10,97.9\".\n"
      "Example: tarvex road section road.tpl --elevation 100 --ground-left \"plane 97.8,-0.01\"");
}

}  // namespace tarvex
