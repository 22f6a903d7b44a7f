// tarvex note: the notes and the GNSS quality of a point.
#include "app/cli/command_line.h"
#include "app/cli/conversion_text.h"
#include "app/cli/json_text.h"
#include "app/workflow/job_calculator.h"
#include "app/workflow/job_session.h"
#include "app/workflow/raw_history.h"
#include "app/workflow/raw_positions.h"
#include "core/coordinates/point_store.h"
#include "core/observations/job_unit.h"
#include "core/observations/point_notes.h"
#include "core/raw_data/raw_fields.h"
#include "core/text/number_text.h"
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

// The height that the receiver gave, of the record in a line of the raw file, metres.
double ReceivedHeightM(std::string_view rawFile, std::size_t line) {
  std::string_view record;
  for (std::size_t i = 0; i < line; ++i) record = TakeLine(rawFile).value_or("");
  return LeadingDouble(RawField(record, "EL").value_or("0"));
}

// How a measured position becomes the point's coordinates, as the job makes them now.
ExitCode PrintHeights(const NoteOptions& options, const std::string& id, JobSession& session,
                      Program& program) {
  constexpr int kDecimals = 4;
  Job& job = session.job();
  std::string raw;
  std::string problem;
  CTrgCalculator calculator;
  CoordinateSystems systems(program);
  if (!ReadRawFile(job, raw, problem) ||
      !MakeJobCalculator(session, systems, calculator, problem)) {
    return program.Fail(problem);
  }
  const RawHistory history = ReadRawHistory(raw, job.store.alphanumeric);
  const auto last = history.points.find(HistoryKey(id, job.store.alphanumeric));
  const bool measured =
      last != history.points.end() && last->second.last == PointHistory::Last::Position;
  const auto mark = measured ? FindRawPosition(raw, id, job.options.unit) : std::nullopt;
  if (!mark) return program.Fail("Point " + id + " was not measured by GNSS.");
  const double receivedM = ReceivedHeightM(raw, last->second.line);
  CalculationReport steps;
  GridPoint at;
  const CalculationResult result = calculator.ToGrid(*mark, at, &steps);
  if (options.json) {
    program.console.Print(JsonText({{"id", id},
                                    {"received_height", receivedM},
                                    {"antenna_height", receivedM - mark->heightM},
                                    {"steps", ExplanationJson(steps)}}));
  } else {
    program.console.Print("Point " + id + ", as the job makes it now: height of the antenna " +
                          FixedNumber(receivedM, kDecimals) + " m, less " +
                          FixedNumber(receivedM - mark->heightM, kDecimals) + " m to the mark\n" +
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
  if (options.heights) return PrintHeights(options, note.pointId, session, program);
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
