// A check on a known point: it is measured, compared and told in the raw file. No coordinates
// change.
#pragma once

#include "app/workflow/receiver_session.h"
#include "core/raw_data/check_record.h"

namespace tarvex {

struct CheckPlan : ReceiverPlan {
  Point known;
  double horizontalTolerance = 0.0;  ///< job's unit
  double verticalTolerance = 0.0;
};

class CheckSession final : public ReceiverSession {
 public:
  CheckSession(const Workplace& work, JobSession& session, const CTrgCalculator& calculator,
               const CheckPlan& plan, SessionListener& listener, SessionCommands& commands,
               StopAsked stop, const PortMaker& ports = {});

  /// What came out and is in the raw file; nothing until a point was measured.
  const std::optional<CheckRecord>& check() const { return check_; }

 private:
  bool Finished() const override { return check_.has_value(); }
  bool MayEnd() const override { return false; }
  bool TakeEpoch(const std::optional<GateRefusal>& refusal) override;
  bool Compare();
  bool Journal(const CheckRecord& check, GnssPositionState measured);

  JobSession& job_;
  Point known_;
  double horizontalTolerance_;
  double verticalTolerance_;
  std::optional<CheckRecord> check_;
};

}  // namespace tarvex
