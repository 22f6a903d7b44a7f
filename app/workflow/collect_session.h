// Collecting points from a receiver: each epoch that keeps the limits, one every so many seconds or
// so far from the one before, or the one that a person wants, becomes a point of the job.
#pragma once

#include "app/workflow/epoch_time.h"
#include "app/workflow/receiver_session.h"
#include "core/codes/code_list.h"

namespace tarvex {

/// What makes a position a point. A person's StoreNow does so beside each of them.
enum class StoreTrigger {
  EveryEpoch,  ///< each epoch that keeps the limits
  ByTime,      ///< the first, and then each that comes `everyMs` after the one before
  ByDistance,  ///< the first, and then each that is `distance` away from the one before
  OnCommand    ///< the next one after StoreNow alone
};

struct CollectPlan : ReceiverPlan {
  StoreTrigger trigger = StoreTrigger::EveryEpoch;
  long long count = 1;  ///< points to store; 0: until the receiver ends or the session is ended
  std::int64_t everyMs = 0;
  double distance = 0.0;  ///< horizontal, job's unit
  CodeList codes = {};    ///< of the job; their line work says how a description goes on
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
  bool ChosenOneByOne() const override { return trigger_ == StoreTrigger::OnCommand; }
  std::string NextDescription() const override;

  bool IsDue() const;
  bool StoreHere();

  StoreTrigger trigger_;
  std::int64_t everyMs_;
  double distance_;
  long long count_;
  CodeList codes_;
  EpochTime time_;
  bool due_ = false;  ///< until its point is complete
  std::optional<std::int64_t> lastStoreMs_;
  std::optional<GridPoint> lastPlace_;
};

}  // namespace tarvex
