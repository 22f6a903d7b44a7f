// Collecting points from a receiver: each epoch that keeps the limits, or the one that a person
// wants, becomes a point of the job.
#pragma once

#include "app/workflow/receiver_session.h"

namespace tarvex {

/// What makes a position a point.
enum class StoreTrigger {
  EveryEpoch,  ///< each epoch that keeps the limits
  OnCommand    ///< the next one after StoreNow
};

struct CollectPlan : ReceiverPlan {
  StoreTrigger trigger = StoreTrigger::EveryEpoch;
  long long count = 1;  ///< points to store; 0: until the receiver ends or the session is ended
};

class CollectSession final : public ReceiverSession {
 public:
  CollectSession(const Workplace& work, JobSession& session, const CTrgCalculator& calculator,
                 const CollectPlan& plan, SessionListener& listener, SessionCommands& commands,
                 StopAsked stop, const PortMaker& ports = {});

 private:
  bool Finished() const override { return count_ != 0 && stored() >= count_; }
  bool MayEnd() const override { return count_ == 0 && stored() > 0; }
  bool TakeEpoch(const std::optional<GateRefusal>& refusal) override;

  StoreTrigger trigger_;
  long long count_;
};

}  // namespace tarvex
