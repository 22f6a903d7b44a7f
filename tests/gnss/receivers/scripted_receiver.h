// A receiver that plays a script, connected and ready to be read.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "gnss/receivers/position_reader.h"
#include "tests/support/manual_clock.h"
#include "tests/support/scripted_device.h"

namespace tarvex {

class ScriptedReceiver : public testing::Test {
 protected:
  ScriptedReceiver() {
    auto owned = std::make_unique<ScriptedDevice>();
    device = owned.get();
    port = std::make_unique<Port>("script", std::move(owned), errors);
    EXPECT_EQ(port->Open(), PortError::None);
    connection.port = port.get();
  }

  GnssReadResult Read(std::string_view input, int receiverType) {
    device->input += input;
    return ReadGnssPosition(state, connection, receiverType);
  }

  LastErrorRecord errors;
  ManualClock clock;
  ScriptedDevice* device = nullptr;
  std::unique_ptr<Port> port;
  GnssConnection connection{.clock = clock};
  GnssPositionState state;
};

}  // namespace tarvex
