// Staking with a receiver: each position is shown against what is to be set out, and is stored only
// when a person says so, through the same limits and with the same records as a collected point.
#pragma once

#include "app/workflow/receiver_session.h"

namespace tarvex {

/// The present position; without an elevation there is no cut or fill.
struct StakePosition {
  double northing = 0.0;
  double easting = 0.0;
  std::optional<double> elevation;
};

enum class [[nodiscard]] StakeView {
  NotRelated,  ///< the position is nowhere near what is to be set out
  Shown,
  OnTheStake  ///< inside the tolerance, with a good position
};

/// What is to be set out. It shows every position in its own way, and says of a stored one what was
/// meant.
class StakeGuide {
 public:
  virtual ~StakeGuide() = default;

  /// `good` is a position that a stake may go in on: fixed, and precise where that is known.
  virtual StakeView Show(const StakePosition& at, bool good, const std::string& name) = 0;
  /// HRMS that is precise enough for a stake, job's unit.
  virtual double PreciseHrms() const = 0;
  /// Takes the position that is stored, the mean of several perhaps, without showing it.
  virtual void TakeStored(const StakePosition& at) = 0;
  /// The description of a stored stake.
  virtual std::string Description() const = 0;
  /// Comment records for the raw file: design, found and difference of the position that is stored.
  virtual std::vector<std::string> Records() const = 0;
};

struct StakePlan : ReceiverPlan {
  long long count = 0;        ///< positions to show; 0: until the receiver or the session ends
  bool store = false;         ///< one point may be stored, after StoreNow; the session ends with it
  bool storeOnStake = false;  ///< the first position on the stake counts as StoreNow
};

class StakeSession final : public ReceiverSession {
 public:
  StakeSession(const Workplace& work, JobSession& session, const CTrgCalculator& calculator,
               const StakePlan& plan, StakeGuide& guide, SessionListener& listener,
               SessionCommands& commands, StopAsked stop, const PortMaker& ports = {});

  long long shown() const { return shown_; }

 private:
  bool Finished() const override;
  bool MayEnd() const override { return shown_ > 0 && !store_; }
  bool TakeEpoch(const std::optional<GateRefusal>& refusal) override;
  StakeView ShowPosition();

  StakeGuide& guide_;
  long long count_;
  bool store_;
  bool storeOnStake_;
  long long shown_ = 0;
};

}  // namespace tarvex
