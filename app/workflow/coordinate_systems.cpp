#include "app/workflow/coordinate_systems.h"

#include <filesystem>

#include "coordsys/catalogue/grid_file_info.h"
#include "coordsys/definition/definition_check.h"
#include "coordsys/definition/definition_reader.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestDefinition = 1 << 20;
constexpr std::string_view kHowToNameShift =
    " Name one with --datum-shift, or on the line datum_shift= of the .job file of a job that "
    "exists: TOWGS84=dX,dY,dZ[,rX,rY,rZ,ppm], an NTv2 file, or NONE to take WGS84 latitude and "
    "longitude as they are.";

// Why a definition would give no coordinates or wrong ones, in sentences; empty when it does not.
std::string SeriousIssues(std::string_view definition) {
  std::string text;
  for (const DefinitionIssue& issue : CheckDefinition(definition)) {
    if (IsSerious(issue.kind)) text += (text.empty() ? "" : " ") + IssueText(issue);
  }
  return text;
}

}  // namespace

SystemSource SystemOfSettings(const Settings& settings) {
  return {.name = settings.GetOr("system", ""),
          .definition = settings.GetOr("definition", ""),
          .datumShift = settings.GetOr("datum_shift", "")};
}

void PutSystemIntoSettings(const SystemSource& source, Settings& settings) {
  if (!source.name.empty()) settings.Set("system", source.name);
  if (!source.definition.empty()) settings.Set("definition", source.definition);
  if (!source.datumShift.empty()) settings.Set("datum_shift", source.datumShift);
}

CoordinateSystems::CoordinateSystems(const Workplace& work)
    : work_(work),
      dataFolder_(DataFolder(work)),
      catalogue_(work.files, dataFolder_),
      messages_(this),
      nadConverter_(
          std::make_shared<NadConverter>(SystemNadConvLibrary(), dataFolder_, &messages_)) {
  SystemCoordSysLibrary()->SetMessages(this);
  SystemNadConvLibrary()->SetMessages(this);
}

CoordinateSystems::~CoordinateSystems() {
  SystemCoordSysLibrary()->SetMessages(nullptr);
  SystemNadConvLibrary()->SetMessages(nullptr);
}

bool CoordinateSystems::ReadOptions(const std::string& name, const std::string& file,
                                    SystemSource& source, std::string& problem) {
  if (!name.empty()) return ReadSystemOption(name, source, problem);
  if (file.empty()) return true;
  std::string text;
  const FileStatus status = ReadWholeFile(work_.files, file, kLargestDefinition, text);
  if (!status.ok()) {
    problem = "The definition " + file + " cannot be read: " + status.Text() + ".";
    return false;
  }
  source.definition = OneLineDefinition(text);
  return CheckForUse(text, file, problem);
}

bool CoordinateSystems::ReadSystemOption(const std::string& name, SystemSource& source,
                                         std::string& problem) {
  const auto found = catalogue_.Find(name);
  TellCatalogueProblems();
  if (!found) {
    problem = "There is no coordinate system \"" + name +
              "\"; `tarvex systems TEXT` searches by a part of the name.";
    return false;
  }
  const SystemChoice choice = ReadSystemChoice(name);
  source.name = choice.geoid.empty() ? found->name : found->name + ",GEOID=" + choice.geoid;
  source.definition = OneLineDefinition(found->definition);
  return true;
}

// A file that is named alone is one of the data folder, and only when it is not there, for
// `anywhere`, one of the folder that the person works in.
std::string CoordinateSystems::GeoidPath(const std::string& file, bool anywhere) const {
  const bool hasFolder = file.find('/') != std::string::npos;
  if (!hasFolder && (!anywhere || work_.files.Exists(dataFolder_ + file))) {
    return dataFolder_ + file;
  }
  std::error_code error;
  const std::string whole = std::filesystem::absolute(file, error).lexically_normal().string();
  return error ? file : whole;
}

bool CoordinateSystems::SettleGeoid(const std::string& file, SystemSource& source,
                                    std::string& problem) {
  SystemChoice choice = ReadSystemChoice(source.name);
  if (!file.empty() && !choice.geoid.empty()) {
    problem = "The geoid is named twice: --geoid " + file + " and " + source.name + ".";
    return false;
  }
  const std::string& named = file.empty() ? choice.geoid : file;
  if (named.empty()) return true;
  const std::string path = GeoidPath(named, !file.empty());
  GridFileInfo info;
  const GridStatus status = ReadGridFileInfo(work_.files, path, this, info);
  work_.observer.OnProgressEnd();
  if (!status.ok() || info.kind != GridFileKind::Geoid) {
    problem = "The geoid model cannot be used. " +
              (status.ok() ? path + " is a shift grid (tarvex grid info tells more)."
                           : status.Text() + " (It is looked for in " + dataFolder_ +
                                 " unless it is given with its path.)");
    return false;
  }
  if (file.empty()) return true;
  if (choice.name.empty()) {
    CTrgCalculator namedByDefinition;
    namedByDefinition.ParseDefinition(source.definition, nullptr);
    choice.name = Title(source, namedByDefinition);
  }
  choice.geoid = path == dataFolder_ + file ? file : path;
  source.name = WriteSystemChoice(choice);
  return true;
}

void CoordinateSystems::TellCatalogueProblems() {
  for (const std::string& problem : catalogue_.Problems()) Show("WARNING", problem);
}

// A definition that would give no coordinates or wrong ones is refused; what is merely worth
// knowing is reported.
bool CoordinateSystems::CheckForUse(std::string_view text, const std::string& file,
                                    std::string& problem) {
  for (const DefinitionIssue& issue : CheckDefinition(text)) {
    if (!IsSerious(issue.kind)) Show("WARNING", file + ": " + IssueText(issue));
  }
  problem = SeriousIssues(text);
  if (problem.empty()) return true;
  problem = file + ": " + problem;
  return false;
}

bool CoordinateSystems::MakeCalculator(const SystemSource& source, DistanceUnit unit,
                                       CTrgCalculator& calculator, std::string& problem) {
  if (source.empty()) {
    problem =
        "The job has no coordinate system, so positions have no grid coordinates; `tarvex "
        "settings JOB.crd system=NAME` gives it one that `tarvex systems` lists.";
    return false;
  }
  std::string definition = source.definition;
  if (definition.empty()) {
    const auto found = catalogue_.Find(source.name);
    TellCatalogueProblems();
    if (!found) {
      problem = "The catalogue holds no coordinate system \"" + source.name + "\".";
      return false;
    }
    definition = OneLineDefinition(found->definition);
  }
  problem = SeriousIssues(definition);
  if (!problem.empty()) {
    problem = (source.name.empty() ? "The system's definition" : source.name) + ": " + problem;
    return false;
  }
  calculator = CTrgCalculator();
  calculator.ParseDefinition(definition, this);
  calculator.SetDistanceUnit(unit);
  const StepChoice choice{.shift = source.datumShift,
                          .geoid = ReadSystemChoice(source.name).geoid,
                          .definitionGivesShift = calculator.definitionGivesShift()};
  PreparedSteps prepared = PrepareSteps(calculator.record(), choice,
                                        {.files = work_.files,
                                         .dataFolder = dataFolder_,
                                         .coordSys = SystemCoordSysLibrary(),
                                         .nadConverter = nadConverter_,
                                         .messages = &messages_,
                                         .progress = this});
  work_.observer.OnProgressEnd();
  problem = prepared.wrongChoice;
  if (!problem.empty()) return false;
  for (const std::string& limitation : prepared.problems) Show("WARNING", limitation);
  calculator.SetSteps(std::move(prepared.steps));
  if (calculator.State() == CalculationResult::Done) return true;
  problem = calculator.StateText();
  if (calculator.State() == CalculationResult::NoDatumShift) problem += kHowToNameShift;
  return false;
}

bool CoordinateSystems::KnowsDatumShift(std::string_view definition) {
  for (const DefinitionIssue& issue : CheckDefinition(definition)) {
    if (issue.kind == DefinitionIssueKind::NoDatumShift) return false;
  }
  return true;
}

std::string CoordinateSystems::Title(const SystemSource& source, const CTrgCalculator& calculator) {
  if (!source.name.empty()) return source.name;
  const std::string& name = calculator.compoundName();
  return name.empty() ? calculator.record().projectionName.str() : name;
}

std::string CoordinateSystems::SetupTitle(const SystemSource& source,
                                          const CTrgCalculator& calculator) {
  if (source.empty()) return {};
  return Title(source, calculator) +
         (source.datumShift.empty() ? "" : ", datum shift " + source.datumShift);
}

void CoordinateSystems::Show(std::string_view title, std::string_view text) {
  work_.observer.OnMessage(title, text);
}

void CoordinateSystems::Show(std::string_view text, std::size_t done, std::size_t total) {
  const std::size_t percent = total == 0 ? 100 : done * 100 / total;
  work_.observer.OnProgress(std::string(text) + " " + std::to_string(percent) + "%");
}

}  // namespace tarvex
