// Ports: time-outs and error numbers on a script, then a pseudo-terminal and a loopback socket.
#include "gnss/port/port.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <optional>
#include <thread>
#include <vector>

#include "gnss/port/line_reader.h"
#include "gnss/port/port_address.h"
#include "gnss/port/serial_port.h"
#include "platform/tcp_socket.h"
#include "tests/support/loopback_listener.h"
#include "tests/support/manual_clock.h"
#include "tests/support/scripted_device.h"

namespace tarvex {
namespace {

class ScriptedPort : public testing::Test {
 protected:
  ScriptedPort() {
    auto owned = std::make_unique<ScriptedDevice>();
    device = owned.get();
    port = std::make_unique<Port>("script", std::move(owned), errors);
  }

  LastErrorRecord errors;
  ScriptedDevice* device = nullptr;
  std::unique_ptr<Port> port;
};

TEST_F(ScriptedPort, FailsWhenClosed) {
  char byte = 0;
  std::size_t waiting = 0;
  EXPECT_EQ(port->Read({&byte, 1}, 0), PortError::NotOpen);
  EXPECT_EQ(port->Write("x", 0), PortError::NotOpen);
  EXPECT_EQ(port->SetReadTimeouts(-2, 0, 0), PortError::NotOpen);
  EXPECT_EQ(port->SetWriteTimeouts(0, 0), PortError::NotOpen);
  EXPECT_EQ(port->BytesWaiting(waiting), PortError::NotOpen);
  EXPECT_EQ(port->PurgeInput(), PortError::NotOpen);
  EXPECT_EQ(port->Close(), PortError::NotOpen);
  EXPECT_EQ(errors.Get().code, 5);
}

TEST_F(ScriptedPort, OpeningReportsTheSystemsMessageFirst) {
  device->openStatus = {ENOENT};
  EXPECT_EQ(port->Open(), PortError::OpenFailed);
  ASSERT_EQ(errors.History().size(), 2U);
  EXPECT_EQ(errors.History()[0].code, 29);
  EXPECT_EQ(ErrorSentences(errors),
            "The system says: No such file or directory. The port script could not be opened.");
}

TEST_F(ScriptedPort, SetsTimeoutsByTheMeaningOfTheTotal) {
  ASSERT_EQ(port->Open(), PortError::None);
  EXPECT_EQ(device->timeouts.read, (ReadTimeouts{.multiplierMs = 2, .constantMs = 1000}));
  EXPECT_EQ(device->timeouts.write, (WriteTimeouts{.multiplierMs = 2, .constantMs = 200}));
  (void)port->SetReadTimeouts(0, 7, 7);
  EXPECT_TRUE(device->timeouts.read.atOnce());
  (void)port->SetReadTimeouts(-1, 7, 3);
  EXPECT_EQ(device->timeouts.read, (ReadTimeouts{.multiplierMs = 3, .constantMs = 30000}));
  (void)port->SetReadTimeouts(500, 50, 1);
  EXPECT_EQ(device->timeouts.read,
            (ReadTimeouts{.intervalMs = 50, .multiplierMs = 1, .constantMs = 500}));
  (void)port->SetReadTimeouts(-2, 9, 9);
  EXPECT_EQ(port->readTotalTimeout(), 500);
  (void)port->SetWriteTimeouts(-1, 5);
  EXPECT_EQ(device->timeouts.write, WriteTimeouts{});
  device->getTimeoutsStatus = {EIO};
  EXPECT_EQ(port->SetReadTimeouts(1, 0, 0), PortError::GetTimeoutsFailed);
  device->getTimeoutsStatus = {};
  device->setTimeoutsStatus = {EIO};
  EXPECT_EQ(port->SetReadTimeouts(1, 0, 0), PortError::SetTimeoutsFailed);
}

struct Stop final : StopRequest {
  bool StopRequested() override { return true; }
};

TEST_F(ScriptedPort, ReadTellsWhatCameAndWhatWasMissing) {
  ASSERT_EQ(port->Open(), PortError::None);
  char bytes[10];
  device->input = "sixbyt";
  EXPECT_EQ(port->Read(bytes, 1000), PortError::FewerBytesRead);
  EXPECT_EQ(port->lastCount(), 6U);
  EXPECT_EQ(errors.Get(), (LastError{25, {"6", "10", "1000"}}));
  EXPECT_EQ(port->Read(bytes, 0), PortError::None) << "no total is set";
  EXPECT_EQ(port->lastCount(), 0U);
  Stop stop;
  device->input = "kept";
  EXPECT_EQ(port->Read(bytes, 0, &stop), PortError::Cancelled);
  EXPECT_EQ(device->input, "kept");
  device->input.clear();
  device->whenEmpty = {EIO};
  EXPECT_EQ(port->Read(bytes, 0), PortError::ReadFailed);
  device->writeLimit = 3;
  EXPECT_EQ(port->Write("four", 100), PortError::WriteFailed);
  EXPECT_EQ(port->lastCount(), 3U);
}

TEST_F(ScriptedPort, LinesEndAtLineFeed) {
  ASSERT_EQ(port->Open(), PortError::None);
  device->input = "one\r\ntwo\n\r\nin\rside\nlast";
  char buffer[8];
  const auto next = [&] { return std::string(ReadLine(*port, buffer, 100).text); };
  EXPECT_EQ(next(), "one");
  EXPECT_EQ(next(), "two");
  EXPECT_EQ(next(), "");
  EXPECT_EQ(next(), "in\rside") << "as much as the buffer holds";
  EXPECT_EQ(next(), "");
  EXPECT_EQ(ReadLine(*port, buffer, 100).status, ReadLineStatus::TimedOut);
  EXPECT_STREQ(buffer, "last");
  device->input = "end";
  device->whenEmpty = {DeviceStatus::kEndOfData};
  const ReadLineResult last = ReadLine(*port, buffer, 100);
  EXPECT_EQ(last.text, "end") << "the end of a recording ends its last line";
  EXPECT_TRUE(last.ok() && !last.whole);
  EXPECT_EQ(ReadLine(*port, buffer, 100).status, ReadLineStatus::PortFailed);
  EXPECT_EQ(port->end(), PortEnd::RecordingEnded);
  for (const int lost : {DeviceStatus::kHungUp, EIO}) {
    device->input = "$GPG";
    device->whenEmpty = {lost};
    EXPECT_EQ(ReadLine(*port, buffer, 100).status, ReadLineStatus::PortFailed)
        << "what a lost link cut off is no line";
    EXPECT_EQ(port->end(), PortEnd::LinkLost);
  }
  EXPECT_EQ(ReadLine(*port, std::span(buffer).first(1), 100).status, ReadLineStatus::NoCapacity);
  const PortUse elsewhere(*port);
  buffer[0] = 'x';
  EXPECT_EQ(ReadLine(*port, buffer, 100).status, ReadLineStatus::PortFailed);
  EXPECT_STREQ(buffer, "") << "always a text, also when another reader has the port";
}

TEST_F(ScriptedPort, FramesEndAsTheMakeSays) {
  ASSERT_EQ(port->Open(), PortError::None);
  char buffer[64];
  device->input =
      "\x03\x03"
      "ab\n\x03"
      "rest\x03";
  EXPECT_EQ(ReadLine(*port, buffer, 100, Framing::EtxFrames).text,
            "\x03\x03"
            "ab\n\x03");
  device->input = std::string(
      "\x02\n\x40\x02"
      "abcde"
      "$GP\r\n\x01\x01",
      16);
  EXPECT_EQ(ReadLine(*port, buffer, 100, Framing::BinaryPackets).text,
            std::string_view("\x02\n\x40\x02"
                             "abcde"));
  EXPECT_EQ(ReadLine(*port, buffer, 100, Framing::BinaryPackets).text, "$GP");
}

TEST(PortAddress, IsReadFromOneText) {
  const std::pair<const char*, PortAddress> addresses[] = {
      {"serial:/dev/ttyUSB0@115200", {PortKind::Serial, "/dev/ttyUSB0", 115200}},
      {"serial:/dev/ttyS1", {PortKind::Serial, "/dev/ttyS1", 9600}},
      {"tcp:[::1]:9001", {PortKind::Tcp, "[::1]:9001"}},
      {"file:/a:b.log", {PortKind::File, "/a:b.log"}},
      {"simulated", {PortKind::Simulated, ""}}};
  for (const auto& [text, expected] : addresses) {
    const auto address = ParsePortAddress(text);
    ASSERT_TRUE(address) << text;
    EXPECT_EQ(*address, expected) << text;
  }
  for (const std::string_view bad :
       {"", "usb:1", "serial:", "serial:@9600", "serial:x@109", "serial:x@921601", "tcp:host",
        "tcp::1", "tcp:host:0", "tcp:host:65536", "tcp:host:x", "file:", "simulated:x"}) {
    const auto refused = ParsePortAddress(bad);
    ASSERT_FALSE(refused) << bad;
    EXPECT_FALSE(refused.failure().text.empty()) << bad;
  }
}

// A pseudo-terminal: the test holds the master, the port opens the slave.
class PseudoTerminal : public testing::Test {
 protected:
  void SetUp() override {
    master = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(master, 0);
    ASSERT_EQ(::grantpt(master), 0);
    ASSERT_EQ(::unlockpt(master), 0);
    name = ::ptsname(master);
    (void)port.SetLine(name, 115200, 8, 0, 0);
  }
  void TearDown() override {
    if (master >= 0) ::close(master);
  }

  void Send(std::string_view bytes) const {
    ASSERT_EQ(::write(master, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }

  int master = -1;
  std::string name;
  LastErrorRecord errors;
  ManualClock clock;
  SerialPort port{errors, clock};
};

TEST_F(PseudoTerminal, CarriesRawBytesBothWays) {
  ASSERT_EQ(port.Open(), PortError::None) << ErrorSentences(errors);
  std::string everyByte;
  for (int i = 0; i < 256; ++i) everyByte += static_cast<char>(i);
  Send(everyByte);
  std::string got(256, '\0');
  ASSERT_EQ(port.Read(got, 1000), PortError::None);
  EXPECT_EQ(got, everyByte);
  ASSERT_EQ(port.Write(everyByte, 200), PortError::None);
  std::string back(256, '\0');
  ASSERT_EQ(::read(master, back.data(), back.size()), 256);
  EXPECT_EQ(back, everyByte);
}

TEST_F(PseudoTerminal, KeepsItsTimeouts) {
  ASSERT_EQ(port.Open(), PortError::None);
  char bytes[10];
  Send("sixbyt");
  EXPECT_EQ(port.Read(bytes, 30), PortError::FewerBytesRead);
  EXPECT_EQ(port.lastCount(), 6U);
  EXPECT_EQ(port.Read(bytes, 0), PortError::None);
  EXPECT_EQ(port.lastCount(), 0U);
  const std::string flood(100'000, 'x');
  ASSERT_EQ(port.SetWriteTimeouts(20, 0), PortError::None);
  EXPECT_EQ(port.Write(flood, kKeepTimeouts), PortError::WriteFailed) << "nobody reads the far end";
  EXPECT_GT(port.lastCount(), 0U);
}

TEST_F(PseudoTerminal, IsOpenedForOneProgramAlone) {
  ASSERT_EQ(port.Open(), PortError::None);
  SerialPort second(errors, clock);
  (void)second.SetLine(name, 9600, 8, 0, 0);
  EXPECT_EQ(second.Open(), PortError::OpenFailed);
  ASSERT_EQ(port.Close(), PortError::None);
  EXPECT_EQ(second.Open(), PortError::None) << "closing gives it back";
}

TEST_F(PseudoTerminal, TakesAnyBaudRateInRange) {
  ASSERT_EQ(port.Open(), PortError::None);
  std::uint32_t baud = 0;
  EXPECT_EQ(port.SetBaudRate(256001), PortError::ConfigureFailed);
  EXPECT_EQ(port.SetBaudRate(109), PortError::ConfigureFailed);
  ASSERT_EQ(port.GetBaudRate(baud), PortError::None);
  EXPECT_EQ(baud, 115200U);
  for (const std::uint32_t rate : {110U, 57601U, 256000U}) {
    ASSERT_EQ(port.SetBaudRate(rate), PortError::None);
    ASSERT_EQ(port.GetBaudRate(baud), PortError::None);
    EXPECT_EQ(baud, rate);
  }
  // An address may ask for more than may be set on an open line.
  const auto address = ParsePortAddress("serial:" + name + "@921600");
  ASSERT_TRUE(address);
  ASSERT_EQ(port.Close(), PortError::None);
  const auto fast = MakePort(*address, SystemFiles(), clock, errors);
  ASSERT_EQ(fast->Open(), PortError::None);
  ASSERT_EQ(dynamic_cast<SerialPort&>(*fast).GetBaudRate(baud), PortError::None);
  EXPECT_EQ(baud, 921600U);
}

TEST_F(PseudoTerminal, RefusesALineThatItCannotKeep) {
  (void)port.SetLine(name, 9600, 7, kParityEven, 0);  // such a device is always 8 bits, no parity
  EXPECT_EQ(port.Open(), PortError::ConfigureFailed);
  (void)port.SetLine(name, 0, 8, 0, 0);
  EXPECT_EQ(port.Open(), PortError::ConfigureFailed);
  (void)port.SetLine(name, 9600, 8, 0, kStopBitsTwo);
  EXPECT_EQ(port.Open(), PortError::None);
}

TEST(SerialDevice, NumbersStandForTheLinesOfThisMachine) {
  LastErrorRecord errors;
  ManualClock clock;
  SerialPort port(errors, clock);
  (void)port.SetLine(9999, 9600, 8, 0, 0);
  EXPECT_EQ(port.Open(), PortError::OpenFailed);
  EXPECT_EQ(ErrorSentences(errors),
            "The system says: No such file or directory. The port COM9999: could not be opened.");
}

TEST_F(PseudoTerminal, CountsAndPurgesWhatWaits) {
  ASSERT_EQ(port.Open(), PortError::None);
  Send("line\nrest");
  char buffer[32];
  ASSERT_EQ(ReadLine(port, buffer, 1000).text, "line");
  std::size_t waiting = 0;
  ASSERT_EQ(port.BytesWaiting(waiting), PortError::None);
  EXPECT_EQ(waiting, 4U) << "what was read ahead counts";
  ASSERT_EQ(port.PurgeInput(), PortError::None);
  ASSERT_EQ(port.BytesWaiting(waiting), PortError::None);
  EXPECT_EQ(waiting, 0U);
}

TEST_F(PseudoTerminal, HoldsABreakForTenMilliseconds) {
  EXPECT_EQ(port.SendBreak(3), PortError::NotOpen);
  ASSERT_EQ(port.Open(), PortError::None);
  EXPECT_EQ(port.SendBreak(3), PortError::None);
  EXPECT_EQ(clock.sleptMs, 10);
  EXPECT_FALSE(port.DsrOn()) << "a pseudo-terminal has no such line";
}

TEST_F(PseudoTerminal, DropsWhatWasSentBeforeItWasOpened) {
  ASSERT_EQ(port.Open(), PortError::None);
  ASSERT_EQ(port.Close(), PortError::None);
  Send("$GPGGA of an hour ago\n");
  ASSERT_EQ(port.Open(), PortError::None);
  Send("now\n");
  char buffer[64];
  EXPECT_EQ(ReadLine(port, buffer, 1000).text, "now");
}

// A byte now and then must not keep the reader from hearing that it should stop.
TEST_F(PseudoTerminal, StopsWhileBytesDribbleIn) {
  std::atomic<bool> stop = false;
  SerialPort stoppable(errors, clock, [&stop] { return stop.load(); });
  (void)stoppable.SetLine(name, 115200, 8, 0, 0);
  ASSERT_EQ(stoppable.Open(), PortError::None) << ErrorSentences(errors);
  std::atomic<bool> ended = false;
  std::thread sender([&] {
    for (int i = 0; !ended && i < 400; ++i) {
      Send("x");
      if (i == 10) stop = true;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  });
  char buffer[1024];
  EXPECT_EQ(ReadLine(stoppable, buffer, 1000).status, ReadLineStatus::PortFailed);
  ended = true;
  sender.join();
  EXPECT_LT(std::string_view(buffer).size(), 100U);
  EXPECT_EQ(stoppable.end(), PortEnd::None) << "the link is not lost";
}

TEST_F(PseudoTerminal, TellsAHangUp) {
  ASSERT_EQ(port.Open(), PortError::None);
  ::close(master);
  master = -1;
  char byte = 0;
  EXPECT_EQ(port.Read({&byte, 1}, 1000), PortError::ReadFailed);
  EXPECT_EQ(port.end(), PortEnd::LinkLost);
  EXPECT_EQ(port.Close(), PortError::None);
  EXPECT_EQ(port.Open(), PortError::OpenFailed) << "the device is gone";
}

// A listening socket on loopback.
class Loopback : public testing::Test {
 protected:
  void TearDown() override {
    if (peer >= 0) ::close(peer);
  }

  std::optional<LoopbackListener> listener{std::in_place};
  int peer = -1;
  const std::string target = listener->target();
  LastErrorRecord errors;
  ManualClock clock;
};

TEST_F(Loopback, ReadsLinesThatDribbleIn) {
  const auto port =
      MakePort({.kind = PortKind::Tcp, .target = target}, SystemFiles(), clock, errors);
  ASSERT_EQ(port->Open(), PortError::None) << ErrorSentences(errors);
  peer = listener->Accept();
  std::thread sender([this] {
    for (const char c : std::string_view("$GPGGA,1\r\nsecond\n")) {
      ASSERT_EQ(::send(peer, &c, 1, 0), 1);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  });
  char buffer[64];
  EXPECT_EQ(ReadLine(*port, buffer, 1000).text, "$GPGGA,1");
  EXPECT_EQ(ReadLine(*port, buffer, 1000).text, "second");
  sender.join();
  EXPECT_EQ(ReadLine(*port, buffer, 10).status, ReadLineStatus::TimedOut);
  ::close(peer);
  peer = -1;
  EXPECT_EQ(ReadLine(*port, buffer, 1000).status, ReadLineStatus::PortFailed);
  EXPECT_EQ(port->end(), PortEnd::LinkLost);
  EXPECT_EQ(port->Write(std::string(1 << 16, 'x'), 100) == PortError::None &&
                port->Write(std::string(1 << 16, 'x'), 100) == PortError::None,
            false)
      << "a reset fails the call and ends nothing";
  EXPECT_EQ(port->Close(), PortError::None);
  ASSERT_EQ(port->Open(), PortError::None) << "a lost link is opened anew";
  EXPECT_EQ(port->end(), PortEnd::None);
  peer = listener->Accept();
  ASSERT_EQ(::send(peer, "third\n", 6, 0), 6);
  EXPECT_EQ(ReadLine(*port, buffer, 1000).text, "third");
}

TEST(TcpDevice, NamesAnUnknownHost) {
  LastErrorRecord errors;
  ManualClock clock;
  const auto port = MakePort({.kind = PortKind::Tcp, .target = "no-such-host.invalid:9001"},
                             SystemFiles(), clock, errors);
  EXPECT_EQ(port->Open(), PortError::OpenFailed);
  EXPECT_EQ(errors.Get().arguments, std::vector<std::string>{"no-such-host.invalid:9001"});
}

// How long an operation took, in milliseconds.
template <typename Action>
std::int64_t Milliseconds(Action action) {
  const auto before = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                               before)
      .count();
}

TEST_F(Loopback, StoppingEndsConnectingAndReading) {
  // A queue that is full answers no more, as a host that drops packets does.
  std::vector<int> waiting;
  sockaddr_in address{};
  socklen_t size = sizeof address;
  ASSERT_EQ(::getsockname(listener->descriptor(), reinterpret_cast<sockaddr*>(&address), &size), 0);
  for (int i = 0; i < 8; ++i) {
    waiting.push_back(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    (void)::connect(waiting.back(), reinterpret_cast<sockaddr*>(&address), size);
  }
  std::atomic<bool> stop = false;
  const auto device = MakeTcpDevice(20'000, [&stop] { return stop.load(); });
  std::thread stopper([&stop] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    stop = true;
  });
  DeviceStatus status;
  EXPECT_LT(Milliseconds([&] { status = device->Open(target); }), 5000);
  EXPECT_EQ(status.code, ECANCELED);
  stopper.join();
  for (const int descriptor : waiting) ::close(descriptor);
  stop = false;
  ASSERT_EQ(::fcntl(listener->descriptor(), F_SETFL, O_NONBLOCK), 0);
  while ((peer = listener->Accept()) >= 0) ::close(peer);
  ASSERT_TRUE(device->Open(target).ok());
  ASSERT_TRUE(device->SetTimeouts({.read = {.constantMs = 20'000}}).ok());
  char byte = 0;
  std::size_t got = 0;
  stop = true;
  EXPECT_LT(Milliseconds([&] { status = device->Read({&byte, 1}, got); }), 5000);
  EXPECT_EQ(status.code, ECANCELED);
}

TEST_F(Loopback, NamesARefusedConnection) {
  listener.reset();
  const auto port =
      MakePort({.kind = PortKind::Tcp, .target = target}, SystemFiles(), clock, errors);
  EXPECT_EQ(port->Open(), PortError::OpenFailed);
  EXPECT_NE(ErrorSentences(errors).find("Connection refused"), std::string::npos);
}

}  // namespace
}  // namespace tarvex
