#include "app/cli/stake_following.h"

#include "app/cli/number_entry.h"
#include "app/cli/typed_commands.h"
#include "app/workflow/job_calculator.h"
#include "app/workflow/point_storing.h"

namespace tarvex {
namespace {

void TellHowToStore(const StakePlan& plan, const std::string& id, const StakeList& targets,
                    Program& program) {
  const char* next = targets.size() > 1 ? " n goes on to the next target." : "";
  if (plan.storeOnStake) {
    program.console.PrintError(
        "The first position on the stake that keeps the limits is stored as point " + id + "." +
        next + "\n");
  } else {
    program.console.PrintError("Enter stores the next position that keeps the limits as point " +
                               id + ", q ends." + next + "\n");
  }
}

}  // namespace

Option AddStakeOptions(Command& command, StakeOptions& options, const char* profileOption) {
  Option receiver = AddSessionOptions(command, options.session, profileOption);
  command.Add("--count", options.count, "Positions to show (default: until the receiver ends)")
      .NotNegative();
  AddNumber(command, "--tolerance", options.tolerance.horizontal,
            "Horizontal, for ON THE STAKE (default: 0.02)", NumberKind::Positive);
  AddNumber(command, "--vertical-tolerance", options.tolerance.vertical, "Vertical (default: 0.01)",
            NumberKind::Positive);
  return receiver;
}

ExitCode FollowReceiver(const StakeOptions& options, Program& program, JobSession& session,
                        StakePlan plan, StakeList& targets, StakeWords words) {
  plan.count = options.count;
  plan.tolerance = options.tolerance;
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
  std::optional<TypedCommands> typed;
  const bool enterStores = plan.mustStore && !plan.storeOnStake;
  const bool typedCommands = enterStores || program.console.IsTyped();
  if (plan.store && (typedCommands || plan.storeOnStake)) {
    TellHowToStore(plan, session.job().ids.current, targets, program);
  }
  if (typedCommands) typed.emplace(program, commands);
  StakeSession staking(program, session, calculator, plan, targets, view, commands,
                       InterruptRequested);
  const SessionEnd end = staking.Run();
  const bool missed = plan.mustStore && staking.stored() == 0;
  if (missed) program.console.PrintError("Nothing was stored.\n");
  if (end == SessionEnd::RecordingEnded && staking.shown() == 0) {
    return program.Fail("The receiver gave no position to stake from.");
  }
  return TellSessionEnd(program, staking, plan, end, plan.count == 0 && !missed);
}

}  // namespace tarvex
