#include "app/workflow/stake_list.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/text/text.h"

namespace tarvex {
namespace {

// A line is beside every position.
double DistanceTo(const StakeTarget& target, const StakePosition& at) {
  const auto place = target.place();
  if (!place) return 0.0;
  return std::hypot(place->northing - at.northing, place->easting - at.easting);
}

}  // namespace

void StakeList::Add(std::unique_ptr<StakeTarget> target, bool stakedBefore) {
  entries_.push_back({.target = std::move(target),
                      .state = stakedBefore ? State::Staked : State::Open,
                      .passedOver = 0});
}

StakeTarget* StakeList::present() const {
  return present_ ? entries_[*present_].target.get() : nullptr;
}

std::optional<std::size_t> StakeList::NextOpen(const StakePosition& at) const {
  std::optional<std::size_t> best;
  std::pair<int, double> bestRank;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const Entry& entry = entries_[i];
    if (entry.state != State::Open) continue;
    const double distance = order_ == StakeOrder::Nearest ? DistanceTo(*entry.target, at) : 0.0;
    const std::pair<int, double> rank{entry.passedOver, distance};
    if (best && bestRank <= rank) continue;
    best = i;
    bestRank = rank;
  }
  return best;
}

bool StakeList::GoOn(const StakePosition& at) {
  started_ = true;
  present_ = NextOpen(at);
  return present_.has_value();
}

bool StakeList::PassOver(const StakePosition& at) {
  if (!present_) return false;
  Entry& entry = entries_[*present_];
  if (open() <= (entry.state == State::Open ? 1U : 0U)) return false;
  ++entry.passedOver;
  return GoOn(at);
}

bool StakeList::LeaveOut(const StakePosition& at) {
  if (present_ && entries_[*present_].state == State::Open) {
    entries_[*present_].state = State::LeftOut;
  }
  return GoOn(at);
}

bool StakeList::Choose(std::string_view name) {
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (!EqualsIgnoringCase(entries_[i].target->name(), name)) continue;
    started_ = true;
    present_ = i;
    return true;
  }
  return false;
}

void StakeList::NoteStaked() {
  if (!present_ || !entries_[*present_].target->place()) return;
  entries_[*present_].state = State::Staked;
}

void StakeList::Reopen(const StakeTarget& target) {
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].target.get() != &target) continue;
    entries_[i].state = State::Open;
    present_ = i;
  }
}

std::size_t StakeList::Count(State state) const {
  return static_cast<std::size_t>(
      std::count_if(entries_.begin(), entries_.end(),
                    [state](const Entry& entry) { return entry.state == state; }));
}

std::size_t StakeList::open() const {
  return Count(State::Open);
}

std::size_t StakeList::staked() const {
  return Count(State::Staked);
}

}  // namespace tarvex
