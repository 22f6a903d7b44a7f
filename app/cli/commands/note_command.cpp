// tarvex note: the notes and the GNSS quality of a point.
#include "app/cli/command_line.h"
#include "app/cli/conversion_text.h"
#include "app/cli/json_text.h"
#include "app/workflow/job_calculator.h"
#include "app/workflow/job_session.h"
#include "app/workflow/raw_positions.h"
#include "core/coordinates/point_store.h"
#include "core/observations/job_unit.h"
#include "core/observations/point_notes.h"
#include "gnss/quality/point_quality.h"

namespace tarvex {
namespace {

struct NoteOptions {
  std::string job;
  std::string id;
  std::vector<std::string> added;
  bool heights = false;
  bool json = false;
};

void PrintNote(const NoteOptions& options, const PointNote& note, Program& program) {
  if (!options.json) {
    program.console.Print(PointNoteBlock(note));
    if (TellsNoPrecision(note.qualityLines)) {
      program.console.PrintError(
          "The receiver told no precision of this point: 0.000 is unknown.\n");
    }
    return;
  }
  Json quality = Json::EmptyObject();
  std::string_view rest = note.qualityLines;
  while (const auto line = TakeLine(rest)) {
    const std::size_t comma = std::min(line->find(','), line->size());
    quality[std::string(line->substr(0, comma))] = line->substr(std::min(comma + 1, line->size()));
  }
  Json json = {{"id", note.pointId}, {"notes", note.lines}, {"quality", std::move(quality)}};
  if (!note.qualityLines.empty()) {
    json["precision_known"] = !TellsNoPrecision(note.qualityLines);
  }
  program.console.Print(JsonText(json));
}

// How the position of the mark becomes the point's coordinates, as the job makes them now.
ExitCode PrintHeights(const NoteOptions& options, JobSession& session, Program& program) {
  Job& job = session.job();
  std::string raw;
  std::string problem;
  CTrgCalculator calculator;
  CoordinateSystems systems(program);
  if (!ReadRawFile(job, raw, problem) ||
      !MakeJobCalculator(session, systems, calculator, problem)) {
    return program.Fail(problem);
  }
  const auto mark = FindRawPosition(raw, options.id, job.options.unit);
  if (!mark)
    return program.Fail("The raw file holds no GNSS position of point " + options.id + ".");
  CalculationReport steps;
  GridPoint at;
  const CalculationResult result = calculator.ToGrid(*mark, at, &steps);
  if (options.json) {
    program.console.Print(JsonText({{"id", options.id}, {"steps", ExplanationJson(steps)}}));
  } else {
    program.console.Print("Point " + options.id +
                          ", from the mark (the antenna height is taken off), as the job makes it "
                          "now:\n" +
                          ExplanationText(steps));
  }
  const bool made = result == CalculationResult::Done || result == CalculationResult::DoneInPart;
  return made ? ExitCode::Done : program.Fail(CalculationText(result, steps));
}

// The note of a point that the file holds; false after a message. A point without a block has an
// empty one.
bool FindNote(Program& program, Job& job, CoordinateFile& file, const std::string& id,
              PointNote& note) {
  Point point;
  if (ReadPoint(job, id, &file, point) != ReadPointResult::Found) {
    (void)program.Fail("There is no point " + id + " in " + job.path + ".");
    return false;
  }
  FileStatus status;
  note = ReadPointNote(job, point.id.view(), status)
             .value_or(PointNote{.pointId = point.id.str(), .lines = {}, .qualityLines = ""});
  if (status.ok()) return true;
  (void)program.Fail(PointNotesPath(job) + " cannot be read: " + status.Text() + ".");
  return false;
}

bool AddLines(Program& program, Job& job, const NoteOptions& options, PointNote& note) {
  const auto unit = JobUnit::Begin(job);
  if (!unit || !FindNote(program, job, unit->coordinates(), options.id, note)) return false;
  note.lines.insert(note.lines.end(), options.added.begin(), options.added.end());
  unit->EditNote(note.pointId, {.kind = NoteEdit::Kind::Replace, .note = note});
  return unit->Commit() == ChangeResult::Done;
}

ExitCode RunNote(const NoteOptions& options, Program& program) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  Job& job = session.job();
  PointNote note;
  if (options.added.empty()) {
    const auto stream = OpenForReading(job);
    if (!stream || !FindNote(program, job, *stream, options.id, note)) return ExitCode::Failed;
  } else if (!AddLines(program, job, options, note)) {
    return ExitCode::Failed;
  }
  if (options.heights) return PrintHeights(options, session, program);
  PrintNote(options, note, program);
  return ExitCode::Done;
}

}  // namespace

void DeclareNoteCommand(Command& command) {
  NoteOptions& options = command.Runs(RunNote);
  command.Add("JOB.crd", options.job, "The job's coordinate file").Required();
  command.Add("ID", options.id, "The point").Required();
  command.Add("--add", options.added, "Add this note; line breaks make further lines");
  command.AddFlag("--heights", options.heights,
                  "Show how its position becomes its coordinates, step by step: height above the\n"
                  "ellipsoid, datum shift, geoid, localization, elevation");
  command.AddFlag("--json", options.json, "Print JSON");
  command.Footer("Example: tarvex note site.crd 100 --add \"seen from north\"");
}

}  // namespace tarvex
