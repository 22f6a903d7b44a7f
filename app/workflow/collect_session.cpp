#include "app/workflow/collect_session.h"

namespace tarvex {

CollectSession::CollectSession(const Workplace& work, JobSession& session,
                               const CTrgCalculator& calculator, const CollectPlan& plan,
                               SessionListener& listener, SessionCommands& commands, StopAsked stop,
                               const PortMaker& ports)
    : ReceiverSession(work, session, calculator, plan, listener, commands, std::move(stop), ports),
      trigger_(plan.trigger),
      count_(plan.count) {}

bool CollectSession::TakeEpoch(const std::optional<GateRefusal>& refusal) {
  const bool wanted = trigger_ == StoreTrigger::EveryEpoch || storeWanted();
  const bool complete = !refusal && !paused() && wanted && PointComplete();
  TellPosition(refusal);
  return !complete || StorePoint(plan().description);
}

}  // namespace tarvex
