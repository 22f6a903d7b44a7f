#include "app/workflow/stake_session.h"

#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr int kShownDecimals = 3;

}  // namespace

StakeSession::StakeSession(const Workplace& work, JobSession& session,
                           const CTrgCalculator& calculator, const StakePlan& plan,
                           StakeGuide& guide, SessionListener& listener, SessionCommands& commands,
                           StopAsked stop, const PortMaker& ports)
    : ReceiverSession(work, session, calculator, plan, listener, commands, std::move(stop), ports),
      guide_(guide),
      count_(plan.count),
      store_(plan.store),
      storeOnStake_(plan.storeOnStake) {}

bool StakeSession::Finished() const {
  return stored() > 0 || (count_ != 0 && shown_ >= count_ && !(store_ && storeWanted()));
}

StakeView StakeSession::ShowPosition() {
  const GridPosition position = Place();
  if (!position.usable()) {
    WarnOnce("The position has no grid coordinates: " +
             CalculationText(position.result, position.steps));
    return StakeView::NotRelated;
  }
  // A stake goes in on a fixed position only, precise to half the tolerance where that is known.
  const bool fixed = state().solutionType == SolutionType::Fixed;
  const bool precise = !state().precisionKnown || state().hrms <= guide_.PreciseHrms();
  if (fixed && !precise) {
    WarnOnce("The HRMS is above " + FixedNumber(guide_.PreciseHrms(), kShownDecimals) +
             ", half of the tolerance: until it is better no position counts as on the stake.");
  }
  const auto elevation = state().heightKnown ? std::optional(position.at.elevation) : std::nullopt;
  return guide_.Show({position.at.northing, position.at.easting, elevation}, fixed && precise,
                     std::string(SolutionText(state().solutionType)));
}

bool StakeSession::TakeEpoch(const std::optional<GateRefusal>& refusal) {
  TellPosition(refusal);
  const StakeView view = ShowPosition();
  if (view == StakeView::NotRelated) return true;
  ++shown_;
  const bool wanted = storeWanted() || (storeOnStake_ && view == StakeView::OnTheStake);
  if (!store_ || !wanted || refusal || paused()) return true;
  if (!state().heightKnown) {
    WarnOnce("The position has no elevation; it is not stored.");
    return true;
  }
  if (!PointComplete()) return true;
  const GridPoint stored = PointPlace().at;
  guide_.TakeStored({stored.northing, stored.easting, stored.elevation});
  return StorePoint(plan().description.empty() ? guide_.Description() : plan().description,
                    guide_.Records());
}

}  // namespace tarvex
