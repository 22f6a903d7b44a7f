// Any bytes as what a receiver sends, read as each kind of make reads it: lines, sentences and
// replies. The state stays finite where a position is accepted.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "gnss/receivers/dop_request.h"
#include "gnss/receivers/position_reader.h"
#include "gnss/receivers/receiver_make.h"
#include "tests/support/manual_clock.h"
#include "tests/support/scripted_device.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const auto makes = tarvex::ReceiverMakes();
  const tarvex::ReceiverMake& make = makes[data[0] % makes.size()];
  tarvex::LastErrorRecord errors;
  tarvex::ManualClock clock;
  auto device = std::make_unique<tarvex::ScriptedDevice>();
  device->input.assign(reinterpret_cast<const char*>(data) + 2, size - 2);
  device->whenEmpty = {tarvex::DeviceStatus::kEndOfData};
  tarvex::Port port("fuzz", std::move(device), errors);
  (void)port.Open();
  tarvex::GnssConnection connection{.port = &port, .clock = clock, .settings = make.settings};
  constexpr int kPositions[] = {1, 2, 4, 8, 16, 32};
  connection.settings.nmea.position = kPositions[data[1] % 6];
  connection.settings.ashtech.model = data[1] % 7;
  tarvex::GnssPositionState state;
  for (int reading = 0; reading < 50 && !connection.ended(); ++reading) {
    if (tarvex::ReadGnssPosition(state, connection, make.code) ==
            tarvex::GnssReadResult::Accepted &&
        !(std::isfinite(state.latitude) && std::isfinite(state.longitude) &&
          std::isfinite(state.height))) {
      std::abort();
    }
  }
  (void)tarvex::RequestDop(state, connection, make.code);
  return 0;
}
