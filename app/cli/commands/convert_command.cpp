// tarvex convert: positions to grid coordinates and back, line by line.
#include <map>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "app/cli/command_line.h"
#include "app/cli/conversion_text.h"
#include "app/cli/input_blocks.h"
#include "app/cli/line_conversion.h"
#include "app/workflow/coordinate_systems.h"
#include "app/workflow/job_calculator.h"
#include "app/workflow/job_session.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr int kMostDecimals = 15;

struct ConvertOptions {
  std::string file;
  std::string job;
  std::string system;
  std::string definition;
  std::string datumShift;
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
    console_.Tell(Notice::Warning, "line " + std::to_string(line) + ": " + sentence +
                                       " (--strict refuses such lines.)");
  }
  void TellCounts() const {
    for (const auto& [sentence, count] : lines_) {
      if (count > 1) console_.Tell(Notice::Warning, std::to_string(count) + " lines: " + sentence);
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
    const bool made = MakeJobCalculator(session, systems, calculator, problem);
    return made ? ExitCode::Done : program.Fail(problem);
  }
  SystemSource source{.name = "", .definition = "", .datumShift = options.datumShift};
  const bool made = systems.ReadOptions(options.system, options.definition, source, problem) &&
                    systems.MakeCalculator(source, *ParseUnit(options.units), calculator, problem);
  return made ? ExitCode::Done : program.Fail(problem);
}

void TellWhatToType(ConversionWay way, Console& console) {
  const bool toGrid = way == ConversionWay::ToGrid;
  console.PrintError(std::string("Type ") +
                     (toGrid ? "latitude longitude [height]" : "northing easting [elevation]") +
                     ", a point a line; Ctrl-D ends.\n");
}

// Lines through the calculator and on to the output, a block at a time.
class LineStream {
 public:
  LineStream(const ConvertOptions& options, const CTrgCalculator& calculator, Program& program)
      : options_(options),
        calculator_(calculator),
        program_(program),
        way_(options.inverse ? ConversionWay::ToWgs84 : ConversionWay::ToGrid),
        undone_(program.console) {}

  void Convert(const std::vector<std::string_view>& lines) {
    converted_.resize(lines.size());
    if (options_.explain) {
      for (std::size_t i = 0; i < lines.size(); ++i) {
        converted_[i] = ConvertLine(calculator_, way_, options_.strict, lines[i]);
      }
    } else {
      ConvertLines(calculator_, way_, options_.strict, lines, converted_);
    }
    for (std::size_t i = 0; i < lines.size(); ++i, ++number_) {
      Append(lines[i], converted_[i]);
    }
    Write();
  }

  ExitCode End() {
    undone_.TellCounts();
    return InterruptRequested() ? ExitCode::Failed : exitCode_;
  }

 private:
  // A converted line as it is printed, and below it its steps when they are asked for.
  void Append(std::string_view line, const ConvertedLine& converted) {
    if (converted.numbers.count == 0 && WithoutOuterBlanks(line).empty()) {
      if (!options_.json) text_ += '\n';
      return;
    }
    const bool failed = !converted.problem.empty();
    if (failed) exitCode_ = ExitCode::Failed;
    if (options_.json) {
      const Json json = ConvertedJson(converted, way_, number_, options_.explain);
      text_ += JsonLine(json);
    } else if (failed) {
      text_ += "ERROR: line " + std::to_string(number_) + ": " + converted.problem;
    } else {
      AppendConvertedText(converted, way_, options_.decimals, text_);
    }
    text_ += '\n';
    if (options_.explain && !options_.json) text_ += ExplanationText(converted.report);
    if (failed || converted.leftUndone.empty()) return;
    Write();
    undone_.Note(converted.leftUndone, number_);
  }

  void Write() {
    program_.console.Print(text_);
    text_.clear();
  }

  const ConvertOptions& options_;
  const CTrgCalculator& calculator_;
  Program& program_;
  ConversionWay way_;
  UndoneSteps undone_;
  std::vector<ConvertedLine> converted_;
  std::string text_;
  std::size_t number_ = 1;
  ExitCode exitCode_ = ExitCode::Done;
};

// Bytes of the file that is named, or of the standard input. A failure to read is reported and ends
// it.
class Input {
 public:
  Input(std::string path, Program& program) : path_(std::move(path)), program_(program) {}

  bool Open() {
    if (path_.empty()) return true;
    const FileStatus status = program_.files.Open(path_, FileAccess::Read, file_);
    return status.ok() || Fail(status);
  }

  std::size_t ReadSome(std::span<char> out) {
    if (!file_) return ReadStandardInput(out);
    std::size_t got = 0;
    const FileStatus status = file_->ReadAt(at_, out, got);
    if (!status.ok()) failed_ = !Fail(status);
    at_ += got;
    return got;
  }

  bool failed() const { return failed_; }

 private:
  bool Fail(const FileStatus& status) {
    (void)program_.Fail("The file " + path_ + " cannot be read: " + status.Text() + ".");
    return false;
  }

  std::string path_;
  Program& program_;
  std::unique_ptr<File> file_;
  std::uint64_t at_ = 0;
  bool failed_ = false;
};

ExitCode RunConvert(const ConvertOptions& options, Program& program) {
  CoordinateSystems systems(program);
  CTrgCalculator calculator;
  if (const ExitCode code = Prepare(options, program, systems, calculator); code != ExitCode::Done)
    return code;
  Input input(options.file, program);
  if (!input.Open()) return ExitCode::Failed;
  const ConversionWay way = options.inverse ? ConversionWay::ToWgs84 : ConversionWay::ToGrid;
  if (options.file.empty() && program.console.IsTyped()) TellWhatToType(way, program.console);
  InputBlocks blocks([&](std::span<char> out) { return input.ReadSome(out); });
  LineStream stream(options, calculator, program);
  std::vector<std::string_view> lines;
  while (!InterruptRequested() && blocks.Next(lines)) stream.Convert(lines);
  const ExitCode exitCode = stream.End();
  return input.failed() ? ExitCode::Failed : exitCode;
}

}  // namespace

void DeclareConvertCommand(Command& command) {
  ConvertOptions& options = command.Runs(RunConvert);
  command.Footer(
      "Reads the file, or the standard input: WGS84 in decimal degrees or degrees, minutes and\n"
      "seconds (46\u00b030'15.5\"N 9\u00b020'30\"E, 46:30:15.5 9:20:30), height above the "
      "ellipsoid in metres,\n"
      "numbers separated by blanks or commas. A line that cannot be converted becomes a line\n"
      "\"ERROR: ...\", the rest goes on, and the exit code is 1.\n"
      "Example: echo 46.8 9.3 1100 | tarvex convert --system \"UTM/UTM WGS84 Zone 32\"\n"
      "         tarvex convert --inverse --job site.crd < grid.txt\n"
      "         echo 52.1 5.4 43 | tarvex convert --system NETHERLANDS/Amersfoort/RD2004 "
      "--explain");
  command.Add("FILE", options.file, "File with the lines (default: the standard input)");
  const Option job =
      command.Add("--job", options.job, "Job whose system, unit and localization are to be used")
          .ValueName("JOB.crd");
  command
      .Add("--system", options.system,
           "Coordinate system by its name or EPSG code (see: tarvex systems)")
      .ValueName("NAME");
  command.Add("--definition", options.definition, "File with the definition text of the system")
      .ValueName("FILE");
  command.Add("--datum-shift", options.datumShift, kDatumShiftHelp).ValueName("NAME").Excludes(job);
  command.Add("--units", options.units, "Unit of the grid coordinates (default: metres)")
      .Excludes(job)
      .OneOf({"us-feet", "metres", "intl-feet"});
  command.AddFlag("--inverse", options.inverse, "From grid coordinates to latitude and longitude");
  command.AddFlag("--explain", options.explain,
                  "Below every line the value after each step, with its parameters, grid or geoid");
  command.AddFlag(
      "--strict", options.strict,
      "Refuse a line when a step was left undone (a grid missing, a point outside of it)");
  const Option json =
      command.AddFlag("--json", options.json,
                      "Print a JSON object for each line, with its steps when --explain is given");
  command
      .Add("--decimals", options.decimals,
           "Decimals written (default: 4 of grid coordinates, 10 of degrees)")
      .Excludes(json)
      .Between(0, kMostDecimals);
}

}  // namespace tarvex
