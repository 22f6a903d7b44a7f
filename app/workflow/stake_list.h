// What is to be set out in a session: one place or many, of which one is the present target. After
// a stake comes the nearest that is still open.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "app/workflow/stake_target.h"

namespace tarvex {

enum class StakeOrder {
  Nearest,  ///< to where the rover is
  AsGiven
};

class StakeList {
 public:
  explicit StakeList(StakeOrder order = StakeOrder::Nearest) : order_(order) {}
  /// One thing to set out.
  explicit StakeList(std::unique_ptr<StakeTarget> only) { Add(std::move(only)); }

  /// One that was staked before is there to be chosen, and comes up by itself no more.
  void Add(std::unique_ptr<StakeTarget> target, bool stakedBefore = false);

  /// The present target; null before GoOn and when nothing is left.
  StakeTarget* present() const;
  /// Makes the next open one present, seen from `at`. False when none is open: then there is no
  /// present target.
  bool GoOn(const StakePosition& at);
  /// Leaves the present one for later: it comes up again behind those that were passed over less
  /// often. False, with nothing changed, when no other is open.
  bool PassOver(const StakePosition& at);
  /// Leaves it out for the rest of the session; false as GoOn.
  bool LeaveOut(const StakePosition& at);
  /// Makes the one of this name present, letter case ignored, staked or not; false when there is
  /// none.
  bool Choose(std::string_view name);
  /// The present one is staked. What has no place of its own stays present and open.
  void NoteStaked();

  /// The stake of this target is taken back: it is present and open again.
  void Reopen(const StakeTarget& target);

  std::size_t size() const { return entries_.size(); }
  std::size_t open() const;
  std::size_t staked() const;
  /// Nothing is open and nothing is chosen.
  bool done() const { return !present_ && started_; }

 private:
  enum class State { Open, Staked, LeftOut };
  struct Entry {
    std::unique_ptr<StakeTarget> target;
    State state = State::Open;
    int passedOver = 0;
  };

  std::optional<std::size_t> NextOpen(const StakePosition& at) const;
  std::size_t Count(State state) const;

  StakeOrder order_ = StakeOrder::Nearest;
  std::vector<Entry> entries_;
  std::optional<std::size_t> present_;
  bool started_ = false;
};

}  // namespace tarvex
