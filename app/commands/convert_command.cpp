// tarvex convert: positions to grid coordinates and back, line by line.
#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

#include "app/commands/command.h"
#include "app/commands/commands.h"
#include "app/conversion_text.h"
#include "app/coordinate_systems.h"
#include "app/job_localization.h"
#include "app/job_session.h"
#include "core/number_text.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr int kGridDecimals = 4;
constexpr int kDegreeDecimals = 10;
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
  int decimals = -1;
};

// The two or three numbers of a line; `problem` says what is wrong with it otherwise.
struct LineNumbers {
  double values[3] = {0.0, 0.0, 0.0};
  int count = 0;
};

std::optional<LineNumbers> ReadNumbers(std::string_view line, std::string& problem) {
  LineNumbers numbers;
  std::string_view rest = WithoutOuterBlanks(line);
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find_first_of(" \t,;"), rest.size());
    const std::string_view word = rest.substr(0, end);
    const auto value = ParseNumber(word);
    if (!value) {
      problem = "\"" + std::string(word) + "\" is not a number";
      return std::nullopt;
    }
    if (numbers.count == 3) {
      problem = "more than three numbers";
      return std::nullopt;
    }
    numbers.values[numbers.count++] = *value;
    rest.remove_prefix(end);
    while (!rest.empty() && std::string_view(" \t,;").find(rest[0]) != std::string_view::npos) {
      rest.remove_prefix(1);
    }
  }
  if (numbers.count >= 2) return numbers;
  problem = "two or three numbers are needed";
  return std::nullopt;
}

std::string WriteNumbers(const LineNumbers& numbers, int decimals, int height_decimals) {
  std::string text;
  AppendFixed(text, numbers.values[0], decimals);
  text += ' ';
  AppendFixed(text, numbers.values[1], decimals);
  if (numbers.count == 3) {
    text += ' ';
    AppendFixed(text, numbers.values[2], height_decimals);
  }
  return text;
}

CalculationResult Forward(const CTrgCalculator& calculator, LineNumbers& numbers,
                          CalculationReport& report) {
  const Geodetic wgs84{.latitude_rad = numbers.values[0] * kRadiansPerDegree,
                       .longitude_rad = numbers.values[1] * kRadiansPerDegree,
                       .height_m = numbers.values[2]};
  GridPoint point;
  const CalculationResult result = calculator.ToGrid(wgs84, point, &report);
  numbers.values[0] = point.northing;
  numbers.values[1] = point.easting;
  numbers.values[2] = point.elevation;
  return result;
}

CalculationResult Inverse(const CTrgCalculator& calculator, LineNumbers& numbers,
                          CalculationReport& report) {
  Geodetic wgs84;
  const CalculationResult result = calculator.ToWgs84(
      {.northing = numbers.values[0], .easting = numbers.values[1], .elevation = numbers.values[2]},
      wgs84, &report);
  numbers.values[0] = wgs84.latitude_rad * kDegreesPerRadian;
  numbers.values[1] = wgs84.longitude_rad * kDegreesPerRadian;
  numbers.values[2] = wgs84.height_m;
  return result;
}

bool OnEarth(const LineNumbers& numbers, std::string& problem) {
  const bool latitude = std::fabs(numbers.values[0]) <= 90.0;
  if (latitude && std::fabs(numbers.values[1]) <= 360.0) return true;
  problem = latitude ? "the longitude is beyond 360 degrees" : "the latitude is beyond 90 degrees";
  return false;
}

// What a line came to.
struct ConvertedLine {
  std::string text;
  std::string problem;      // why there is no text
  std::string left_undone;  // which step the text lacks, in a sentence
  std::string explanation;  // the value after every step, a line each
};

ConvertedLine ConvertLine(const ConvertOptions& options, const CTrgCalculator& calculator,
                          std::string_view line) {
  ConvertedLine converted;
  auto numbers = ReadNumbers(line, converted.problem);
  if (!numbers || (!options.inverse && !OnEarth(*numbers, converted.problem))) return converted;
  CalculationReport report;
  const CalculationResult result = options.inverse ? Inverse(calculator, *numbers, report)
                                                   : Forward(calculator, *numbers, report);
  if (options.explain) converted.explanation = ExplanationText(report);
  const std::string undone = UndoneText(report);
  if (result == CalculationResult::DoneInPart) converted.left_undone = undone;
  const bool refused = options.strict && result == CalculationResult::DoneInPart;
  if ((result != CalculationResult::Done && result != CalculationResult::DoneInPart) || refused) {
    converted.problem = undone.empty() ? CalculationText(result) : undone;
    return converted;
  }
  const int fallback = options.inverse ? kDegreeDecimals : kGridDecimals;
  const int decimals = options.decimals < 0 ? fallback : options.decimals;
  converted.text = WriteNumbers(*numbers, decimals, options.inverse ? kGridDecimals : decimals);
  return converted;
}

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
        "Give the coordinate system with --system NAME or --definition FILE, or the job with "
        "--job JOB.crd.");
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

ExitCode RunConvert(const ConvertOptions& options, Program& program) {
  CoordinateSystems systems(program);
  CTrgCalculator calculator;
  if (const ExitCode code = Prepare(options, program, systems, calculator); code != ExitCode::Done)
    return code;
  ExitCode exit_code = ExitCode::Done;
  UndoneSteps undone(program.console);
  std::string line;
  for (std::size_t number = 1; !InterruptRequested() && program.console.ReadLine(line); ++number) {
    if (WithoutOuterBlanks(line).empty()) {
      program.console.Print("\n");
      continue;
    }
    const ConvertedLine converted = ConvertLine(options, calculator, line);
    if (converted.problem.empty()) {
      program.console.Print(converted.text + "\n");
      if (!converted.left_undone.empty()) undone.Note(converted.left_undone, number);
    } else {
      program.console.Print("ERROR: line " + std::to_string(number) + ": " + converted.problem +
                            "\n");
      exit_code = ExitCode::Failed;
    }
    program.console.Print(converted.explanation);
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
      "Example: echo 46.8 9.3 1100 | tarvex convert --system \"UTM/UTM WGS84 Zone 32\"");
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
  sub.add_option("--decimals", options.decimals,
                 "Decimals written (default: 4 of grid coordinates, 10 of degrees)")
      ->check(CLI::Range(0, kMostDecimals));
}

}  // namespace tarvex
