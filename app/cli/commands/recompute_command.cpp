// tarvex recompute: measured points anew from their positions, after a change of the localization.
#include "app/cli/command_line.h"
#include "app/cli/table_text.h"
#include "app/workflow/job_calculator.h"
#include "app/workflow/point_recompute.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr int kDecimals = 4;
constexpr std::size_t kNumberWidth = 16;
constexpr std::size_t kIdWidth = 10;

struct RecomputeOptions {
  std::string job;
  std::vector<std::string> ids;
  bool dryRun = false;
  bool yes = false;
};

std::string Count(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " point" : " points");
}

const char* ReasonText(RecomputeReason reason) {
  switch (reason) {
    case RecomputeReason::Typed:
      return "it was typed or shot, not measured by GNSS";
    case RecomputeReason::NoPosition:
      return "the raw file holds no position of it";
    case RecomputeReason::Edited:
      return "its coordinates are not those of its observation, so somebody changed them";
    case RecomputeReason::NotConverted:
      return "its position has no grid coordinates in the job's system";
    case RecomputeReason::NotFound:
      break;
  }
  return "the job has no such point";
}

// Those that were not asked for by name are only counted when there is nothing to do with them.
void TellLeft(const RecomputeOptions& options, const RecomputePlan& plan, Console& console) {
  std::size_t typed = 0;
  for (const PointLeft& left : plan.left) {
    if (options.ids.empty() && left.reason == RecomputeReason::Typed) {
      ++typed;
      continue;
    }
    console.PrintError("Point " + left.id + " stays: " + ReasonText(left.reason) + ".\n");
  }
  if (typed > 0) {
    console.PrintError(Count(typed) + (typed == 1 ? " that was" : " that were") +
                       " typed or shot " + (typed == 1 ? "stays" : "stay") + ".\n");
  }
}

void PrintMoved(const RecomputePlan& plan, Console& console) {
  console.Print(Left("Point", kIdWidth) + Right("Northing", kNumberWidth) +
                Right("Easting", kNumberWidth) + Right("Elevation", kNumberWidth) +
                "  moves by N, E, EL\n");
  for (const auto& [stored, now] : plan.moved) {
    std::string row = Left(stored.id.str(), kIdWidth);
    for (const double value : {now.northing, now.easting, now.elevation}) {
      row += Right(FixedNumber(value, kDecimals), kNumberWidth);
    }
    row += "  " + FixedNumber(now.northing - stored.at.northing, kDecimals) + " " +
           FixedNumber(now.easting - stored.at.easting, kDecimals) + " " +
           FixedNumber(now.elevation - stored.at.elevation, kDecimals);
    console.Print(row + "\n");
  }
}

// Whether the moved points are to be stored.
bool IsWanted(const RecomputeOptions& options, const RecomputePlan& plan, Program& program) {
  if (options.yes) return true;
  std::string answer;
  if (program.console.Ask("Store " + Count(plan.moved.size()) + " anew? [y/N] ", answer)) {
    if (answer == "y" || answer == "Y") return true;
    (void)program.Fail("Nothing was changed.");
  } else {
    (void)program.Fail("Nothing was changed; --yes stores them.");
  }
  return false;
}

bool AllWereFound(const RecomputePlan& plan) {
  for (const PointLeft& left : plan.left) {
    if (left.reason == RecomputeReason::NotFound) return false;
  }
  return true;
}

ExitCode RunRecompute(const RecomputeOptions& options, Program& program) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  CTrgCalculator calculator;
  std::string problem;
  CoordinateSystems systems(program);
  if (!MakeJobCalculator(session, systems, calculator, problem)) return program.Fail(problem);
  const auto plan = PlanRecompute(session, calculator, options.ids);
  if (!plan) return ExitCode::Failed;
  TellLeft(options, *plan, program.console);
  if (!AllWereFound(*plan)) return program.Fail("Nothing was changed.");
  if (plan->moved.empty()) {
    program.console.Print("No measured point moves.\n");
    return ExitCode::Done;
  }
  PrintMoved(*plan, program.console);
  if (options.dryRun) return ExitCode::Done;
  if (!IsWanted(options, *plan, program)) return ExitCode::Failed;
  if (!Recompute(session, *plan)) return program.exitCode = ExitCode::Failed;
  program.console.Print("Computed " + Count(plan->moved.size()) + " anew.\n");
  return ExitCode::Done;
}

}  // namespace

void DeclareRecomputeCommand(Command& command) {
  RecomputeOptions& options = command.Runs(RunRecompute);
  command.Add("JOB.crd", options.job, "The job's coordinate file").Required();
  command.Add("ID", options.ids, "The points (default: all that were measured by GNSS)");
  command.AddFlag("--dry-run", options.dryRun, "Show the differences, change nothing");
  command.AddFlag("--yes", options.yes, "Do not ask");
  command.Footer(
      "Measured points are computed from their positions in the raw file, as the job would place\n"
      "them now; the differences are shown before you are asked. Typed and edited points stay.\n"
      "The raw file keeps what each point was.\n"
      "Example: tarvex recompute site.crd --dry-run");
}

}  // namespace tarvex
