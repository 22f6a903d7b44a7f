// A receiver while a session works with it: opened, read position by position, and opened again
// when the link is lost. Everything that it says passes a tap (log, newest GGA, sky).
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/workflow/chosen_receiver.h"
#include "app/workflow/receiver_tap.h"
#include "core/units/units.h"
#include "gnss/port/link_retry.h"
#include "gnss/receivers/gnss_connection.h"
#include "gnss/receivers/position_reader.h"

namespace tarvex {

/// Makes the closed port of an address; tests hand in their own.
using PortMaker = std::function<std::unique_ptr<Port>(const PortAddress&, StopAsked)>;

class ReceiverLink final : private StopRequest {
 public:
  /// `stop` ends every waiting. Without a `maker` the system's ports are used.
  ReceiverLink(FileSystem& files, Clock& clock, const ChosenReceiver& receiver, DistanceUnit unit,
               StopAsked stop, const PortMaker& maker = {});

  /// False with a sentence in `problem`.
  [[nodiscard]] bool Open(std::string& problem);

  /// One reading into state(); it is back half a second behind `deadlineMs` (steady clock) at the
  /// latest.
  GnssReadResult Read(std::int64_t deadlineMs = kNoDeadline);
  /// The sentence for people about a reading that gave no position.
  std::string Sentence(GnssReadResult result) const;
  /// The precision of the position that was just read may still come with the next one.
  bool PrecisionMayFollow() const;
  const GnssPositionState& state() const { return state_; }

  /// The recording is at its end.
  bool ended() const { return connection_.ended() && !lost(); }
  /// The far end closed the connection or the device is gone.
  bool lost() const { return lost_ || connection_.linkLost(); }

  /// The time from now to the next try to open a lost link: 1 s after it was lost, doubling to 30
  /// s.
  std::int64_t NextTryMs() const;
  /// Tries when it is due; true when the receiver is back.
  bool TryAgain();

  ReceiverTap& tap() { return tap_; }
  /// Null for the simulated receiver.
  Port* port() { return port_.get(); }

 private:
  bool StopRequested() override { return stop_ && stop_(); }
  bool OpenPort();
  void NoteLost();

  Clock& clock_;
  ChosenReceiver receiver_;
  StopAsked stop_;
  std::unique_ptr<Port> port_;
  ReceiverTap tap_;
  GnssConnection connection_;
  GnssPositionState state_;
  std::uint64_t damagedInReading_ = 0;
  bool lost_ = false;
  LinkRetry retry_;
  std::int64_t nextTryAtMs_ = 0;
};

}  // namespace tarvex
