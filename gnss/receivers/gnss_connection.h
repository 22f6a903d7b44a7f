// A connected receiver: its port, its settings, and what reading needs to remember from one call to
// the next. The simulated receiver has no port.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>

#include "gnss/port/line_reader.h"
#include "gnss/port/port.h"
#include "gnss/position/position_state.h"
#include "gnss/receivers/position_acceptance.h"
#include "gnss/receivers/precision_order.h"
#include "gnss/receivers/receiver_settings.h"
#include "gnss/receivers/simulated_receiver.h"
#include "platform/clock.h"

namespace tarvex {

/// Sees every line as it was read; for logs and for what is sent up to a caster.
class LineListener {
 public:
  virtual ~LineListener() = default;
  virtual void OnLine(std::string_view line) = 0;
};

inline constexpr std::int64_t kNoDeadline = std::numeric_limits<std::int64_t>::max();

struct GnssConnection {
  Port* port = nullptr;  ///< not owned; open
  Clock& clock;
  ReceiverSettings settings = {};
  PositionAcceptance* acceptance = nullptr;  ///< not owned; null: AcceptInRange
  StopRequest* stop = nullptr;               ///< not owned; asks a reading to end early
  LineListener* listener = nullptr;          ///< not owned
  /// Steady clock: a reading is back half a second behind it at the latest, whatever comes in.
  std::int64_t deadlineMs = kNoDeadline;
  SimulatedReceiver simulated{};

  // What a reading leaves for the next one.
  std::int32_t acceptedEpochMs = kNoEpoch;
  std::int32_t linkEpochMs = kNoEpoch;  ///< the same, of this link alone
  std::int64_t lastReadAtMs = -1;
  std::int64_t lastRequestAtMs = -1;
  std::int64_t noDopRequestBeforeMs = 0;
  PrecisionOrder precisionOrder = PrecisionOrder::Unknown;
  bool reconfigured = false;      ///< the last reading had to set the receiver up: read again
  std::string returnedLine = {};  ///< read, and given back for the next reading; empty: none
  std::string streamText = {};  ///< received and not yet made into lines, of a stream-buffered make

  /// `atMs`, or the deadline when that is sooner; none when neither is one.
  ReadDeadline DeadlineBy(std::int64_t atMs = kNoDeadline) const {
    const std::int64_t sooner = std::min(atMs, deadlineMs);
    return sooner == kNoDeadline ? ReadDeadline() : ReadDeadline(clock, sooner);
  }

  bool ready() const { return port != nullptr && port->isOpen(); }
  /// Nothing more comes: a recording is at its end, or the link is lost.
  bool ended() const { return port != nullptr && port->end() != PortEnd::None; }
  /// The far end closed the connection, or the device is gone. The port can be closed and opened
  /// again; Reconnected() then forgets what belongs to the old link.
  bool linkLost() const { return port != nullptr && port->end() == PortEnd::LinkLost; }
  void Reconnected() {
    lastReadAtMs = lastRequestAtMs = -1;
    streamText.clear();
    returnedLine.clear();
    precisionOrder = PrecisionOrder::Unknown;
    linkEpochMs = kNoEpoch;
  }
};

}  // namespace tarvex
