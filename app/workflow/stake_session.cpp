#include "app/workflow/stake_session.h"

#include <algorithm>
#include <cmath>

#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr int kShownDecimals = 3;
constexpr double kLeastTravelM = 0.5;
constexpr double kPreciseShare = 0.5;  // of the horizontal tolerance
constexpr double kFarther = 2.0;
constexpr double kNearTolerances = 10.0;

StakePosition PositionOf(const GridPosition& position, const GnssPositionState& state) {
  const auto elevation = state.heightKnown ? std::optional(position.at.elevation) : std::nullopt;
  return {position.at.northing, position.at.easting, elevation};
}

}  // namespace

StakeSession::StakeSession(const Workplace& work, JobSession& session,
                           const CTrgCalculator& calculator, const StakePlan& plan,
                           StakeList& targets, StakeListener& listener, SessionCommands& commands,
                           StopAsked stop, const PortMaker& ports)
    : ReceiverSession(work, session, calculator, plan, listener, commands, std::move(stop), ports),
      session_(session),
      plan_(plan),
      targets_(targets),
      stakes_(listener),
      gate_(plan.tolerance),
      travel_(FromMetres(kLeastTravelM, session.job().options.unit)) {}

bool StakeSession::Finished() const {
  if (plan_.store && targets_.done()) return true;
  return plan_.count != 0 && shown_ >= plan_.count && !(plan_.store && storeWanted());
}

bool StakeSession::TakeEpoch(const std::optional<GateRefusal>& refusal) {
  TellPosition(refusal);
  WatchFix();
  const GridPosition position = Place();
  if (!position.usable()) {
    onStake_ = gate_.Update(0.0, {}, false);
    WarnOnce(NoGridText(position));
    return true;
  }
  return !Show(PositionOf(position, state())) || StoreIfWanted(refusal);
}

// A fix that is lost is told at once, and not each epoch.
void StakeSession::WatchFix() {
  if (IsFixed() == fixed_) return;
  fixed_ = IsFixed();
  stakes_.OnStake(FixChanged{state().solutionType});
}

bool StakeSession::IsPrecise(const GnssPositionState& state) const {
  return !state.precisionKnown || state.hrms <= kPreciseShare * plan_.tolerance.horizontal;
}

// A stake goes in on a fixed position only, precise to half the tolerance where that is known, and
// with an elevation where it is to have one.
bool StakeSession::IsGood(const StakeRelation& relation, const GnssPositionState& state) const {
  const bool whole = state.heightKnown || !relation.design.elevation;
  return state.solutionType == SolutionType::Fixed && IsPrecise(state) && whole && relation.sound;
}

StakeHeading StakeSession::Heading(const StakePosition& at) const {
  const StakeReference reference = plan_.reference.value_or(StakeReference::Travel);
  const bool chosen = plan_.reference.has_value();
  const double north = plan_.toward.northing - at.northing;
  const double east = plan_.toward.easting - at.easting;
  if (reference == StakeReference::TowardPoint && (north != 0.0 || east != 0.0)) {
    return {reference, std::atan2(east, north), chosen};
  }
  if (reference == StakeReference::Travel && travel_.azimuth()) {
    return {reference, *travel_.azimuth(), chosen};
  }
  return {StakeReference::North, 0.0, chosen};
}

// False when there is nothing to show.
bool StakeSession::Show(const StakePosition& at) {
  at_ = at;
  travel_.Take(at, static_cast<int>(state().solutionType));
  if (targets_.present() == nullptr && !targets_.done()) GoOn();
  if (targets_.present() == nullptr) return false;
  const auto relation = targets_.present()->Relate(at, Heading(at));
  if (!relation) return false;
  if (IsFixed() && !IsPrecise(state())) {
    WarnOnce("The HRMS is above " +
             FixedNumber(kPreciseShare * plan_.tolerance.horizontal, kShownDecimals) +
             ", half of the tolerance: until it is better no position counts as on the stake.");
  }
  ++shown_;
  onStake_ = gate_.Update(relation->deltas.distance, relation->cut, IsGood(*relation, state()));
  stakes_.OnStake(StakeSeen{.relation = *relation,
                            .from = std::string(SolutionText(state().solutionType)),
                            .onStake = onStake_});
  return true;
}

bool StakeSession::StoreIfWanted(const std::optional<GateRefusal>& refusal) {
  const bool wanted = storeWanted() || (plan_.storeOnStake && onStake_);
  if (!plan_.store || !wanted || refusal || paused()) return true;
  if (!state().heightKnown) {
    WarnOnce("The position has no elevation; it is not stored.");
    return true;
  }
  return !PointComplete() || StoreStake();
}

// The mean of several epochs is held against the target as a position of its own.
bool StakeSession::StoreStake() {
  const GridPosition place = PointPlace();
  const GnssPositionState measured = collected().state;
  const StakePosition at = PositionOf(place, measured);
  const auto relation = targets_.present()->Relate(at, Heading(at));
  if (!relation) return true;
  const bool good = IsGood(*relation, measured);
  ToleranceGate inside = gate_;
  if (!inside.Update(relation->deltas.distance, relation->cut, good) && !WasAskedAgain(*relation)) {
    return Doubt(*relation), true;
  }
  const StakeRecord record = StakeRecordOf(*relation, place.at, plan_.tolerance, good);
  const std::string& typed = plan().description;
  const long long before = stored();
  const bool goesOn =
      StorePoint(typed.empty() ? StakeDescription(*relation) : typed, {StakeComments(record)});
  ForgetDoubt();
  if (stored() == before) return goesOn;
  stakes_.OnStake(StakeStored{session_.job().store.lastStoredPoint, record, measured.solutionType});
  staked_.push_back(targets_.present());
  targets_.NoteStaked();
  GoOn();
  return goesOn;
}

// A person who asks once more means the place that was doubted, not one far from it.
bool StakeSession::WasAskedAgain(const StakeRelation& relation) const {
  return askedAgain_ &&
         relation.deltas.distance <=
             std::max(kFarther * doubtedDistance_, kNearTolerances * plan_.tolerance.horizontal);
}

void StakeSession::Doubt(const StakeRelation& relation) {
  const GnssPositionState measured = collected().state;
  const bool asked = storeWanted();
  DropPoint();
  if (!asked) return;  // nobody waits for an answer: it was on the stake before its mean was not
  ForgetDoubt();
  doubtedAtMs_ = steadyMs();
  doubtedDistance_ = relation.deltas.distance;
  stakes_.OnStake(StakeDoubted{.fixed = measured.solutionType == SolutionType::Fixed,
                               .precise = IsPrecise(measured),
                               .solution = measured.solutionType,
                               .distance = relation.deltas.distance,
                               .cut = relation.cut,
                               .tolerance = plan_.tolerance});
}

void StakeSession::ForgetDoubt() {
  doubtedAtMs_.reset();
  askedAgain_ = false;
}

void StakeSession::TakeCommand(const SessionCommand& command) {
  if (std::holds_alternative<StoreNow>(command)) {
    askedAgain_ = doubtedAtMs_ && steadyMs() - *doubtedAtMs_ <= kDoubtMs;
    doubtedAtMs_.reset();
  } else if (std::holds_alternative<TakeBack>(command)) {
    if (static_cast<std::size_t>(stored()) >= staked_.size()) return;
    targets_.Reopen(*staked_.back());
    staked_.pop_back();
    TakeTarget();
  } else if (std::holds_alternative<NextTarget>(command)) {
    if (!targets_.PassOver(at_)) return stakes_.OnStake(NoSuchTarget{});
    TakeTarget();
  } else if (std::holds_alternative<SkipTarget>(command)) {
    (void)targets_.LeaveOut(at_);
    TakeTarget();
  } else if (const auto* choice = std::get_if<ChooseTarget>(&command)) {
    if (!targets_.Choose(choice->name)) return stakes_.OnStake(NoSuchTarget{choice->name});
    TakeTarget();
  }
}

void StakeSession::GoOn() {
  StakeTarget* const before = targets_.present();
  (void)targets_.GoOn(at_);
  if (before == nullptr || targets_.present() != before) TakeTarget();
}

// What was asked for of one target is not of the next.
void StakeSession::TakeTarget() {
  DropPoint();
  ForgetDoubt();
  gate_ = ToleranceGate(plan_.tolerance);
  onStake_ = false;
  const StakeTarget* present = targets_.present();
  if (present == nullptr) {
    return stakes_.OnStake(TargetsDone{.staked = targets_.staked(), .size = targets_.size()});
  }
  stakes_.OnStake(TargetTaken{.name = present->name(),
                              .place = present->place(),
                              .open = targets_.open(),
                              .size = targets_.size()});
}

}  // namespace tarvex
