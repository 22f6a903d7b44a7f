// tarvex import: many points from a text file in one go.
#include <map>
#include <optional>

#include "app/cli/commands/command.h"
#include "app/cli/commands/commands.h"
#include "app/cli/number_entry.h"
#include "app/workflow/job_session.h"
#include "app/workflow/point_storing.h"
#include "core/coordinate_file.h"
#include "core/number_text.h"
#include "core/point_bulk.h"
#include "core/point_id.h"
#include "core/raw_file.h"
#include "core/raw_records.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestImport = std::uint64_t{1} << 32U;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct ImportOptions {
  std::string job;
  std::string file;
  bool skip_bad_lines = false;
};

// The points of a file, the full descriptions beside them, and the line each id stands on.
struct Import {
  std::vector<Point> points;
  std::vector<std::string> descriptions;
  std::map<std::string, std::size_t> line_of_id;
  std::size_t bad_lines = 0;
};

// A field off the front of a line; nothing when the line has no more.
std::optional<std::string_view> TakeField(std::optional<std::string_view>& line) {
  if (!line) return std::nullopt;
  const std::size_t comma = line->find(',');
  const std::string_view field = WithoutOuterBlanks(line->substr(0, comma));
  if (comma == std::string_view::npos) {
    line.reset();
  } else {
    line->remove_prefix(comma + 1);
  }
  return field;
}

std::string IdProblem(const Job& job, std::string_view id) {
  if (id.size() > kPointIdLength)
    return "the id \"" + OneLine(id) + "\" is longer than 9 characters.";
  return PointIdProblem(job, id);
}

// "ID,NORTHING,EASTING,ELEVATION[,DESCRIPTION]" into the import; what is wrong with it otherwise.
std::string TakeImportLine(const Job& job, std::string_view text, std::size_t number,
                           Import& import) {
  std::optional<std::string_view> line = text;
  const auto id = TakeField(line);
  double values[3] = {};
  for (int i = 0; i < 3; ++i) {
    constexpr const char* kNames[] = {"northing", "easting", "elevation"};
    const auto field = TakeField(line);
    if (!field) return "fewer than four fields.";
    const NumberEntry entry = ReadNumberEntry(*field);
    if (!entry.problem.empty()) return std::string("the ") + kNames[i] + " " + entry.problem + ".";
    values[i] = entry.value;
  }
  if (std::string problem = IdProblem(job, *id); !problem.empty()) return problem;
  const std::string_view description = WithoutOuterBlanks(line.value_or(""));
  Point point{.at = {.northing = values[0], .easting = values[1], .elevation = values[2]},
              .description = Description(description),
              .id = {}};
  if (IsEmptySlot(point)) return "a point at 0, 0, 0 without a description counts as no point.";
  point.id = job.alphanumeric ? NormalisePointId(*id) : PointId(std::to_string(*ParseInteger(*id)));
  const auto [before, is_new] = import.line_of_id.emplace(point.id.view(), number);
  if (!is_new)
    return "point " + point.id.str() + " stands on line " + std::to_string(before->second) +
           " already.";
  import.points.push_back(point);
  import.descriptions.emplace_back(description);
  return {};
}

Import ParseImport(const Job& job, std::string_view text, const std::string& file,
                   Program& program) {
  Import import;
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  for (std::size_t number = 1; const auto line = TakeLine(text); ++number) {
    if (WithoutOuterBlanks(*line).empty() || line->starts_with('#')) continue;
    const std::string problem = TakeImportLine(job, *line, number, import);
    if (problem.empty()) continue;
    (void)program.Fail(file + " line " + std::to_string(number) + ": " + problem);
    ++import.bad_lines;
  }
  return import;
}

std::vector<std::string> Records(const Import& import, const std::string& file) {
  std::vector<std::string> records{CommentRecord("Points imported from " + file)};
  for (std::size_t i = 0; i < import.points.size(); ++i) {
    records.push_back(StoredPointRecord(import.points[i], import.descriptions[i]));
  }
  return records;
}

ExitCode StoreImport(const Import& import, const ImportOptions& options, JobSession& session,
                     Program& program) {
  const StorePointsResult result = StorePoints(session.job(), import.points);
  if (result == StorePointsResult::BadPoint) return program.Fail("Nothing was stored.");
  if (result != StorePointsResult::Stored && result != StorePointsResult::StoredNotDurable) {
    return ExitCode::Failed;  // the person was told why
  }
  const std::size_t count = import.points.size();
  program.console.Print("Stored " + std::to_string(count) + (count == 1 ? " point" : " points") +
                        " from " + options.file + ".\n");
  if (AppendRawRecords(session.job(), Records(import, options.file)) != RawFileResult::Written) {
    return program.Fail("The points are stored, but the raw file " + RawFilePath(session.job()) +
                        " could not be written.");
  }
  const bool durable = result == StorePointsResult::Stored;
  return import.bad_lines == 0 && durable ? ExitCode::Done : ExitCode::Failed;
}

ExitCode RunImport(const ImportOptions& options, Program& program) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  if (!OpenForReading(session.job())) return ExitCode::Failed;  // tells what ids the job has
  std::string text;
  const FileStatus status = ReadWholeFile(program.files, options.file, kLargestImport, text);
  if (!status.ok()) return program.Fail(options.file + " cannot be read: " + status.Text() + ".");
  const Import import = ParseImport(session.job(), text, options.file, program);
  if (import.bad_lines > 0 && !options.skip_bad_lines) {
    return program.Fail("Nothing was stored. (--skip-bad-lines stores the other lines.)");
  }
  if (import.points.empty()) return program.Fail(options.file + " holds no points.");
  return StoreImport(import, options, session, program);
}

}  // namespace

void AddImportCommand(CLI::App& app, Program& program) {
  Command<ImportOptions> command(
      app, program, "import", "Store the points of a text file, over those that exist", RunImport);
  command.sub.add_option("JOB.crd", command.options->job, "The job's coordinate file")->required();
  command.sub
      .add_option("FILE", command.options->file,
                  "Lines ID,NORTHING,EASTING,ELEVATION[,DESCRIPTION]; # starts a comment line")
      ->required();
  command.sub.add_flag("--skip-bad-lines", command.options->skip_bad_lines,
                       "Store the good lines although others are bad");
  command.sub.footer(
      "Each bad line is named, and then nothing is stored. A line: "
      "BM1,5184900,520300,1100.25,bench\n"
      "Example: tarvex import site.crd control.csv");
}

}  // namespace tarvex
