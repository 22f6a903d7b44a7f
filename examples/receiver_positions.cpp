// Three positions of a receiver: here the simulated one; a port makes it a real one.
#include <cstdio>

#include "tarvex/gnss/receivers/position_reader.h"
#include "tarvex/gnss/receivers/receiver_make.h"

int main() {
  tarvex::GnssConnection connection{.clock = tarvex::SystemClock()};
  tarvex::GnssPositionState state;
  for (int i = 0; i < 3; ++i) {
    const tarvex::GnssReadResult result =
        tarvex::ReadGnssPosition(state, connection, tarvex::kMakeSimulated);
    if (result != tarvex::GnssReadResult::Accepted) {
      std::fprintf(stderr, "%s\n", tarvex::ResultSentence(result, connection).c_str());
      return 1;
    }
    std::printf("%.8f %.8f %.3f HRMS %.3f\n", state.latitude, state.longitude, state.height,
                state.hrms);
  }
}
