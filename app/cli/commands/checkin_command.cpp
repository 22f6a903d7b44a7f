// tarvex checkin: is the receiver where a known point says it is?
#include "app/cli/collect_view.h"
#include "app/cli/command_line.h"
#include "app/cli/json_text.h"
#include "app/cli/number_entry.h"
#include "app/cli/session_options.h"
#include "app/cli/typed_commands.h"
#include "app/workflow/check_session.h"
#include "app/workflow/job_calculator.h"
#include "core/coordinates/point_store.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr double kToleranceM = 0.03;
constexpr double kVerticalToleranceM = 0.05;
constexpr std::size_t kEpochs = 5;
constexpr int kDecimals = 3;

struct CheckinOptions {
  std::string job;
  std::string point;
  SessionOptions session;
  double tolerance = 0.0;  ///< 0: the default, in the job's unit
  double verticalTolerance = 0.0;
  bool json = false;
};

std::string Number(double value) {
  return FixedNumber(value, kDecimals);
}

// What to look at when a check fails, from what it shows.
std::string Advice(const CheckRecord& check, const CheckPlan& plan, DistanceUnit unit) {
  constexpr double kElsewhereM = 100.0;
  if (ToMetres(check.distance, unit) > kElsewhereM) {
    return "That is another place: look at the point's id, the coordinate system and the "
           "localization.";
  }
  if (check.distance <= check.horizontalTolerance) {
    return "Only the elevation is off: look at the antenna height (" + Number(plan.antennaHeight) +
           "), the geoid and the localization.";
  }
  return "Look at the solution, the pole, the base of the corrections and the localization before "
         "storing points.";
}

void PrintCheck(const CheckinOptions& options, const CheckRecord& check, Console& console) {
  if (options.json) {
    console.Print(JsonText({{"point", check.known.id.str()},
                            {"northing", check.found.northing},
                            {"easting", check.found.easting},
                            {"elevation", check.found.elevation},
                            {"difference_northing", check.difference.northing},
                            {"difference_easting", check.difference.easting},
                            {"difference_elevation", check.difference.elevation},
                            {"distance", check.distance},
                            {"tolerance", check.horizontalTolerance},
                            {"vertical_tolerance", check.verticalTolerance},
                            {"passed", check.passed}}));
    return;
  }
  console.Print("Point " + check.known.id.str() + ": found minus known N " +
                Number(check.difference.northing) + "  E " + Number(check.difference.easting) +
                "  EL " + Number(check.difference.elevation) + "; " + Number(check.distance) +
                " away (limit " + Number(check.horizontalTolerance) + "), vertical limit " +
                Number(check.verticalTolerance) + ": " + (check.passed ? "PASSED" : "FAILED") +
                "\n");
}

ExitCode Check(const CheckinOptions& options, const CheckPlan& plan, JobSession& session,
               Program& program) {
  CTrgCalculator calculator;
  std::string problem;
  CoordinateSystems systems(program);
  if (!MakeJobCalculator(session, systems, calculator, problem)) return program.Fail(problem);
  CollectView view(program, CollectView::Stored::OnErrors);
  SessionCommands commands;
  std::optional<TypedCommands> typed;
  if (program.console.IsTyped()) typed.emplace(program, commands);
  CheckSession checking(program, session, calculator, plan, view, commands, InterruptRequested);
  const SessionEnd end = checking.Run();
  const ExitCode code = TellSessionEnd(program, checking, plan, end, false);
  if (!checking.check()) return code == ExitCode::Done ? ExitCode::Failed : code;
  PrintCheck(options, *checking.check(), program.console);
  if (checking.check()->passed) return code;
  return program.Fail("The check failed. " +
                      Advice(*checking.check(), plan, session.job().options.unit));
}

// False after a message. The file is closed again: the session locks it.
bool FindKnown(const CheckinOptions& options, JobSession& session, Program& program, Point& known) {
  const auto stream = OpenForReading(session.job());
  if (!stream) return false;
  if (ReadPoint(session.job(), options.point, stream.get(), known) == ReadPointResult::Found) {
    return true;
  }
  (void)program.Fail("There is no point " + options.point + " in " + session.job().path +
                     "; `tarvex store` stores a known one.");
  return false;
}

ExitCode RunCheckin(const CheckinOptions& options, Program& program) {
  JobSession session(program, options.job);
  if (!session.LoadExisting()) return ExitCode::Failed;
  const DistanceUnit unit = session.job().options.unit;
  CheckPlan plan;
  if (!FindKnown(options, session, program, plan.known)) return ExitCode::Failed;
  const ExitCode code = SettleSession(options.session, session.settings(), program, plan);
  if (code != ExitCode::Done) return code;
  if (options.session.average == 0 && plan.average == 1) plan.average = kEpochs;
  plan.horizontalTolerance =
      options.tolerance > 0.0 ? options.tolerance : FromMetres(kToleranceM, unit);
  plan.verticalTolerance = options.verticalTolerance > 0.0 ? options.verticalTolerance
                                                           : FromMetres(kVerticalToleranceM, unit);
  return Check(options, plan, session, program);
}

}  // namespace

void DeclareCheckinCommand(Command& command) {
  CheckinOptions& options = command.Runs(RunCheckin);
  command.Add("JOB.crd", options.job, "The job's coordinate file").Required();
  command.Add("POINT", options.point, "The known point that is measured").Required();
  AddSessionOptions(
      command, options.session, kProfileOption,
      "Distinct epochs whose mean is compared (default: the settings' above 1, else 5)");
  AddNumber(command, "--tolerance", options.tolerance,
            "Horizontal, in the job's unit (default: 0.03 m)", NumberKind::Positive);
  AddNumber(command, "--vertical-tolerance", options.verticalTolerance,
            "Vertical, in the job's unit (default: 0.05 m)", NumberKind::Positive);
  command.AddFlag("--json", options.json, "Print JSON");
  command.Footer(
      "The mean of five epochs (--average) is compared with the point. Nothing is stored but what\n"
      "came out, as comments of the raw file. Exit code 0: within both tolerances, 1: not.\n"
      "Example: tarvex checkin site.crd BM1 --receiver serial:/dev/ttyUSB0 --antenna-height 2");
}

}  // namespace tarvex
