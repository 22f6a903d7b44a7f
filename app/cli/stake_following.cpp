#include "app/cli/stake_following.h"

#include "app/cli/json_events.h"
#include "app/cli/number_entry.h"
#include "app/cli/session_input.h"
#include "app/workflow/job_calculator.h"
#include "app/workflow/job_codes.h"
#include "app/workflow/point_storing.h"

namespace tarvex {
namespace {

void TellHowToStore(const StakePlan& plan, const std::string& id, bool takesKeys,
                    Program& program) {
  std::string line = plan.storeOnStake
                         ? "The first position on the stake that keeps the limits is stored as "
                           "point " +
                               id
                         : "Enter stores the next position that keeps the limits as point " + id;
  if (!takesKeys && !plan.storeOnStake) line += ", q ends";
  program.console.PrintError(line + ".\n");
}

}  // namespace

Option AddStakeOptions(Command& command, StakeOptions& options, const char* profileOption) {
  Option receiver = AddSessionOptions(command, options.session, profileOption);
  command.Add("--count", options.count, "Positions to show (default: until the receiver ends)")
      .NotNegative();
  AddNumber(command, "--tolerance", options.tolerance,
            "Horizontal, for ON THE STAKE, in the job's unit (default: 0.02 m)",
            NumberKind::Positive);
  AddNumber(command, "--vertical-tolerance", options.verticalTolerance,
            "Vertical, in the job's unit (default: 0.01 m)", NumberKind::Positive);
  return receiver;
}

StakeTolerance ToleranceIn(const StakeOptions& options, DistanceUnit unit) {
  constexpr StakeTolerance kDefaultM{.horizontal = 0.02, .vertical = 0.01};
  const auto settled = [unit](double entered, double defaultM) {
    return entered > 0.0 ? entered : FromMetres(defaultM, unit);
  };
  return {.horizontal = settled(options.tolerance, kDefaultM.horizontal),
          .vertical = settled(options.verticalTolerance, kDefaultM.vertical)};
}

ExitCode FollowReceiver(const StakeOptions& options, Program& program, JobSession& session,
                        StakePlan plan, StakeList& targets, StakeWords words) {
  plan.count = options.count;
  plan.tolerance = ToleranceIn(options, session.job().options.unit);
  if (plan.count == 0 && program.console.IsTyped()) plan.simulatedPaceMs = kSimulatedPaceMs;
  if (const ExitCode code = SettleSession(options.session, session.settings(), program, plan);
      code != ExitCode::Done) {
    return code;
  }
  session.setPolicy(ParseExistingPolicy(options.existing));
  CTrgCalculator calculator;
  CoordinateSystems systems(program);
  std::string problem;
  if (!MakeJobCalculator(session, systems, calculator, problem)) return program.Fail(problem);
  words.json = options.json;
  words.inPlace = !options.json && program.console.IsWatched();
  StakeView view(program, std::move(words));
  SessionCommands commands;
  const CodeList codes = program.console.IsTyped() ? LoadJobCodes(session) : CodeList();
  StakeSession staking(program, session, calculator, plan, targets, view, commands,
                       InterruptRequested);
  SessionEnd end = SessionEnd::Failed;
  {
    const bool pipeToo = plan.mustStore && !plan.storeOnStake;
    const SessionInput input(program, commands, codes, KeyUse::Staking, pipeToo);
    if (input.takesKeys()) view.TakesKeys();
    const bool typed = input.takesKeys() || input.takesLines();
    if (plan.store && (typed || plan.storeOnStake)) {
      TellHowToStore(plan, session.job().ids.current, input.takesKeys(), program);
    }
    end = staking.Run();
  }
  view.Finish();
  const bool missed = plan.mustStore && staking.stored() == 0;
  if (missed) program.console.PrintError("Nothing was stored.\n");
  if (end == SessionEnd::RecordingEnded && staking.shown() == 0) {
    return program.Fail("The receiver gave no position to stake from.");
  }
  const ExitCode code = TellSessionEnd(program, staking, plan, end, plan.count == 0 && !missed);
  if (options.json) {
    PrintEvent(
        program, "ended",
        {{"end", SessionEndName(end)}, {"stored", staking.stored()}, {"job", session.job().path}});
  }
  return code;
}

}  // namespace tarvex
