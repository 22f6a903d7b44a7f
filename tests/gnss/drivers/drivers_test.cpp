// Drivers, protocols by name, and Bluetooth addresses.
#include "gnss/drivers/instrument_driver.h"

#include <gtest/gtest.h>

#include "gnss/port/bluetooth_address.h"
#include "tests/gnss/receivers/scripted_receiver.h"

namespace tarvex {
namespace {

class Drivers : public ScriptedReceiver {
 protected:
  std::string Diagnostic() const { return errors.Get().arguments.at(0); }
};

TEST_F(Drivers, NameWhatIsMissing) {
  PositionDriver position(errors);
  RadioDriver radio(errors);
  char buffer[16];
  std::string_view reply;
  EXPECT_EQ(position.Assign(port.get()), PortError::NothingGiven);
  EXPECT_EQ(Diagnostic(), "m_protocol in PositionDriver::Assign");
  EXPECT_EQ(position.AssignProtocol(nullptr), PortError::NothingGiven);
  EXPECT_EQ(Diagnostic(), "prot in PositionDriver::AssignProtocol");
  EXPECT_EQ(position.Send("x", 10), PortError::NothingGiven);
  EXPECT_EQ(Diagnostic(), "m_protocol in PositionDriver::Send");
  EXPECT_EQ(radio.Receive(buffer, reply, 10), PortError::NothingGiven);
  EXPECT_EQ(Diagnostic(), "m_protocol in RadioDriver::Receive");
  Protocol protocol(*FindProtocol("SimpleProtocol"));
  EXPECT_EQ(radio.AssignProtocol(&protocol), PortError::None);
  EXPECT_EQ(radio.Assign(nullptr), PortError::NothingGiven);
  EXPECT_EQ(Diagnostic(), "con in RadioDriver::Assign");
  EXPECT_EQ(radio.Send("x", 10), PortError::NothingGiven) << "no port yet";
  long long value = 0;
  EXPECT_EQ(radio.DoProcessCommand(RadioCommand::CMD_GET_RADIO_AIR_BAUD, nullptr, value),
            PortError::NothingGiven);
  EXPECT_EQ(Diagnostic(), "modul in RadioDriver::DoProcessCommand for CMD_GET_RADIO_AIR_BAUD");
}

TEST_F(Drivers, ExchangeDataThroughTheirProtocol) {
  PositionDriver driver(errors);
  Protocol protocol(*FindProtocol("Modem Protocol"));
  ASSERT_EQ(driver.AssignProtocol(&protocol), PortError::None);
  ASSERT_EQ(driver.Assign(port.get()), PortError::None);
  device->replies = {{"ATI", "CONNECT 9600\r\nrest"}};
  ASSERT_EQ(driver.Send("ATI", 100), PortError::None);
  EXPECT_EQ(device->written, "ATI\r");
  char buffer[64];
  std::string_view reply;
  ASSERT_EQ(driver.Receive(buffer, reply, 100), PortError::None);
  EXPECT_EQ(reply, "CONNECT 9600");
  Protocol raw(*FindProtocol("Pass Thru"));
  ASSERT_EQ(driver.AssignProtocol(&raw), PortError::None);
  ASSERT_EQ(driver.Assign(port.get()), PortError::None);
  ASSERT_EQ(driver.Receive(buffer, reply, 100), PortError::None);
  EXPECT_EQ(reply, "rest");
  EXPECT_EQ(driver.Receive(buffer, reply, 100), PortError::FewerBytesRead);
  errors.Clear();
  const PortUse elsewhere(*port);
  EXPECT_EQ(driver.Receive(buffer, reply, 100), PortError::ReadFailed);
  EXPECT_EQ(errors.Get().code, 6) << "recorded, not only returned";
}

TEST_F(Drivers, AskARadioForItsRate) {
  const RadioModule module{.airBaudQuery = "ATI?"};
  Protocol protocol(*FindProtocol("SimpleProtocol"));
  RadioDriver radio(errors);
  JavadUHFRadio javad(errors);
  for (RadioDriver* driver : {&radio, static_cast<RadioDriver*>(&javad)}) {
    ASSERT_EQ(driver->AssignProtocol(&protocol), PortError::None);
    ASSERT_EQ(driver->Assign(port.get()), PortError::None);
  }
  device->replies = {{"ATI?", "rate=19200\r\n"}, {"ATI?", "RE0059600\r\n"}, {"ATI?", "none\r\n"}};
  long long baud = 0;
  constexpr auto kAirBaud = RadioCommand::CMD_GET_RADIO_AIR_BAUD;
  ASSERT_EQ(radio.DoProcessCommand(kAirBaud, &module, baud), PortError::None);
  EXPECT_EQ(baud, 19200);
  ASSERT_EQ(javad.DoProcessCommand(kAirBaud, &module, baud), PortError::None);
  EXPECT_EQ(baud, 9600);
  EXPECT_EQ(radio.DoProcessCommand(kAirBaud, &module, baud), PortError::NoAnswer);
}

TEST(Protocols, AreKnownByTheirNames) {
  EXPECT_EQ(Protocols().size(), 15U);
  EXPECT_NE(FindProtocol("SokkiaGSM Protocol"), nullptr);
  EXPECT_EQ(FindProtocol("Unknown"), nullptr);
}

TEST(BluetoothAddress, IsHexadecimalWithColons) {
  const auto address = ParseBluetoothAddress("00:1a:7D:DA:71:13");
  ASSERT_TRUE(address.has_value());
  EXPECT_EQ(BluetoothAddressText(*address), "00:1A:7D:DA:71:13");
  for (const char* bad :
       {"", "00:1a:7D:DA:71", "00-1a-7D-DA-71-13", "00:1a:7D:DA:71:1g", "00:1a:7D:DA:71:13:"}) {
    EXPECT_FALSE(ParseBluetoothAddress(bad).has_value()) << bad;
  }
}

}  // namespace
}  // namespace tarvex
