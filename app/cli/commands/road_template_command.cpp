// tarvex road template new: a template from segments and slopes that are typed.
#include "app/cli/command_line.h"
#include "app/cli/number_entry.h"
#include "app/cli/result_file.h"
#include "app/cli/road_file.h"
#include "app/cli/table_text.h"
#include "app/cli/template_opening.h"
#include "core/text/number_text.h"
#include "core/text/text.h"
#include "roads/section.h"
#include "roads/stakeout.h"
#include "roads/template_file.h"
#include "roads/template_writer.h"

namespace tarvex {
namespace {

constexpr std::size_t kLongestLine = 121;  // of a template; what is behind is not read

struct NewTemplateOptions {
  std::string out;
  std::string like;
  std::vector<std::string> both;
  std::array<std::vector<std::string>, 2> surface;  // left, right
  std::array<std::vector<std::string>, 2> fill;
  std::array<std::vector<std::string>, 2> cut;
  bool overwrite = false;
};

// A slope as templates have it: -2% a grade, 4:1 a ratio, 0.15 an elevation change.
bool ParseSlope(std::string_view text, SurfaceSegment& segment) {
  text = WithoutOuterBlanks(text);
  segment.kind = SlopeKind::ElevationChange;
  if (text.ends_with("%")) {
    segment.kind = SlopeKind::Grade;
    text.remove_suffix(1);
  } else if (text.ends_with(":1")) {
    segment.kind = SlopeKind::Ratio;
    text.remove_suffix(2);
  }
  const NumberEntry number = ReadNumberEntry(text);
  segment.value = number.value;
  if (segment.kind == SlopeKind::Ratio && segment.value == 0.0) segment.kind = SlopeKind::Grade;
  return number.problem.empty();
}

// "CURBLname" or "MEDIAN,name"; false when the template has no such block.
bool TakeInsert(Program& program, const RoadTemplate& section, std::string_view entry,
                Surface& surface) {
  SurfaceInsert insert;
  insert.beforeSegment = surface.segments.size();
  const bool curb = entry.starts_with("CURBL");
  insert.kind = curb ? SurfaceInsert::Kind::Curb : SurfaceInsert::Kind::Median;
  if (!curb && !entry.starts_with("MEDIAN,")) {
    (void)program.Misuse("\"INSERT," + std::string(entry) +
                         "\" is neither INSERT,CURBLname nor INSERT,MEDIAN,name.");
    return false;
  }
  insert.name = std::string(WithoutOuterBlanks(entry.substr(curb ? 5 : 7)));
  const bool known =
      curb ? section.FindCurb(insert.name) != nullptr : section.FindMedian(insert.name) != nullptr;
  if (!known) {
    (void)program.Misuse("The template has no " + std::string(curb ? "curb \"" : "median \"") +
                         insert.name + "\" (--like FILE.tpl brings those of another one).");
    return false;
  }
  surface.inserts.push_back(std::move(insert));
  return true;
}

// "WIDTH,SLOPE,DESCRIPTION"; false after a message.
bool TakeSegment(Program& program, const RoadTemplate& section, std::string_view entry,
                 Surface& surface) {
  if (entry.starts_with("INSERT,")) return TakeInsert(program, section, entry.substr(7), surface);
  const std::size_t first = entry.find(',');
  const std::size_t second = first == std::string_view::npos ? first : entry.find(',', first + 1);
  SurfaceSegment segment;
  const NumberEntry width = ReadNumberEntry(entry.substr(0, first));
  if (first == std::string_view::npos || !width.problem.empty() || width.value < 0.0 ||
      !ParseSlope(entry.substr(first + 1, second - first - 1), segment)) {
    (void)program.Misuse("The segment \"" + std::string(entry) +
                         "\" is not WIDTH,SLOPE,DESCRIPTION with a slope like -2%, 4:1 or 0.15.");
    return false;
  }
  segment.width = width.value;
  if (second != std::string_view::npos) segment.description = entry.substr(second + 1);
  if (segment.width == 0.0 && segment.kind != SlopeKind::ElevationChange) {
    (void)program.Misuse("The segment \"" + std::string(entry) +
                         "\" has no width; only an elevation change may.");
    return false;
  }
  surface.segments.push_back(std::move(segment));
  return true;
}

bool TakeSurface(Program& program, const NewTemplateOptions& options, std::size_t side,
                 RoadTemplate& section) {
  if (options.both.empty() && options.surface[side].empty()) return true;
  Surface& surface = section.surface[side];
  surface = {};
  for (const auto* entries : {&options.both, &options.surface[side]}) {
    for (const std::string& entry : *entries) {
      if (!TakeSegment(program, section, entry, surface)) return false;
    }
  }
  return true;
}

// "HEIGHT,RATIO" for each row of a table of slopes; false after a message.
bool TakeRows(Program& program, const std::vector<std::string>& entries,
              std::vector<SlopeRow>& rows) {
  if (entries.empty()) return true;
  rows.clear();
  for (const std::string& entry : entries) {
    const auto pair = ParseNumberPair(entry);
    if (!pair || !(pair->first > 0.0) || !(pair->second > 0.0)) {
      (void)program.Misuse("The slope \"" + entry +
                           "\" is not HEIGHT,RATIO: 3,4 is 4:1 up to a height of 3.");
      return false;
    }
    rows.push_back({pair->first, pair->second});
  }
  if (rows.size() <= kMostSlopeRows) return true;
  (void)program.Misuse("A table of slopes has at most five rows.");
  return false;
}

bool LinesFit(Program& program, std::string_view text) {
  while (const auto line = TakeLine(text)) {
    if (line->size() <= kLongestLine) continue;
    (void)program.Misuse("\"" + std::string(*line) + "\" is too long for a line of a template (" +
                         std::to_string(kLongestLine) + " bytes).");
    return false;
  }
  return true;
}

void PrintSurface(Program& program, const RoadTemplate& section) {
  constexpr std::size_t kWidth = 14;
  for (const SectionPoint& point : BuildSection(section, 0.0).points) {
    program.console.Print(Right(OffsetText(point.offset, kRoadDecimals), kWidth) +
                          Right(FixedNumber(point.elevation, kRoadDecimals), kWidth) + "  " +
                          OneLine(point.description) + "\n");
  }
}

ExitCode RunNewTemplate(const NewTemplateOptions& options, Program& program) {
  RoadTemplate section;
  if (!options.like.empty()) {
    auto like = OpenTemplate(program, options.like);
    if (!like) return program.exitCode;
    for (const LineNote& note : like->notes) {
      program.Warn(options.like + " line " + std::to_string(note.line) +
                   " is not known and is left out.");
    }
    section = *std::move(like);
    section.text.clear();
  }
  for (std::size_t side = 0; side < 2; ++side) {
    if (!TakeSurface(program, options, side, section) ||
        !TakeRows(program, options.fill[side], section.fill[side].slopes) ||
        !TakeRows(program, options.cut[side], section.cut[side].slopes)) {
      return program.exitCode;
    }
  }
  if (!LinesFit(program, TemplateText(section))) return program.exitCode;
  if (!options.overwrite && program.files.Exists(options.out)) {
    return program.Fail(options.out + " exists; nothing was written. (--overwrite replaces it.)");
  }
  const FileStatus status = WriteTemplate(program.files, options.out, section);
  if (!status.ok()) {
    return program.Fail(options.out + " cannot be written: " + status.Text() + ".");
  }
  PrintSurface(program, section);
  program.console.PrintError("Wrote " + options.out + ".\n");
  return ExitCode::Done;
}

void DeclareNewTemplateCommand(Command& command) {
  NewTemplateOptions& options = command.Runs(RunNewTemplate);
  command.Add("OUT.tpl", options.out, "The template file to write").Required();
  const auto list = [&command](const char* name, std::vector<std::string>& entries,
                               const char* description) {
    command.Add(name, entries, description).Repeatable();
  };
  list("--both", options.both, "A segment of both sides, outward: WIDTH,SLOPE,DESCRIPTION");
  list("--left", options.surface[0], "A segment of the left side, behind those of --both");
  list("--right", options.surface[1], "A segment of the right side");
  list("--fill-left", options.fill[0], "A row of the fill slopes, HEIGHT,RATIO");
  list("--fill-right", options.fill[1], "The same on the right");
  list("--cut-left", options.cut[0], "A row of the cut slopes, HEIGHT,RATIO");
  list("--cut-right", options.cut[1], "The same on the right");
  command.Add("--like", options.like, "Begin with what this template holds");
  command.AddFlag("--overwrite", options.overwrite, "Replace a file that exists");
  command.Footer(
      "A slope is a grade (-2%), a ratio (4:1, positive rising outward) or an elevation change "
      "(0.15).\n"
      "INSERT,CURBLname and INSERT,MEDIAN,name in place of a segment name a curb or median of "
      "--like.\n"
      "Example: tarvex road template new road.tpl --both 3.6,-2%,EP --both 1.8,-4%,ES \\\n"
      "             --fill-left 99,3 --fill-right 99,3");
}

constexpr CommandRow kTemplateCommands[] = {
    {"new", "Make a template file", DeclareNewTemplateCommand},
};

}  // namespace

void DeclareRoadTemplateCommand(Command& command) {
  command.Commands(kTemplateCommands);
}

}  // namespace tarvex
