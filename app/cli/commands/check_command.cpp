// tarvex check: whether the files of a job agree.
#include <array>

#include "app/cli/command_line.h"
#include "app/cli/json_text.h"
#include "app/workflow/job_check.h"
#include "app/workflow/job_session.h"
#include "core/observations/point_notes.h"
#include "core/raw_data/raw_file.h"

namespace tarvex {
namespace {

struct CheckOptions {
  std::string job;
  bool json = false;
};

// The word for other programs, and the sentence: %p the point, %l the line, %1 to %6 the arguments,
// %c %r %n %j the paths of the coordinate file, the raw file, the notes and the settings.
struct FaultText {
  JobFault fault;
  std::string_view kind;
  std::string_view sentence;
};

constexpr auto kFaultTexts = std::to_array<FaultText>({
    {JobFault::SettingsMissing, "settings-missing",
     "%j is missing: unit, coordinate system and limits of the job are lost."},
    {JobFault::SettingUnused, "setting-unused", "%j: %1"},
    {JobFault::RawFileMissing, "raw-file-missing", "%r is missing: no point has an observation."},
    {JobFault::UnitContradicts, "unit", "The unit of %j is %1, but %r was begun in %2."},
    {JobFault::AzimuthsContradict, "azimuths",
     "Azimuths are from %1 in %j, but %r was begun with azimuths from %2."},
    {JobFault::LayoutContradicts, "layout", "%c is %1, but %r says that it is %2."},
    {JobFault::FileLeft, "file-left",
     "%1 is left of an interrupted change; it means nothing and can be removed."},
    {JobFault::CountContradicts, "count",
     "The header of %c counts to %1, but the file has records up to number %2."},
    {JobFault::TrailingBytes, "trailing-bytes",
     "%c ends in the middle of a record: its last %1 bytes are no point."},
    {JobFault::OutOfOrder, "order",
     "Point %p comes behind %1 in %c: the file is not in the order of its ids, and points are not "
     "found."},
    {JobFault::IdTwice, "id-twice", "Point %p is twice in %c."},
    {JobFault::RecordBroken, "record-broken", "%r line %l is cut short or damaged: \"%1\""},
    {JobFault::NoCoordinates, "no-coordinates",
     "Point %p was stored (%r line %l), but it is not in %c and was not deleted."},
    {JobFault::NoObservation, "no-observation", "Point %p is in %c, but %r has no record of it."},
    {JobFault::StillThere, "still-there", "Point %p was deleted (%r line %l), but it is in %c."},
    {JobFault::CoordinatesDiffer, "coordinates",
     "Point %p is at N %1, E %2, EL %3, but its last record (%r line %l) says N %4, E %5, EL %6."},
    {JobFault::QualityOnTyped, "quality-of-typed",
     "Point %p was typed or computed, but %n line %l gives it the quality of a GNSS position."},
    {JobFault::QualityMissing, "quality-missing",
     "Point %p is a GNSS position, but %n has no quality of it."},
    {JobFault::NoteTwice, "note-twice", "Point %p has a second block in %n, line %l."},
    {JobFault::NoteWithoutPoint, "note-without-point",
     "%n line %l is about point %p, which there is not and never was."},
});

constexpr const char* kFinished =
    "The last work on the job was interrupted; what it had begun is finished now.\n";

constexpr bool CoversEveryFault() {
  for (std::size_t i = 0; i < kFaultTexts.size(); ++i) {
    if (kFaultTexts[i].fault != static_cast<JobFault>(i)) return false;
  }
  return kFaultTexts.size() == static_cast<std::size_t>(JobFault::NoteWithoutPoint) + 1;
}
static_assert(CoversEveryFault());

const FaultText& TextOf(JobFault fault) {
  return kFaultTexts[static_cast<std::size_t>(fault)];
}

std::string Placeholder(char letter, const JobFinding& finding, const Job& job) {
  switch (letter) {
    case 'p':
      return OneLine(finding.pointId);
    case 'l':
      return std::to_string(finding.line);
    case 'c':
      return job.path;
    case 'r':
      return RawFilePath(job);
    case 'n':
      return PointNotesPath(job);
    case 'j':
      return PathWithExtension(job.path, "job");
    default:
      return finding.arguments.at(static_cast<std::size_t>(letter - '1'));
  }
}

std::string Sentence(const JobFinding& finding, const Job& job) {
  const std::string_view form = TextOf(finding.fault).sentence;
  std::string text;
  for (std::size_t i = 0; i < form.size(); ++i) {
    if (form[i] == '%') {
      text += Placeholder(form[++i], finding, job);
    } else {
      text += form[i];
    }
  }
  return text;
}

void PrintJson(const JobCheck& check, bool interrupted, const Job& job, Program& program) {
  Json findings = Json::EmptyList();
  for (const JobFinding& finding : check.findings) {
    Json one{{"kind", TextOf(finding.fault).kind}, {"text", Sentence(finding, job)}};
    if (!finding.pointId.empty()) one["id"] = finding.pointId;
    if (finding.line > 0) one["line"] = finding.line;
    findings.Add(std::move(one));
  }
  program.console.Print(JsonText({{"job", job.path},
                                  {"ok", check.findings.empty()},
                                  {"finished_an_interrupted_change", interrupted},
                                  {"points", check.points},
                                  {"raw_records", check.rawRecords},
                                  {"notes", check.notes},
                                  {"findings", std::move(findings)}}));
}

std::string Counted(std::size_t count, std::string_view what) {
  return std::to_string(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

void PrintSentences(const JobCheck& check, const Job& job, Program& program) {
  std::string text;
  for (const JobFinding& finding : check.findings) text += Sentence(finding, job) + "\n";
  const std::string lookedAt = Counted(check.points, "point") + ", " +
                               Counted(check.rawRecords, "raw record") + ", " +
                               Counted(check.notes, "note");
  const std::size_t count = check.findings.size();
  text += count == 0 ? "The job is whole: " + lookedAt + ".\n"
                     : Counted(count, "fault") + " in " + lookedAt + ".\n";
  program.console.Print(text);
}

ExitCode RunCheck(const CheckOptions& options, Program& program) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  const auto check = CheckJob(session.job(), session.settings());
  if (!check) return ExitCode::Failed;
  if (options.json) {
    PrintJson(*check, session.wasInterrupted(), session.job(), program);
  } else {
    if (session.wasInterrupted()) program.console.Print(kFinished);
    PrintSentences(*check, session.job(), program);
  }
  return check->findings.empty() ? ExitCode::Done : ExitCode::Failed;
}

}  // namespace

void DeclareCheckCommand(Command& command) {
  CheckOptions& options = command.Runs(RunCheck);
  command.Add("JOB.crd", options.job, "The job's coordinate file").Required();
  command.AddFlag("--json", options.json, "Print JSON");
  command.Footer(
      "Says what is missing, double or contradictory in coordinates, raw data, notes and "
      "settings.\n"
      "The exit code is 0 when all is well, 1 when something is wrong. Example: tarvex check "
      "site.crd");
}

}  // namespace tarvex
