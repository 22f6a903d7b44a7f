// A connected receiver: its port, its settings, and what reading needs to remember from one call to
// the next. The simulated receiver has no port.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>

#include "gnss/line_reader.h"
#include "gnss/port.h"
#include "gnss/position_finish.h"
#include "gnss/position_state.h"
#include "gnss/precision_order.h"
#include "gnss/receiver_settings.h"
#include "gnss/simulated_receiver.h"
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
  PositionFinish* finish = nullptr;  ///< not owned; AcceptUsable when there is none
  StopRequest* stop = nullptr;       ///< not owned; asks a reading to end early
  LineListener* listener = nullptr;  ///< not owned
  /// Steady clock: a reading is back half a second behind it at the latest, whatever comes in.
  std::int64_t deadline_ms = kNoDeadline;
  SimulatedReceiver simulated{};

  // What a reading leaves for the next one.
  std::int32_t accepted_epoch_ms = kNoEpoch;
  std::int64_t last_read_at_ms = -1;
  std::int64_t last_request_at_ms = -1;
  std::int64_t no_dop_request_before_ms = 0;
  PrecisionOrder precision_order = PrecisionOrder::Unknown;
  bool reconfigured = false;       ///< the last reading had to set the receiver up: read again
  std::string returned_line = {};  ///< read, and given back for the next reading; empty: none
  std::string stream_text =
      {};  ///< received and not yet made into lines, of a stream-buffered make

  /// `at_ms`, or the deadline when that is sooner; none when neither is one.
  ReadDeadline DeadlineBy(std::int64_t at_ms = kNoDeadline) const {
    const std::int64_t sooner = std::min(at_ms, deadline_ms);
    return sooner == kNoDeadline ? ReadDeadline() : ReadDeadline(clock, sooner);
  }

  bool ready() const { return port != nullptr && port->is_open(); }
  /// Nothing more comes: a recording is at its end, or the link is lost.
  bool ended() const { return port != nullptr && port->end() != PortEnd::None; }
  /// The far end closed the connection, or the device is gone. The port can be closed and opened
  /// again; Reconnected() then forgets what belongs to the old link.
  bool link_lost() const { return port != nullptr && port->end() == PortEnd::LinkLost; }
  void Reconnected() {
    last_read_at_ms = last_request_at_ms = -1;
    stream_text.clear();
    returned_line.clear();
    precision_order = PrecisionOrder::Unknown;
  }
};

}  // namespace tarvex
