// tarvex import: many points from a text file in one go.
#include "app/commands/command.h"
#include "app/commands/commands.h"
#include "app/job_session.h"
#include "core/number_text.h"
#include "core/point_bulk.h"
#include "core/point_id.h"
#include "core/raw_file.h"
#include "core/raw_records.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestImport = std::uint64_t{1} << 32U;

struct ImportOptions {
  std::string job;
  std::string file;
  bool skip_bad_lines = false;
};

// "ID,NORTHING,EASTING,ELEVATION[,DESCRIPTION]"; what is wrong with it otherwise.
std::string ParseImportLine(std::string_view line, Point& point) {
  std::string_view fields[4];
  for (std::string_view& field : fields) {
    if (line.data() == nullptr) return "fewer than four fields";
    const std::size_t comma = line.find(',');
    field = line.substr(0, comma);
    line = comma == std::string_view::npos ? std::string_view() : line.substr(comma + 1);
  }
  const auto northing = ParseNumber(fields[1]);
  const auto easting = ParseNumber(fields[2]);
  const auto elevation = ParseNumber(fields[3]);
  if (!northing) return "the northing \"" + std::string(fields[1]) + "\" is not a number";
  if (!easting) return "the easting \"" + std::string(fields[2]) + "\" is not a number";
  if (!elevation) return "the elevation \"" + std::string(fields[3]) + "\" is not a number";
  if (NormalisePointId(WithoutOuterBlanks(fields[0])).empty()) return "the point id is empty";
  point = {.at = {.northing = *northing, .easting = *easting, .elevation = *elevation},
           .description = Description(WithoutOuterBlanks(line)),
           .id = PointId(WithoutOuterBlanks(fields[0]))};
  return {};
}

// The points of the text with the line each stood on.
struct Import {
  std::vector<Point> points;
  std::vector<std::size_t> lines;
  std::size_t bad_lines = 0;
};

Import ParseImport(std::string_view text, const std::string& file, Program& program) {
  Import import;
  for (std::size_t number = 1; const auto line = TakeLine(text); ++number) {
    if (WithoutOuterBlanks(*line).empty() || line->starts_with('#')) continue;
    Point point;
    const std::string problem = ParseImportLine(*line, point);
    if (problem.empty()) {
      import.points.push_back(point);
      import.lines.push_back(number);
      continue;
    }
    (void)program.Fail(file + " line " + std::to_string(number) + ": " + problem + ".");
    ++import.bad_lines;
  }
  return import;
}

ExitCode StoreImport(const Import& import, const ImportOptions& options, JobSession& session,
                     Program& program) {
  std::size_t bad = 0;
  switch (StorePoints(session.job(), import.points, &bad)) {
    case StorePointsResult::Stored:
      break;
    case StorePointsResult::BadPoint:
      return program.Fail(
          options.file + " line " + std::to_string(import.lines[bad]) + ": \"" +
          import.points[bad].id.str() +
          "\" is no point number, and this job numbers its points. Nothing was stored.");
    case StorePointsResult::Nothing:
    case StorePointsResult::NoStream:
      return ExitCode::Failed;
  }
  program.console.Print("Stored " + std::to_string(import.points.size()) + " points from " +
                        options.file + ".\n");
  std::vector<std::string> records{CommentRecord("Points imported from " + options.file)};
  for (const Point& point : import.points) {
    Point stored = point;
    stored.id = NormalisePointId(point.id.view());
    records.push_back(StoredPointRecord(stored));
  }
  if (AppendRawRecords(session.job(), records) == RawFileResult::Written) {
    return import.bad_lines == 0 ? ExitCode::Done : ExitCode::Failed;
  }
  return program.Fail("The points are stored, but the raw file " + RawFilePath(session.job()) +
                      " could not be written.");
}

ExitCode RunImport(const ImportOptions& options, Program& program) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  std::string text;
  const FileStatus status = ReadWholeFile(program.files, options.file, kLargestImport, text);
  if (!status.ok()) return program.Fail(options.file + " cannot be read: " + status.Text() + ".");
  const Import import = ParseImport(text, options.file, program);
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
}

}  // namespace tarvex
