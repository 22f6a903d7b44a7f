// The serial port's own operations: each platform call, its error number, and what a closed port
// says.
#include "gnss/port/serial_port.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "tests/gnss/port/scripted_serial_device.h"
#include "tests/support/manual_clock.h"

namespace tarvex {
namespace {

using testing::ElementsAre;

class Serial : public testing::Test {
 protected:
  Serial() {
    auto owned = std::make_unique<ScriptedSerialDevice>();
    device = owned.get();
    port = std::make_unique<SerialPort>(std::move(owned), errors, clock);
  }
  std::vector<int> Codes() const {
    std::vector<int> codes;
    for (const LastError& error : errors.History()) codes.push_back(error.code);
    return codes;
  }

  LastErrorRecord errors;
  ManualClock clock;
  ScriptedSerialDevice* device = nullptr;
  std::unique_ptr<SerialPort> port;
};

struct Operation {
  const char* call;  ///< of the device
  int code;          ///< when that call fails
  std::function<PortError(SerialPort&)> run;
};

std::vector<Operation> Operations() {
  static std::uint32_t baud = 0;
  static std::size_t count = 0;
  static char byte = 0;
  return {{"GetLine", 9, [](SerialPort& p) { return p.Configure(); }},
          {"SetLine", 9, [](SerialPort& p) { return p.Configure(); }},
          {"SetLine", 9, [](SerialPort& p) { return p.SetLine("name", 9600, 8, 0, 0); }},
          {"GetLine", 9, [](SerialPort& p) { return p.SetBaudRate(9600); }},
          {"SetLine", 9, [](SerialPort& p) { return p.SetBaudRate(9600); }},
          {"GetLine", 9, [](SerialPort& p) { return p.GetBaudRate(baud); }},
          {"SetQueueSizes", 10, [](SerialPort& p) { return p.SetQueueSizes(4096, 2048); }},
          {"GetTimeouts", 11, [](SerialPort& p) { return p.SetReadTimeouts(5, 0, 0); }},
          {"SetTimeouts", 12, [](SerialPort& p) { return p.SetWriteTimeouts(5, 0); }},
          {"BytesWaiting", 13, [](SerialPort& p) { return p.BytesWaiting(count); }},
          {"ClearErrors", 14, [](SerialPort& p) { return p.ClearErrors(); }},
          {"PurgeOutput", 15, [](SerialPort& p) { return p.PurgeOutput(); }},
          {"PurgeInput", 16, [](SerialPort& p) { return p.PurgeInput(); }},
          {"Flush", 17, [](SerialPort& p) { return p.Flush(); }},
          {"SetBreak", 18, [](SerialPort& p) { return p.SendBreak(20); }},
          {"ClearBreak", 18, [](SerialPort& p) { return p.SendBreak(20); }},
          {"Read", 6, [](SerialPort& p) { return p.Read({&byte, 1}, kKeepTimeouts); }},
          {"Write", 7, [](SerialPort& p) { return p.Write("x", kKeepTimeouts); }}};
}

TEST_F(Serial, EveryOperationHasItsErrorNumber) {
  for (const Operation& operation : Operations()) {
    SCOPED_TRACE(operation.call + std::string(" ") + std::to_string(operation.code));
    device->failing.clear();
    ASSERT_EQ(port->Open(), PortError::None);
    if (operation.code != 6) {  // the scripted line has nothing to say
      EXPECT_EQ(operation.run(*port), PortError::None);
    }
    device->failing[operation.call] = {EIO};
    EXPECT_EQ(static_cast<int>(operation.run(*port)), operation.code);
    EXPECT_EQ(errors.Get().code, operation.code);
    EXPECT_FALSE(ErrorSentence(errors.Get()).starts_with("IDS_STRING")) << "it has a text";
    ASSERT_EQ(port->Close(), PortError::None);
    // On a closed port the settings are only stored; everything else needs an open one.
    const PortError closed = operation.run(*port);
    if (closed != PortError::None) {
      EXPECT_EQ(closed, PortError::NotOpen);
    }
  }
}

TEST_F(Serial, SettingsAreStoredWhileClosedAndAppliedWhileOpen) {
  ASSERT_EQ(port->SetLine(7, 4800, 7, kParityEven, kStopBitsTwo), PortError::None);
  EXPECT_EQ(port->name(), "COM7:");
  EXPECT_TRUE(device->done.empty());
  ASSERT_EQ(port->Open(), PortError::None);
  EXPECT_THAT(device->done, ElementsAre("Open COM7:", "GetLine", "SetLine", "GetTimeouts",
                                        "SetTimeouts", "GetTimeouts", "SetTimeouts", "PurgeInput"));
  EXPECT_EQ(device->line, (SerialLine{4800, 7, SerialParity::Even, SerialStopBits::Two}));
  const std::pair<std::uint32_t, SerialParity> parities[] = {{0, SerialParity::None},
                                                             {4, SerialParity::Odd},
                                                             {8, SerialParity::Mark},
                                                             {16, SerialParity::Space},
                                                             {6, SerialParity::None}};
  for (const auto& [flag, parity] : parities) {
    ASSERT_EQ(port->SetLine(7, 9600, 8, flag, kStopBitsOneAndHalf), PortError::None);
    EXPECT_EQ(device->line.parity, parity) << flag;
    EXPECT_EQ(device->line.stopBits, SerialStopBits::OneAndHalf);
  }
}

TEST_F(Serial, OpeningNamesWhatFailed) {
  (void)port->SetLine(3, 9600, 8, 0, 0);
  device->failing["Open"] = {EACCES};
  EXPECT_EQ(port->Open(), PortError::OpenFailed);
  EXPECT_THAT(Codes(), ElementsAre(29, 24));
  EXPECT_EQ(errors.Get().arguments, std::vector<std::string>{"COM3:"});
  errors.Clear();
  device->failing = {{"SetLine", {EINVAL}}};
  EXPECT_EQ(port->Open(), PortError::ConfigureFailed);
  EXPECT_THAT(Codes(), ElementsAre(29, 9));
  EXPECT_EQ(errors.History().front().arguments, std::vector<std::string>{"SetCommState failed"});
  EXPECT_FALSE(port->isOpen());
  errors.Clear();
  ASSERT_EQ((device->failing.clear(), port->Open()), PortError::None);
  device->failing = {{"SetLine", {EINVAL}}};
  EXPECT_EQ(port->SetBaudRate(19200), PortError::ConfigureFailed);
  EXPECT_THAT(Codes(), ElementsAre(9)) << "a rate alone names no message";
  EXPECT_EQ(port->baudRate(), 9600U);
}

TEST_F(Serial, BreakHoldsForTheTimeAsked) {
  ASSERT_EQ(port->Open(), PortError::None);
  ASSERT_EQ(port->SendBreak(250), PortError::None);
  EXPECT_EQ(clock.sleptMs, 250);
  EXPECT_TRUE(port->DsrOn());
  device->failing["GetDsr"] = {ENOTTY};
  EXPECT_FALSE(port->DsrOn());
}

}  // namespace
}  // namespace tarvex
