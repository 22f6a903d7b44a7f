// tarvex import: many points from a text file in one go.
#include <optional>

#include "app/cli/command_line.h"
#include "app/cli/json_events.h"
#include "app/workflow/job_session.h"
#include "app/workflow/point_import.h"
#include "core/coordinates/coordinate_file.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr double kOddDistanceM = 50'000.0;
constexpr std::uint64_t kLargestImport = std::uint64_t{1} << 32U;

struct ImportOptions {
  std::string job;
  std::string file;
  std::string columns = "PNEZD";
  std::string separator = "comma";
  bool skipBadLines = false;
  std::string existing = "ask";
  bool json = false;
};

// What happens to points that exist: as the option says, or as the person says about all of them.
// Nothing after a message.
std::optional<ImportExisting> SettleExisting(const ImportOptions& options,
                                             const ImportConflicts& conflicts, Program& program) {
  if (options.existing == "overwrite" || conflicts.existing == 0) return ImportExisting::Overwrite;
  if (options.existing == "skip") return ImportExisting::Skip;
  const std::string exist =
      std::to_string(conflicts.existing) +
      (conflicts.existing == 1 ? " of the points exists (" : " of the points exist (") +
      conflicts.example + (conflicts.existing == 1 ? "" : ", ...") + ")" +
      (conflicts.measured == 0 ? ""
                               : ", " + std::to_string(conflicts.measured) +
                                     " of them measured; a replaced point loses its GNSS quality") +
      ".";
  std::string answer;
  if (options.existing == "ask" &&
      program.console.Ask(exist + "\nOverwrite them, skip them, or cancel? [o/s/C] ", answer)) {
    if (answer == "o" || answer == "O") return ImportExisting::Overwrite;
    if (answer == "s" || answer == "S") return ImportExisting::Skip;
    (void)program.Fail("Nothing was stored.");
    return std::nullopt;
  }
  (void)program.Fail(exist + " Nothing was stored. (--existing overwrite or skip decides.)");
  return std::nullopt;
}

char SeparatorOf(const std::string& name) {
  return name == "semicolon" ? ';' : name == "tab" ? '\t' : name == "blank" ? ' ' : ',';
}

std::string Count(std::size_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

ExitCode StoreImport(const PointImport& import, const ImportOptions& options, JobSession& session,
                     Program& program) {
  const auto conflicts = FindImportConflicts(session, import);
  if (!conflicts) return ExitCode::Failed;
  if (conflicts->awayM > kOddDistanceM) {
    program.Warn("The points of " + options.file + " are " +
                 FixedNumber(conflicts->awayM / 1000.0, 0) +
                 " km from those of the job. Are northing and easting in their columns?");
  }
  const auto existing = SettleExisting(options, *conflicts, program);
  if (!existing) return program.exitCode;
  const ImportResult result = StorePointImport(session, import, *existing, options.file);
  if (!result.done) return ExitCode::Failed;
  const ExitCode code = import.badLines.empty() ? ExitCode::Done : ExitCode::Failed;
  if (options.json) {
    PrintEvent(program, "imported",
               {{"job", session.job().path},
                {"file", options.file},
                {"stored", result.stored},
                {"replaced", result.replaced},
                {"skipped", result.skipped},
                {"bad_lines", import.badLines.size()}});
    return code;
  }
  std::string told = "Stored " + Count(result.stored, "point") + " from " + options.file;
  if (result.replaced > 0) told += ", " + std::to_string(result.replaced) + " over existing ones";
  if (result.skipped > 0)
    told += "; " + Count(result.skipped, "existing point") + " left as before";
  program.console.Print(told + ".\n");
  return code;
}

ExitCode RunImport(const ImportOptions& options, Program& program) {
  if (!IsColumnOrder(options.columns)) {
    return program.Misuse("\"" + options.columns +
                          "\" does not name the columns: P, N, E and Z once each, D and -.");
  }
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  if (!OpenForReading(session.job())) return ExitCode::Failed;  // tells what ids the job has
  std::string text;
  const FileStatus status = ReadWholeFile(program.files, options.file, kLargestImport, text);
  if (!status.ok()) return program.Fail(options.file + " cannot be read: " + status.Text() + ".");
  const PointImport import = ParsePointImport(
      session.job(), text, {.order = options.columns, .separator = SeparatorOf(options.separator)});
  if (import.headingLine != 0) {
    program.console.PrintError("Line " + std::to_string(import.headingLine) +
                               " is a heading; it was passed over.\n");
  }
  for (const BadLine& bad : import.badLines) {
    (void)program.Fail(options.file + " line " + std::to_string(bad.number) + ": " + bad.problem);
  }
  if (!import.badLines.empty() && !options.skipBadLines) {
    return program.Fail("Nothing was stored. (--skip-bad-lines stores the other lines.)");
  }
  if (import.points.empty()) return program.Fail(options.file + " holds no points.");
  return StoreImport(import, options, session, program);
}

}  // namespace

void DeclareImportCommand(Command& command) {
  ImportOptions& options = command.Runs(RunImport);
  command.Add("JOB.crd", options.job, "The job's coordinate file").Required();
  command
      .Add("FILE", options.file,
           "Lines ID,NORTHING,EASTING,ELEVATION[,DESCRIPTION]; # starts a comment line")
      .Required();
  command
      .Add("--columns", options.columns,
           "A letter a column: P id, N northing, E easting, Z elevation, D description,\n"
           "- passed over (default: PNEZD)")
      .ValueName("LETTERS");
  command
      .Add("--separator", options.separator,
           "Between two columns: comma, semicolon, tab or blank (default: comma)")
      .OneOf({"comma", "semicolon", "tab", "blank"});
  command.AddFlag("--skip-bad-lines", options.skipBadLines,
                  "Store the good lines although others are bad");
  command
      .Add("--existing", options.existing,
           "When points exist: overwrite them, skip them, or cancel (default: ask once for\n"
           "all, cancel when nobody is there to ask)")
      .OneOf({"ask", "overwrite", "skip", "cancel"});
  command.AddFlag("--json", options.json, "Print a line of JSON: how many points were stored");
  command.Footer(
      "Each bad line is named, and then nothing is stored. A line: "
      "BM1,5184900,520300,1100.25,bench\n"
      "Example: tarvex import site.crd control.csv\n"
      "         tarvex import site.crd total.txt --columns PENZD --separator blank");
}

}  // namespace tarvex
