// Staking with a receiver: each position is shown against what is to be set out, and is stored only
// when a person says so, through the same limits and with the same records as a collected point.
// One that is not on the stake is doubted first, and stored when the person asks once more.
#pragma once

#include "app/workflow/receiver_session.h"
#include "app/workflow/stake_events.h"
#include "app/workflow/stake_list.h"

namespace tarvex {

struct StakePlan : ReceiverPlan {
  long long count = 0;        ///< positions to show; 0: until the receiver or the session ends
  bool store = false;         ///< after StoreNow a stake is stored
  bool storeOnStake = false;  ///< the first position on the stake counts as StoreNow
  bool mustStore = false;     ///< a recording that ends before everything is staked ends too early
  StakeTolerance tolerance;
  /// What is forward; nothing: the direction of travel, of a line its own.
  std::optional<StakeReference> reference;
  PlanPoint toward;  ///< with StakeReference::TowardPoint
};

/// A second StoreNow within this time stores what the first one did not.
inline constexpr std::int64_t kDoubtMs = 30000;

class StakeSession final : public ReceiverSession {
 public:
  /// Works on `targets` until everything is staked, where stakes are stored at all.
  StakeSession(const Workplace& work, JobSession& session, const CTrgCalculator& calculator,
               const StakePlan& plan, StakeList& targets, StakeListener& listener,
               SessionCommands& commands, StopAsked stop, const PortMaker& ports = {});

  long long shown() const { return shown_; }

 private:
  bool Finished() const override;
  bool MayEnd() const override { return shown_ > 0 && !plan_.mustStore; }
  bool TakeEpoch(const std::optional<GateRefusal>& refusal) override;
  void TakeCommand(const SessionCommand& command) override;

  void WatchFix();
  bool IsFixed() const { return state().solutionType == SolutionType::Fixed; }
  bool IsPrecise(const GnssPositionState& state) const;
  bool IsGood(const StakeRelation& relation, const GnssPositionState& state) const;
  StakeHeading Heading(const StakePosition& at) const;
  bool Show(const StakePosition& at);
  bool StoreIfWanted(const std::optional<GateRefusal>& refusal);
  bool StoreStake();
  bool WasAskedAgain(const StakeRelation& relation) const;
  void Doubt(const StakeRelation& relation);
  void TakeTarget();
  void GoOn();
  void ForgetDoubt();

  JobSession& session_;
  StakePlan plan_;
  StakeList& targets_;
  StakeListener& stakes_;
  ToleranceGate gate_;
  TravelDirection travel_;
  std::vector<StakeTarget*> staked_;  ///< in this session, in its order
  StakePosition at_;                  ///< the last position shown
  bool fixed_ = true;
  bool onStake_ = false;
  long long shown_ = 0;
  std::optional<std::int64_t> doubtedAtMs_;
  double doubtedDistance_ = 0.0;
  bool askedAgain_ = false;
};

}  // namespace tarvex
