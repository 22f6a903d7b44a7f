// A receiver without hardware: a random walk of position, HRMS and VRMS, one second an epoch. The
// walk depends on nothing but the local time it was started at, so a session can be repeated.
#pragma once

#include <cstdint>

#include "gnss/position/position_state.h"
#include "gnss/position/read_result.h"
#include "platform/clock.h"

namespace tarvex {

class SimulatedReceiver {
 public:
  /// Where the walk begins when the state has no position yet.
  double startLatitude = 46.815172;
  double startLongitude = 9.267419;
  double startHeight = 1101.4;

  /// Moves the state on by one epoch: at most some centimetres, FIXED, HRMS 0.005 to 0.020 m, VRMS
  /// 0.008 to 0.035 m. The first step takes its seed and its epoch from the clock.
  void Step(Clock& clock, GnssPositionState& state);

 private:
  void Begin(const LocalTime& now, GnssPositionState& state);
  double Random();  // -1 to 1

  std::uint64_t random_ = 0;
  double hrmsM_ = 0.010;
  double vrmsM_ = 0.016;
  bool begun_ = false;
};

struct GnssConnection;
struct ReceiverMake;

/// The next epoch of the connection's simulated receiver.
GnssReadResult ReadSimulatedPosition(GnssPositionState& state, GnssConnection& connection,
                                     const ReceiverMake& make);

}  // namespace tarvex
