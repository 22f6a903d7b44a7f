// tarvex new: creates a job.
#include <algorithm>
#include <cerrno>
#include <span>

#include "app/cli/command_line.h"
#include "app/cli/json_events.h"
#include "app/workflow/coordinate_systems.h"
#include "app/workflow/job_session.h"
#include "app/workflow/profiles.h"
#include "app/workflow/setup_comments.h"
#include "core/coordinates/coordinate_file.h"
#include "core/observations/point_notes.h"
#include "core/raw_data/raw_file.h"
#include "core/raw_data/raw_records.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

struct NewOptions {
  std::string job;
  bool numeric = false;
  std::string units = "metres";
  std::string system;
  std::string definition;
  std::string datumShift;
  std::string geoid;
  bool southAzimuths = false;
  bool curvatureCorrection = false;
  std::string scaleFactor = "1";
  std::string name;
  std::string profile;
  bool json = false;
};

void FillSettings(const NewOptions& options, const SystemSource& source, Settings& settings) {
  settings.Set("ids", options.numeric ? "numeric" : "alphanumeric");
  settings.Set("units", options.units);
  settings.Set("azimuths", options.southAzimuths ? "south" : "north");
  settings.Set("scale_factor", options.scaleFactor);
  settings.Set("curvature_correction", options.curvatureCorrection ? "1" : "0");
  if (!options.name.empty()) settings.Set("name", options.name);
  if (!options.profile.empty()) settings.Set("profile", options.profile);
  PutSystemIntoSettings(source, settings);
}

// Everything that belongs to a job of this name; the settings, which claim the name, come last.
std::vector<std::string> JobPaths(JobSession& session) {
  const Job& job = session.job();
  return {job.path, job.path + ".redo", RawFilePath(job), PointNotesPath(job),
          session.settingsPath()};
}

// The first of these files that exists; empty when none does.
std::string FirstThatExists(Program& program, std::span<const std::string> paths) {
  const auto found = std::find_if(paths.begin(), paths.end(), [&](const std::string& path) {
    return program.files.Exists(path);
  });
  return found == paths.end() ? std::string() : *found;
}

ExitCode RefuseExisting(Program& program, const std::string& path) {
  return program.Fail(path + " exists; a new job overwrites nothing.");
}

// Writes the job's files. Of two programs that make a job of one name, the one that makes the
// settings file goes on; whatever is not there then is made here, and only that is removed again
// when a step fails.
ExitCode CreateFiles(Program& program, JobSession& session, const SetupFacts& facts) {
  Job& job = session.job();
  const std::vector<std::string> paths = JobPaths(session);
  const FileStatus claimed =
      CreateWholeFile(program.files, session.settingsPath(), session.settings().Text());
  if (claimed.code == EEXIST) return RefuseExisting(program, session.settingsPath());
  if (!claimed.done()) {
    return program.Fail("The job's settings " + session.settingsPath() +
                        " cannot be written: " + claimed.Text() + ".");
  }
  const std::string foreign = FirstThatExists(program, std::span(paths).first(paths.size() - 1));
  if (!foreign.empty()) {
    (void)program.files.Remove(session.settingsPath());
    return RefuseExisting(program, foreign);
  }
  const bool opened = OpenCoordinateFile(job, true) != nullptr;
  const FileStatus raw = opened ? AddRawRecords(job, SetupComments(facts)) : FileStatus{};
  if (opened && raw.ok()) return ExitCode::Done;
  for (const std::string& path : paths) (void)program.files.Remove(path);
  return program.Fail("The job " + job.path + " could not be created" +
                      (raw.ok() ? "." : ": " + RawFilePath(job) + ": " + raw.Text() + "."));
}

void TellCreated(const Job& job, const std::string& systemTitle, Console& console) {
  console.Print("Created the job " + job.path + " (" +
                (job.store.alphanumeric ? "alphanumeric" : "numeric") + " ids, " +
                std::string(UnitName(job.options.unit)) +
                ", coordinate system: " + (systemTitle.empty() ? "none" : systemTitle) + ").\n");
}

// How positions come to the job's coordinates, so that it is read before the field. A step that
// stands in for a missing one describes itself in a sentence, which was given as a warning.
void TellStep(const char* name, const std::string& description, Console& console) {
  if (!description.ends_with('.')) console.Print(name + (": " + description) + ".\n");
}

void TellSteps(const CalculationSteps& steps, Console& console) {
  if (steps.datumShift) TellStep("Datum shift", steps.datumShift->Describe(), console);
  if (steps.gridCorrection) TellStep("Grid correction", steps.gridCorrection->Describe(), console);
  if (steps.geoid) TellStep("Geoid", steps.geoid->Describe(), console);
}

// A step's description; null without the step.
Json StepJson(const auto& step) {
  return step ? Json(step->Describe()) : Json();
}

void TellCreatedAsJson(const Job& job, const std::string& systemTitle,
                       const CalculationSteps& steps, Program& program) {
  PrintEvent(program, "created",
             {{"job", job.path},
              {"alphanumeric", job.store.alphanumeric},
              {"unit", UnitKey(job.options.unit)},
              {"system", systemTitle.empty() ? Json() : Json(systemTitle)},
              {"datum_shift", StepJson(steps.datumShift)},
              {"grid_correction", StepJson(steps.gridCorrection)},
              {"geoid", StepJson(steps.geoid)}});
}

// A system that is published in feet is named so; a job in another unit may be meant, but seldom.
void TellPublishedUnit(const std::string& system, const std::string& units, Program& program) {
  const std::string name = ReadSystemChoice(system).name;
  const char* published = name.ends_with("(ftUS)") ? "us-feet"
                          : name.ends_with("(ft)") ? "intl-feet"
                                                   : nullptr;
  if (!published || units == published) return;
  program.Warn("The coordinates of " + name + " are published in feet; this job is in " + units +
               " (--units " + published + " makes one in the system's own).");
}

// What makes no sense among the options is reported.
ExitCode CheckOptions(const NewOptions& options, Program& program) {
  if (!options.job.ends_with(".crd")) {
    const bool folder = options.job.empty() || options.job.ends_with('/');
    return program.Misuse("A job's coordinate file ends in .crd: " + options.job +
                          (folder ? "site.crd?" : ".crd?"));
  }
  if (options.job.ends_with("/.crd") || options.job == ".crd") {
    return program.Misuse("The job needs a name before .crd.");
  }
  const auto scale = ParseNumber(options.scaleFactor);
  if (!scale || *scale < 0.5 || *scale > 2.0) {
    return program.Misuse("The scale factor \"" + options.scaleFactor +
                          "\" is not a number from 0.5 to 2.");
  }
  if (!options.datumShift.empty() && options.system.empty() && options.definition.empty()) {
    return program.Misuse("--datum-shift goes with --system or --definition.");
  }
  if (!options.geoid.empty() && options.system.empty() && options.definition.empty()) {
    return program.Misuse("--geoid goes with --system or --definition.");
  }
  std::string problem;
  if (!options.profile.empty() && !LoadProfile(program.files, options.profile, problem)) {
    return program.Misuse(problem);
  }
  return ExitCode::Done;
}

// The coordinate system of the options; false after a message when it cannot be used.
bool MakeSystem(const NewOptions& options, Program& program, SystemSource& source,
                CTrgCalculator& calculator) {
  source.datumShift = options.datumShift;
  if (options.system.empty() && options.definition.empty()) return true;
  std::string problem;
  CoordinateSystems systems(program);
  if (!systems.ReadOptions(options.system, options.definition, source, problem) ||
      !systems.SettleGeoid(options.geoid, source, problem) ||
      !systems.MakeCalculator(source, DistanceUnit::Metres, calculator, problem)) {
    (void)program.Fail(problem);
    return false;
  }
  TellPublishedUnit(source.name, options.units, program);
  if (source.datumShift == kNoShiftLabel) {
    program.Warn(
        "WGS84 latitude and longitude are taken for the system's own (--datum-shift "
        "NONE): coordinates can be hundreds of metres off until a localization ties the job to "
        "its control.");
  }
  return true;
}

void FillJob(const NewOptions& options, Job& job) {
  job.options.unit = *ParseUnit(options.units);
  job.options.alphanumericNewFiles = !options.numeric;
  job.options.azimuthsFromSouth = options.southAzimuths;
  job.options.scaleFactor = *ParseNumber(options.scaleFactor);
  job.options.curvatureCorrection = options.curvatureCorrection;
  if (!options.name.empty()) job.name = options.name;
}

ExitCode RunNew(const NewOptions& options, Program& program) {
  if (const ExitCode code = CheckOptions(options, program); code != ExitCode::Done) return code;
  JobSession session(program, options.job);
  if (const std::string path = FirstThatExists(program, JobPaths(session)); !path.empty()) {
    return RefuseExisting(program, path);
  }
  SystemSource source;
  CTrgCalculator calculator;
  if (!MakeSystem(options, program, source, calculator) || !session.Load()) return ExitCode::Failed;
  FillSettings(options, source, session.settings());
  FillJob(options, session.job());
  const std::string title = CoordinateSystems::SetupTitle(source, calculator);
  const ExitCode exitCode =
      CreateFiles(program, session, {.systemTitle = title, .calculator = &calculator});
  if (exitCode != ExitCode::Done) return exitCode;
  if (options.json) {
    TellCreatedAsJson(session.job(), title, calculator.steps(), program);
    return exitCode;
  }
  TellCreated(session.job(), title, program.console);
  TellSteps(calculator.steps(), program.console);
  return exitCode;
}

}  // namespace

void DeclareNewCommand(Command& command) {
  NewOptions& options = command.Runs(RunNew);
  command.Add("JOB.crd", options.job, "The coordinate file to create").Required();
  command.AddFlag("--numeric", options.numeric,
                  "Number the points 1, 2, 3 ... instead of naming them");
  command.Add("--units", options.units, "The job's distance unit (default: metres)")
      .OneOf({"us-feet", "metres", "intl-feet"});
  const Option system = command
                            .Add("--system", options.system,
                                 "Coordinate system by its name or EPSG code (see: tarvex systems)")
                            .ValueName("NAME");
  command
      .Add("--definition", options.definition,
           "File with the definition text of the coordinate system")
      .ValueName("FILE")
      .Excludes(system);
  command.Add("--datum-shift", options.datumShift, kDatumShiftHelp).ValueName("NAME");
  command
      .Add("--geoid", options.geoid,
           "Geoid model (.gtx, .bin, .pgm or .isg): elevations are heights above it; without\n"
           "one they are heights above the ellipsoid. A file of the data folder, or its path")
      .ValueName("FILE");
  command.AddFlag("--south-azimuths", options.southAzimuths, "Azimuths are measured from south");
  command.AddFlag("--curvature-correction", options.curvatureCorrection,
                  "Earth curvature and refraction are corrected");
  command
      .Add("--scale-factor", options.scaleFactor, "Grid scale factor of the raw file (default: 1)")
      .ValueName("NUMBER");
  command
      .Add("--profile", options.profile,
           "Profile with receiver, antenna, caster and limits that the job works with (see:\n"
           "tarvex profile --help)")
      .ValueName("NAME");
  command.Add("--name", options.name, "Name written into the raw file (default: the file's name)")
      .ValueName("NAME");
  command.AddFlag("--json", options.json, "Print a line of JSON: what was created");
  command.Footer(
      "Beside JOB.crd come JOB.job with the settings and JOB.rw5, the raw file.\n"
      "Example: tarvex new site.crd --units us-feet --system \"UTM/UTM WGS84 Zone 32\"\n"
      "         tarvex new site.crd --system EPSG:25832 --geoid egm2008.gtx");
}

}  // namespace tarvex
