// tarvex stake report: what was staked in a job, and how well.
#include <algorithm>

#include "app/cli/command_line.h"
#include "app/cli/result_file.h"
#include "app/cli/stake_text.h"
#include "app/cli/table_text.h"
#include "app/workflow/job_session.h"
#include "app/workflow/raw_positions.h"
#include "app/workflow/stake_report.h"
#include "core/coordinates/coordinate_file.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr int kDecimals = 4;
constexpr std::size_t kIdWidth = 10;
constexpr std::size_t kNumberWidth = 10;
constexpr std::size_t kSolutionWidth = 12;

struct StakeReportOptions {
  std::string job;
  std::string out;
  bool csv = false;
  bool html = false;
  bool json = false;
  bool overwrite = false;
};

std::string TableRow(const StakedPoint& staked, std::size_t designWidth) {
  const StakeRecord& stake = staked.stake;
  const auto number = [](double value) {
    return Right(FixedNumber(value, kDecimals), kNumberWidth);
  };
  return Left(staked.id.str(), kIdWidth) + Left(stake.design, designWidth) +
         number(stake.difference.northing) + number(stake.difference.easting) +
         (stake.designHasElevation ? number(stake.difference.elevation)
                                   : Right("-", kNumberWidth)) +
         number(stake.distance) + "  " + (stake.withinTolerance ? "yes  " : "NO   ") +
         Left(staked.solution.empty() ? "entered" : staked.solution, kSolutionWidth) + staked.date +
         " " + staked.time + "\n";
}

std::string TotalText(const char* name, const StakeTotal& total) {
  if (total.count == 0) return "";
  return std::string(name) + ": largest " + FixedNumber(total.worst, kDecimals) + " (" +
         total.worstOf + "), RMS " + FixedNumber(total.rms, kDecimals) + " of " +
         std::to_string(total.count) + "\n";
}

std::string TableText(const StakeReport& report) {
  if (report.stakes.empty()) return "Nothing was staked in this job.\n";
  std::size_t designWidth = kIdWidth;
  for (const StakedPoint& staked : report.stakes) {
    designWidth = std::max(designWidth, Columns(staked.stake.design) + 2);
  }
  std::string text = Left("Point", kIdWidth) + Left("Design", designWidth);
  for (const char* heading : {"dN", "dE", "dEL", "Distance"}) text += Right(heading, kNumberWidth);
  text += "  OK   " + Left("Solution", kSolutionWidth) + "Time\n";
  for (const StakedPoint& staked : report.stakes) text += TableRow(staked, designWidth);
  return text + std::to_string(report.stakes.size()) +
         (report.stakes.size() == 1 ? " stake, " : " stakes, ") + std::to_string(report.within) +
         " within the tolerance, " + std::string(UnitName(report.unit)) + "\n" +
         TotalText("Distance", report.horizontal) + TotalText("Elevation", report.vertical);
}

Json TotalJson(const StakeTotal& total) {
  Json json{{"count", total.count}};
  if (total.count == 0) return json;
  json["largest"] = total.worst;
  json["largest_of"] = total.worstOf;
  json["rms"] = total.rms;
  return json;
}

std::string ReportJson(const StakeReport& report) {
  Json stakes = Json::EmptyList();
  for (const StakedPoint& staked : report.stakes) {
    Json stake = StakeRecordJson(staked.stake);
    Json json{{"point", staked.id.view()},
              {"northing", staked.stake.foundAt.northing},
              {"easting", staked.stake.foundAt.easting},
              {"elevation", staked.stake.foundAt.elevation}};
    json.Append(std::move(stake));
    json["horizontal_tolerance"] = staked.stake.horizontalTolerance;
    json["vertical_tolerance"] = staked.stake.verticalTolerance;
    json["solution"] = staked.solution.empty() ? "entered" : staked.solution;
    json["date"] = staked.date;
    json["time"] = staked.time;
    stakes.Add(std::move(json));
  }
  return JsonText({{"job", report.job},
                   {"unit", UnitKey(report.unit)},
                   {"stakes", std::move(stakes)},
                   {"within_tolerance", report.within},
                   {"horizontal", TotalJson(report.horizontal)},
                   {"vertical", TotalJson(report.vertical)}});
}

ExitCode RunStakeReport(const StakeReportOptions& options, Program& program) {
  JobSession session(program, options.job);
  if (!session.LoadExisting() || !OpenForReading(session.job())) return ExitCode::Failed;
  std::string rawFile;
  std::string problem;
  if (!ReadRawFile(session.job(), rawFile, problem)) return program.Fail(problem);
  StakeReport report = MakeStakeReport(rawFile, session.job().store.alphanumeric);
  report.job = session.job().name.empty() ? options.job : session.job().name;
  report.unit = session.job().options.unit;
  for (const BrokenRecord& broken : report.broken) {
    (void)program.Fail("Line " + std::to_string(broken.line) +
                       " of the raw file is no whole stake: " + std::string(broken.text));
  }
  const std::string text = options.csv    ? StakeReportCsv(report)
                           : options.html ? StakeReportHtml(report)
                           : options.json ? ReportJson(report)
                                          : TableText(report);
  if (!options.out.empty()) {
    const ExitCode code = WriteResultFile(program, options.out, text, options.overwrite);
    return code == ExitCode::Done ? program.exitCode : code;
  }
  program.console.PrintBytes(text);
  return program.exitCode;
}

}  // namespace

void DeclareStakeReportCommand(Command& command) {
  StakeReportOptions& options = command.Runs(RunStakeReport);
  command.Add("JOB.crd", options.job, "The job's coordinate file").Required();
  command.Add("OUT", options.out, "File for the report (default: the standard output)");
  const Option csv = command.AddFlag("--csv", options.csv, "Comma-separated values");
  const Option html =
      command.AddFlag("--html", options.html, "A page to look at or print").Excludes(csv);
  command.AddFlag("--json", options.json, "Print JSON").Excludes(csv).Excludes(html);
  command.AddFlag("--overwrite", options.overwrite, "Replace OUT when it exists");
  command.Footer(
      "Each stake with its differences, found minus design, whether it is within the tolerance, "
      "the\n"
      "solution and the time; then the largest and the RMS. A stake whose point was deleted, "
      "taken\n"
      "back or stored anew elsewhere is left out.\n"
      "Example: tarvex stake report site.crd --html stakes.html");
}

}  // namespace tarvex
