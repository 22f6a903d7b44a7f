// What a person tells a running session, from whatever thread the face has for it. The session
// takes the commands between two readings of the receiver.
#pragma once

#include <atomic>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <variant>

namespace tarvex {

/// Store the next position that the limits let through.
struct StoreNow {};
struct SetDescription {
  std::string description;
};
inline constexpr double kHighestAntenna = 1000.0;
struct SetAntennaHeight {
  double height = 0.0;  ///< above the point, job's unit
};
/// Under which the next point goes; from there on the ids count as before.
struct SetNextId {
  std::string id;
};
/// So many distinct epochs make one point.
struct SetAverage {
  std::size_t epochs = 1;
};
/// The point that this session stored last leaves the job again; once more, the one before. A store
/// that still waits for its position is given up instead.
struct TakeBack {};
/// Positions are shown, none is stored. Epochs of a mean that is not complete are forgotten.
struct PauseStoring {};
struct ResumeStoring {};
/// Staking: leave the present target for later, and set out the next open one.
struct NextTarget {};
/// Staking: leave the present target out, and set out the next open one.
struct SkipTarget {};
/// Staking: set out the target of this name.
struct ChooseTarget {
  std::string name;
};
/// Ask the caster again at once, also after a refusal.
struct RetryCorrections {};
struct EndSession {};

using SessionCommand = std::variant<StoreNow, SetDescription, SetAntennaHeight, SetNextId,
                                    SetAverage, TakeBack, PauseStoring, ResumeStoring, NextTarget,
                                    SkipTarget, ChooseTarget, RetryCorrections, EndSession>;

class SessionCommands {
 public:
  /// From any thread.
  void Send(SessionCommand command);
  /// In the order in which they were sent; nothing when there is none.
  std::optional<SessionCommand> Take();
  /// True from the moment that EndSession was sent, so that a waiting can end for it.
  bool EndSent() const { return endSent_; }

 private:
  std::mutex mutex_;
  std::deque<SessionCommand> commands_;
  std::atomic<bool> endSent_ = false;
};

}  // namespace tarvex
