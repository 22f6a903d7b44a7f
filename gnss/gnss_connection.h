// A connected receiver: its port, its settings, and what reading needs to remember from one call to
// the next. The simulated receiver has no port.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "gnss/port.h"
#include "gnss/position_finish.h"
#include "gnss/position_state.h"
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

struct GnssConnection {
  Port* port = nullptr;  ///< not owned; open
  Clock& clock;
  ReceiverSettings settings = {};
  PositionFinish* finish = nullptr;  ///< not owned; AcceptUsable when there is none
  StopRequest* stop = nullptr;       ///< not owned; asks a reading to end early
  LineListener* listener = nullptr;  ///< not owned
  SimulatedReceiver simulated{};

  // What a reading leaves for the next one.
  std::int32_t accepted_epoch_ms = kNoEpoch;
  std::int64_t last_read_at_ms = -1;
  std::int64_t last_request_at_ms = -1;
  std::string stream_text =
      {};  ///< received and not yet made into lines, of a stream-buffered make

  bool ready() const { return port != nullptr && port->is_open(); }
  /// Nothing more comes: a recording is at its end, or the link is lost.
  bool ended() const { return port != nullptr && port->end() != PortEnd::None; }
  /// The far end closed the connection, or the device is gone. The port can be closed and opened
  /// again; Reconnected() then forgets what belongs to the old link.
  bool link_lost() const { return port != nullptr && port->end() == PortEnd::LinkLost; }
  void Reconnected() {
    last_read_at_ms = last_request_at_ms = -1;
    stream_text.clear();
  }
};

}  // namespace tarvex
