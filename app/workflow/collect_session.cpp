#include "app/workflow/collect_session.h"

#include <cmath>

#include "core/codes/line_work.h"

namespace tarvex {

CollectSession::CollectSession(const Workplace& work, JobSession& session,
                               const CTrgCalculator& calculator, const CollectPlan& plan,
                               SessionListener& listener, SessionCommands& commands, StopAsked stop,
                               const PortMaker& ports)
    : ReceiverSession(work, session, calculator, plan, listener, commands, std::move(stop), ports),
      trigger_(plan.trigger),
      everyMs_(plan.everyMs),
      distance_(plan.distance),
      count_(plan.count),
      codes_(plan.codes),
      time_(plan.receiver.isRecorded()) {}

bool CollectSession::TakeEpoch(const std::optional<GateRefusal>& refusal) {
  time_.Follow(state().epochMs, steadyMs());
  const bool storing = !refusal && !paused();
  if (paused()) due_ = false;
  due_ = due_ || (storing && IsDue());
  const bool complete = storing && (due_ || storeWanted()) && PointComplete();
  TellPosition(refusal);
  return !complete || StoreHere();
}

bool CollectSession::IsDue() const {
  switch (trigger_) {
    case StoreTrigger::EveryEpoch:
      return true;
    case StoreTrigger::ByTime:
      return !lastStoreMs_ || time_.passedMs() - *lastStoreMs_ >= everyMs_;
    case StoreTrigger::ByDistance: {
      if (!lastPlace_) return true;
      const GridPosition here = Place();
      return here.usable() && std::hypot(here.at.northing - lastPlace_->northing,
                                         here.at.easting - lastPlace_->easting) >= distance_;
    }
    case StoreTrigger::OnCommand:
      break;
  }
  return false;
}

// From a point that is taken back the next one keeps its distance all the same: the person is still
// where it was.
bool CollectSession::StoreHere() {
  const GridPosition here = PointPlace();
  due_ = false;
  lastStoreMs_ = time_.passedMs();
  if (here.usable()) lastPlace_ = here.at;
  return StorePoint(plan().description);
}

// What a script describes its points with stays as it is.
std::string CollectSession::NextDescription() const {
  const bool typed = descriptionTyped() || trigger_ == StoreTrigger::OnCommand;
  return typed ? DescriptionOfNextPoint(plan().description, codes_) : plan().description;
}

}  // namespace tarvex
