// tarvex systems: the coordinate systems to choose from, and the user's own.
#include "app/cli/command_line.h"
#include "app/cli/json_text.h"
#include "app/workflow/coordinate_systems.h"
#include "coordsys/definition/definition_check.h"

namespace tarvex {
namespace {

struct SystemsOptions {
  std::vector<std::string> words;
  bool json = false;
  bool own = false;
  std::optional<std::string> imported;
  std::optional<std::string> added;
  std::string definition;
  std::vector<std::string> renamed;
  std::optional<std::string> removed;
};

std::string SearchText(const SystemsOptions& options) {
  std::string text;
  for (const std::string& word : options.words) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::vector<NamedSystem> WithWords(std::vector<NamedSystem> systems, const std::string& words) {
  std::erase_if(systems,
                [&](const NamedSystem& system) { return !HasEveryWord(system.name, words); });
  return systems;
}

ExitCode PrintSystems(const SystemsOptions& options, CoordinateSystems& coordinateSystems,
                      Program& program) {
  const SystemCatalogue& catalogue = coordinateSystems.catalogue();
  coordinateSystems.TellCatalogueProblems();
  const std::string part = SearchText(options);
  const std::vector<NamedSystem> systems =
      options.own ? WithWords(catalogue.UserSystems(), part) : catalogue.Search(part);
  if (options.json) {
    Json list = Json::EmptyList();
    for (const NamedSystem& system : systems) {
      Json item = {{"name", system.name},
                   {"definition", system.definition},
                   {"datum_shift_known", CoordinateSystems::KnowsDatumShift(system.definition)}};
      if (!system.area.empty()) item["area"] = system.area;
      list.Add(std::move(item));
    }
    program.console.Print(JsonText({{"systems", std::move(list)}}));
    return systems.empty() ? ExitCode::Failed : ExitCode::Done;
  }
  for (const NamedSystem& system : systems) {
    const bool known = CoordinateSystems::KnowsDatumShift(system.definition);
    program.console.Print(system.name + (known ? "\n" : "  [needs --datum-shift]\n"));
  }
  if (!systems.empty()) return ExitCode::Done;
  if (options.own && part.empty()) return program.Fail("Your catalogue holds no systems yet.");
  return program.Fail("No coordinate system has \"" + part +
                      "\" in its name, in its area of use or as its EPSG code; fewer words find "
                      "more.");
}

ExitCode TellEdit(CatalogueResult result, const CoordinateSystems& systems,
                  const SystemCatalogue& catalogue, Program& program) {
  if (result == CatalogueResult::Done) {
    program.console.Print("Your catalogue " + systems.dataFolder() + "tarvex.csl was changed.\n");
    return ExitCode::Done;
  }
  std::string sentence = CatalogueText(result);
  if (result == CatalogueResult::FileFailed) sentence += " (" + catalogue.fileStatus().Text() + ")";
  return program.Fail(sentence);
}

SystemSource ForTrial(SystemSource source) {
  if (!CoordinateSystems::KnowsDatumShift(source.definition)) source.datumShift = kNoShiftLabel;
  return source;
}

// A definition is added only when it makes a system that can be used; how its datum lies against
// WGS84 may be left to the jobs.
ExitCode AddSystem(const SystemsOptions& options, CoordinateSystems& systems, Program& program) {
  SystemSource source;
  std::string problem;
  if (options.definition.empty()) return program.Misuse("--add NAME needs --definition FILE.");
  CTrgCalculator calculator;
  if (!systems.ReadOptions("", options.definition, source, problem) ||
      !systems.MakeCalculator(ForTrial(source), DistanceUnit::Metres, calculator, problem)) {
    return program.Fail(problem);
  }
  const CatalogueResult result = systems.catalogue().Add(*options.added, source.definition);
  return TellEdit(result, systems, systems.catalogue(), program);
}

// Why a system of another catalogue cannot be taken; empty when it can.
std::string WhyNot(const NamedSystem& system) {
  for (const DefinitionIssue& issue : CheckDefinition(system.definition)) {
    if (IsSerious(issue.kind)) return IssueText(issue);
  }
  return "";
}

ExitCode ImportSystems(const SystemsOptions& options, const CoordinateSystems& systems,
                       SystemCatalogue& catalogue, Program& program) {
  constexpr std::uint64_t kLargestCatalogue = 256u << 20;
  std::string bytes;
  const FileStatus status =
      ReadWholeFile(program.files, *options.imported, kLargestCatalogue, bytes);
  if (!status.ok()) {
    return program.Fail("The catalogue " + *options.imported + " cannot be read: " + status.Text() +
                        ".");
  }
  ExitCode exitCode = ExitCode::Done;
  std::vector<NamedSystem> usable;
  const auto found = WithWords(ReadCatalogue(bytes), SearchText(options));
  if (found.empty()) return program.Fail(*options.imported + " holds no such coordinate systems.");
  for (const NamedSystem& system : found) {
    const std::string whyNot = WhyNot(system);
    if (whyNot.empty()) {
      usable.push_back(system);
    } else {
      exitCode = program.Fail(system.name + ": " + whyNot);
    }
  }
  std::vector<CatalogueResult> results;
  const CatalogueResult edited = catalogue.AddAll(usable, results);
  if (edited == CatalogueResult::FileFailed) return TellEdit(edited, systems, catalogue, program);
  std::size_t taken = 0;
  for (std::size_t i = 0; i < results.size(); ++i) {
    if (results[i] == CatalogueResult::Done) {
      ++taken;
    } else {
      exitCode = program.Fail(usable[i].name + ": " + CatalogueText(results[i]));
    }
  }
  program.console.Print("Took " + std::to_string(taken) + " of " + std::to_string(found.size()) +
                        " systems into your catalogue " + systems.dataFolder() + "tarvex.csl.\n");
  return exitCode;
}

ExitCode RunSystems(const SystemsOptions& options, Program& program) {
  CoordinateSystems systems(program);
  SystemCatalogue& catalogue = systems.catalogue();
  if (options.added) return AddSystem(options, systems, program);
  if (options.imported) return ImportSystems(options, systems, catalogue, program);
  if (options.removed) {
    return TellEdit(catalogue.Remove(*options.removed), systems, catalogue, program);
  }
  if (options.renamed.size() == 2) {
    return TellEdit(catalogue.Rename(options.renamed[0], options.renamed[1]), systems, catalogue,
                    program);
  }
  return PrintSystems(options, systems, program);
}

}  // namespace

void DeclareSystemsCommand(Command& command) {
  SystemsOptions& options = command.Runs(RunSystems);
  command.Footer(
      "Names are paths: COUNTRY/DATUM/ZONE. A system marked [needs --datum-shift] is on a "
      "datum\n"
      "whose way to WGS84 the catalogue does not know: name one when a job is made on it.\n"
      "Example: tarvex systems zone 32\n"
      "         tarvex systems switzerland\n"
      "         tarvex systems EPSG:25832\n"
      "         tarvex systems --add \"SITE/Tunnel\" --definition tunnel.txt");
  command.Add("TEXT", options.words,
              "Part of a name, words of a name or of the area where the system is used, or an "
              "EPSG code");
  command.AddFlag("--own", options.own, "Only those of your own catalogue");
  command.AddFlag("--json", options.json, "Print JSON, with the definition texts");
  const Option add =
      command.Add("--add", options.added, "Add a system under this name to your catalogue");
  command.Add("--definition", options.definition, "File with its definition text")
      .ValueName("FILE")
      .Needs(add);
  const Option import =
      command
          .Add("--import", options.imported,
               "Take the systems of another catalogue (.csl, .sys), or those with TEXT in their "
               "names, into yours")
          .ValueName("FILE")
          .Excludes(add);
  const Option rename =
      command.Add("--rename", options.renamed, "Rename a system of your catalogue: OLD NEW")
          .Values(2)
          .Excludes(add)
          .Excludes(import);
  command.Add("--remove", options.removed, "Remove a system from your catalogue")
      .ValueName("NAME")
      .Excludes(add)
      .Excludes(import)
      .Excludes(rename);
}

}  // namespace tarvex
