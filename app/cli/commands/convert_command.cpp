// tarvex convert: positions to grid coordinates and back, line by line.
#include <map>

#include "app/cli/commands/command.h"
#include "app/cli/commands/commands.h"
#include "app/cli/conversion_text.h"
#include "app/cli/line_conversion.h"
#include "app/workflow/coordinate_systems.h"
#include "app/workflow/job_localization.h"
#include "app/workflow/job_session.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr int kMostDecimals = 15;

struct ConvertOptions {
  std::string job;
  std::string system;
  std::string definition;
  std::string datum_shift;
  std::string units = "metres";
  bool inverse = false;
  bool explain = false;
  bool strict = false;
  bool json = false;
  int decimals = -1;
};

// Says once what the lines lack, and at the end how many lines lack it.
class UndoneSteps {
 public:
  explicit UndoneSteps(Console& console) : console_(console) {}

  void Note(const std::string& sentence, std::size_t line) {
    if (lines_[sentence]++ > 0) return;
    console_.PrintError("WARNING: line " + std::to_string(line) + ": " + sentence +
                        " (--strict refuses such lines.)\n");
  }
  void TellCounts() const {
    for (const auto& [sentence, count] : lines_) {
      if (count > 1)
        console_.PrintError("WARNING: " + std::to_string(count) + " lines: " + sentence + "\n");
    }
  }

 private:
  Console& console_;
  std::map<std::string, std::size_t> lines_;
};

// The calculator of the job that is named, with its localization, or of the system.
ExitCode Prepare(const ConvertOptions& options, Program& program, CoordinateSystems& systems,
                 CTrgCalculator& calculator) {
  const int named = !options.system.empty() + !options.definition.empty() + !options.job.empty();
  if (named != 1) {
    return program.Misuse(
        "Give one of these: --system NAME, --definition FILE, or --job JOB.crd for the job's own.");
  }
  std::string problem;
  if (!options.job.empty()) {
    JobSession session(program, options.job);
    if (!session.LoadExisting()) return ExitCode::Failed;
    const bool made = systems.MakeCalculator(SystemOfSettings(session.settings()),
                                             session.job().unit, calculator, problem) &&
                      ApplyJobLocalization(session.job(), session.settings(), calculator, problem);
    return made ? ExitCode::Done : program.Fail(problem);
  }
  SystemSource source{.name = "", .definition = "", .datum_shift = options.datum_shift};
  const bool made = systems.ReadOptions(options.system, options.definition, source, problem) &&
                    systems.MakeCalculator(source, *ParseUnit(options.units), calculator, problem);
  return made ? ExitCode::Done : program.Fail(problem);
}

void TellWhatToType(ConversionWay way, Console& console) {
  const bool to_grid = way == ConversionWay::ToGrid;
  console.PrintError(std::string("Type ") +
                     (to_grid ? "latitude longitude [height]" : "northing easting [elevation]") +
                     ", a point a line; Ctrl-D ends.\n");
}

// A converted line as it is printed, and below it its steps when they are asked for.
std::string LineText(const ConvertOptions& options, ConversionWay way, std::size_t number,
                     const ConvertedLine& converted) {
  if (options.json) {
    const Json json = ConvertedJson(converted, way, number, options.explain);
    return json.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
  }
  std::string text = converted.problem.empty()
                         ? ConvertedText(converted, way, options.decimals)
                         : "ERROR: line " + std::to_string(number) + ": " + converted.problem;
  text += '\n';
  if (options.explain) text += ExplanationText(converted.report);
  return text;
}

ExitCode RunConvert(const ConvertOptions& options, Program& program) {
  CoordinateSystems systems(program);
  CTrgCalculator calculator;
  if (const ExitCode code = Prepare(options, program, systems, calculator); code != ExitCode::Done)
    return code;
  const ConversionWay way = options.inverse ? ConversionWay::ToWgs84 : ConversionWay::ToGrid;
  ExitCode exit_code = ExitCode::Done;
  UndoneSteps undone(program.console);
  if (program.console.IsTyped()) TellWhatToType(way, program.console);
  std::string line;
  for (std::size_t number = 1; !InterruptRequested() && program.console.ReadLine(line); ++number) {
    if (WithoutOuterBlanks(line).empty()) {
      if (!options.json) program.console.Print("\n");
      continue;
    }
    const ConvertedLine converted = ConvertLine(calculator, way, options.strict, line);
    program.console.Print(LineText(options, way, number, converted));
    if (!converted.problem.empty()) {
      exit_code = ExitCode::Failed;
    } else if (!converted.left_undone.empty()) {
      undone.Note(converted.left_undone, number);
    }
  }
  undone.TellCounts();
  return InterruptRequested() ? ExitCode::Failed : exit_code;
}

}  // namespace

void AddConvertCommand(CLI::App& app, Program& program) {
  Command<ConvertOptions> command(
      app, program, "convert",
      "Convert lines \"latitude longitude [height]\" to \"northing easting [elevation]\", or back",
      RunConvert);
  ConvertOptions& options = *command.options;
  CLI::App& sub = command.sub;
  sub.footer(
      "Reads the standard input: WGS84 in decimal degrees, height above the ellipsoid in metres,\n"
      "numbers separated by blanks or commas. A line that cannot be converted becomes a line\n"
      "\"ERROR: ...\", the rest goes on, and the exit code is 1.\n"
      "Example: echo 46.8 9.3 1100 | tarvex convert --system \"UTM/UTM WGS84 Zone 32\"\n"
      "         tarvex convert --inverse --job site.crd < grid.txt\n"
      "         echo 52.1 5.4 43 | tarvex convert --system NETHERLANDS/Amersfoort/RD2004 "
      "--explain");
  auto* job = sub.add_option("--job", options.job,
                             "Job whose system, unit and localization are to be used");
  sub.add_option("--system", options.system, "Coordinate system by its name (see: tarvex systems)");
  sub.add_option("--definition", options.definition, "File with the definition text of the system");
  sub.add_option("--datum-shift", options.datum_shift, kDatumShiftHelp)->excludes(job);
  sub.add_option("--units", options.units, "Unit of the grid coordinates (default: metres)")
      ->excludes(job)
      ->check(CLI::IsMember({"us-feet", "metres", "intl-feet"}));
  sub.add_flag("--inverse", options.inverse, "From grid coordinates to latitude and longitude");
  sub.add_flag("--explain", options.explain,
               "Below every line the value after each step, with its parameters, grid or geoid");
  sub.add_flag("--strict", options.strict,
               "Refuse a line when a step was left undone (a grid missing, a point outside of it)");
  auto* json = sub.add_flag("--json", options.json,
                            "Print a JSON object a line, with its steps when --explain is given");
  sub.add_option("--decimals", options.decimals,
                 "Decimals written (default: 4 of grid coordinates, 10 of degrees)")
      ->excludes(json)
      ->check(CLI::Range(0, kMostDecimals));
}

}  // namespace tarvex
