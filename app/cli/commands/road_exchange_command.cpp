// tarvex road import, tarvex road export: LandXML.
#include <utility>

#include "app/cli/command_line.h"
#include "app/cli/result_file.h"
#include "app/cli/road_options.h"
#include "app/workflow/job_session.h"
#include "core/text/number_text.h"
#include "exchange/landxml.h"
#include "exchange/road_picture.h"
#include "roads/alignment_check.h"
#include "roads/centerline_reader.h"
#include "roads/centerline_writer.h"

namespace tarvex {
namespace {

struct RoadImportOptions {
  std::string file;
  std::string out;
  std::string alignment;
  std::string form;
  std::string svg;
  bool overwrite = false;
  bool json = false;
};

std::string NamesOf(const std::vector<LandXmlAlignment>& alignments) {
  std::string names;
  for (const LandXmlAlignment& alignment : alignments) {
    names += (names.empty() ? "\"" : ", \"") + alignment.name + "\"";
  }
  return names;
}

// The one alignment of the file; nothing after a message.
std::optional<LandXmlDocument> ReadOneAlignment(const RoadImportOptions& options,
                                                Program& program) {
  std::string text;
  const FileStatus status = ReadWholeFile(program.files, options.file, kLargestLandXml, text);
  if (!status.ok()) {
    (void)program.Fail(options.file + " cannot be read: " + status.Text() + ".");
    return std::nullopt;
  }
  const bool named = !options.alignment.empty();
  auto document =
      ReadLandXml(text, named ? std::optional<std::string_view>(options.alignment) : std::nullopt);
  if (!document) {
    (void)program.Fail(options.file + ": " + document.failure().text);
    return std::nullopt;
  }
  for (const std::string& warning : document->warnings) program.Warn(warning);
  if (document->alignments.size() == 1) return *std::move(document);
  (void)program.Misuse("The file holds several alignments; choose one with --alignment: " +
                       NamesOf(document->alignments) + ".");
  return std::nullopt;
}

struct ImportCount {
  std::size_t elements = 0;
  std::size_t faults = 0;
};

void TellImport(const RoadImportOptions& options, Program& program, const LandXmlDocument& document,
                const ImportCount& count) {
  const LandXmlAlignment& alignment = document.alignments.front();
  if (options.json) {
    program.console.Print(JsonText({{"alignment", alignment.name},
                                    {"unit", UnitKey(document.unit)},
                                    {"elements", count.elements},
                                    {"faults", count.faults},
                                    {"equations", alignment.equations.size()},
                                    {"profile", alignment.profile.has_value()},
                                    {"file", options.out}}));
    return;
  }
  program.console.Print(
      "Alignment \"" + alignment.name + "\": " + std::to_string(count.elements) + " elements, " +
      std::to_string(alignment.equations.size()) +
      (alignment.equations.size() == 1 ? " station equation" : " station equations") + ", in " +
      std::string(UnitName(document.unit)) + ".\n");
  if (document.unit != DistanceUnit::Metres) {
    program.console.Print("The file does not carry its unit: --unit " +
                          std::string(UnitKey(document.unit)) + "\n");
  }
  if (alignment.profile) {
    program.console.Print(
        "Its profile is read from the same file: --profile " + options.file +
        (options.alignment.empty() ? "" : " --profile-alignment \"" + options.alignment + "\"") +
        "\n");
  }
}

// The faults that `road check` will find, told where they come in.
std::size_t TellFaults(const RoadImportOptions& options, Program& program,
                       const Outcome<RoadGeometry, AlignmentFault>& made, DistanceUnit unit) {
  if (!made) {
    program.Warn("all key points of the alignment lie at one place.");
    return 0;
  }
  std::size_t faults = 0;
  const auto findings = CheckAlignment(*made, CheckLimits::For(unit), DefaultStationStyle(unit));
  for (const CheckFinding& finding : findings) {
    if (finding.kind != FindingKind::Refused) continue;
    ++faults;
    program.Warn("FAULT: " + finding.text);
  }
  if (faults > 0) {
    program.Warn("the alignment should not be staked as it is; see: tarvex road check " +
                 options.out);
  }
  return faults;
}

ExitCode RunRoadImport(const RoadImportOptions& options, Program& program) {
  const auto document = ReadOneAlignment(options, program);
  if (!document) return program.exitCode;
  const LandXmlAlignment& alignment = document->alignments.front();
  const std::string text =
      CenterlineText(alignment.centerline, alignment.equations, FormOf(options.form));
  const ExitCode written = WriteResultFile(program, options.out, text, options.overwrite);
  if (written != ExitCode::Done) return written;
  // The road that the file gives, with the digits of its form.
  Centerline asWritten;
  if (auto chain = ReadChain(text, false)) asWritten.elements = std::move(chain->elements);
  const auto made =
      MakeRoadGeometry(asWritten, alignment.equations, CheckLimits::For(document->unit));
  if (!options.svg.empty() && made) {
    const std::string svg = AlignmentPicture(*made, alignment.name,
                                             {DefaultStationStyle(document->unit), document->unit});
    if (WriteResultFile(program, options.svg, svg, true) != ExitCode::Done) return ExitCode::Failed;
  }
  const std::size_t faults = TellFaults(options, program, made, document->unit);
  TellImport(options, program, *document, {made ? made->alignment.elements().size() : 0, faults});
  return ExitCode::Done;
}

struct RoadExportOptions {
  RoadFileOptions road;
  std::string out;
  std::string name;
  bool overwrite = false;
};

std::string NameOf(const std::string& path) {
  const std::size_t start = path.find_last_of("/\\") + 1;
  return path.substr(start, path.rfind('.') - start);
}

ExitCode RunRoadExport(const RoadExportOptions& options, Program& program) {
  const auto road = OpenRoad(program, options.road);
  if (!road) return program.exitCode;
  const auto text =
      WriteLandXml({.name = options.name.empty() ? NameOf(options.road.file) : options.name,
                    .unit = road->unit,
                    .road = &road->geometry,
                    .profile = road->design.profile ? &*road->design.profile : nullptr,
                    .program = ProgramIdentification(),
                    .written = program.clock.Now()});
  if (!text) {
    const AlignmentElement& element = road->alignment().elements()[text.failure().place];
    return program.Fail(
        "The element at " + road->StationText(element.stationStart) +
        " has no form in LandXML (a chord in place of a faulty curve, or a spiral that "
        "turns to both sides); nothing was written. See: tarvex road check " +
        options.road.file);
  }
  WarnAboutFaults(program, *road, options.road);
  return WriteResultFile(program, options.out, *text, options.overwrite);
}

}  // namespace

void DeclareRoadImportCommand(Command& command) {
  RoadImportOptions& options = command.Runs(RunRoadImport);
  command.Add("FILE.xml", options.file, "The LandXML file").Required();
  command.Add("--out", options.out, "The centerline file to write").ValueName("FILE").Required();
  command.Add("--alignment", options.alignment, "Name of the alignment, when there are several");
  AddFormOption(command, options.form);
  command.Add("--svg", options.svg, "Draw the alignment into this file").ValueName("FILE.svg");
  command.AddFlag("--overwrite", options.overwrite, "Replace a file that exists");
  command.AddFlag("--json", options.json, "Print JSON");
  command.Footer(
      "Lines, arcs, clothoids and station equations; anything else is refused by name.\n"
      "Example: tarvex road import design.xml --out road.cl");
}

void DeclareRoadExportCommand(Command& command) {
  RoadExportOptions& options = command.Runs(RunRoadExport);
  AddRoadFileOptions(command, options.road);
  AddProfileOption(command, options.road);
  command.Add("--out", options.out, "The LandXML file to write").ValueName("FILE").Required();
  command.Add("--name", options.name, "Name of the alignment (default: of the file)")
      .ValueName("NAME");
  command.AddFlag("--overwrite", options.overwrite, "Replace a file that exists");
  command.Footer("Example: tarvex road export road.cl --profile design.xml --out road.xml");
}

}  // namespace tarvex
