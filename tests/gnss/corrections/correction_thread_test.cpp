// Session and caster as they run in the field: on threads, over loopback sockets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "gnss/caster/loopback_caster.h"
#include "gnss/corrections/correction_session.h"
#include "gnss/corrections/correction_thread.h"
#include "gnss/ntrip/tcp_connection.h"
#include "tests/gnss/corrections/capture.h"
#include "tests/support/memory_files.h"
#include "tests/support/scripted_device.h"

namespace tarvex {
namespace {

using testing::HasSubstr;

CasterContent Content(const std::string& data, std::uint32_t rate) {
  CasterContent content{.user = "u", .password = "secret", .data = data, .bytesPerSecond = rate};
  content.stream.mountpoint.Assign("MNT");
  content.stream.nmea = true;
  content.stream.format.Assign("RTCM 3.2");
  return content;
}

class Field : public testing::Test {
 protected:
  template <typename Condition>
  static bool Eventually(Condition condition) {
    for (int i = 0; i < 500; ++i) {
      if (condition()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }
  CorrectionPlan PlanFor(const LoopbackCaster& caster, const std::string& mountpoint) {
    return {.caster = {.host = FixedText<128>("127.0.0.1"),
                       .port = std::to_string(caster.port()),
                       .user = "u",
                       .password = "secret"},
            .mountpoint = mountpoint,
            .ggaIntervalMs = 50};
  }

  LastErrorRecord errors;
  MemoryFiles files;
  NtripSurroundings surroundings{.clock = SystemClock(), .files = files, .errors = errors};
};

TEST_F(Field, CorrectionsFlowWhileTheReceiverIsRead) {
  LoopbackCaster caster(Content(Capture("rtcm3.bndm.log"), 200'000), SystemClock());
  ASSERT_TRUE(caster.Start(0).ok());
  const auto connection = MakeTcpNtripConnection(errors);
  CorrectionSession session(PlanFor(caster, "MNT"), *connection, surroundings);
  auto owned = std::make_unique<ScriptedDevice>();
  ScriptedDevice* const device = owned.get();
  Port port("receiver", std::move(owned), errors);
  ASSERT_EQ(port.Open(), PortError::None);
  PortSink sink(port);
  LatestGga gga;
  session.Attach(&sink, &gga);
  std::vector<std::string> uploads;
  {
    const CorrectionThread thread(session);
    gga.OnLine("$GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*59");
    EXPECT_TRUE(Eventually([&] { return session.Status().frames > 150; }));
    EXPECT_TRUE(Eventually([&] {
      for (std::string& line : caster.TakeUploads()) uploads.push_back(std::move(line));
      return uploads.size() > 2;
    }));
    char bytes[16];
    EXPECT_EQ(port.Read(bytes, 0), PortError::None);
  }
  const CorrectionStatus status = session.Status();
  EXPECT_EQ(status.badCrcs, 0U);
  EXPECT_EQ(status.bytesToReceiver, device->written.size());
  EXPECT_TRUE(device->written.starts_with(Capture("rtcm3.bndm.log"))) << "no byte lost";
  EXPECT_THAT(uploads.front(), HasSubstr("$GPGGA,123519"));
}

TEST_F(Field, AReceiverThatTakesNothingHoldsNobodyUp) {
  LoopbackCaster caster(Content(Capture("rtcm3.bndm.log"), 0), SystemClock());
  ASSERT_TRUE(caster.Start(0).ok());
  DeviceStatus status;
  const auto listener = ListenOnLoopback(0, status);
  ASSERT_TRUE(listener);
  Port port("127.0.0.1:" + std::to_string(listener->port()), MakeTcpDevice(1000), errors);
  ASSERT_EQ(port.Open(), PortError::None);
  const auto connection = MakeTcpNtripConnection(errors);
  CorrectionSession session(PlanFor(caster, "MNT"), *connection, surroundings);
  std::atomic<bool> stopping = false;
  PortSink sink(port, [&stopping] { return stopping.load(); });
  session.Attach(&sink, nullptr);
  std::chrono::steady_clock::time_point before;
  {
    const CorrectionThread thread(session);
    // What the two sockets hold is taken, nothing behind it.
    std::uint64_t taken = 0;
    EXPECT_TRUE(Eventually([&] {
      const std::uint64_t last = std::exchange(taken, session.Status().bytesToReceiver);
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
      return taken > 0 && taken == last;
    }));
    stopping = true;
    before = std::chrono::steady_clock::now();
  }
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(1));
}

TEST_F(Field, AWrongMountpointIsToldWithOneThatExists) {
  LoopbackCaster caster(Content(kStationFrame, 1000), SystemClock());
  ASSERT_TRUE(caster.Start(0).ok());
  const auto connection = MakeTcpNtripConnection(errors);
  CorrectionSession session(PlanFor(caster, "MNY"), *connection, surroundings);
  const CorrectionThread thread(session);
  EXPECT_TRUE(Eventually([&] { return !session.Status().mostAlike.empty(); }));
  EXPECT_THAT(CorrectionSentence(session.Status()), HasSubstr("it has MNT."));
}

TEST_F(Field, ACasterThatDropsIsWaitedFor) {
  LoopbackCaster caster(Content(kStationFrame, 1000), SystemClock());
  ASSERT_TRUE(caster.Start(0).ok());
  const auto connection = MakeTcpNtripConnection(errors);
  CorrectionSession session(PlanFor(caster, "MNT"), *connection, surroundings);
  const CorrectionThread thread(session);
  ASSERT_TRUE(Eventually([&] { return session.Status().bytes > 0; }));
  caster.DropClients();
  ASSERT_TRUE(Eventually([&] { return session.Status().state == CorrectionState::Waiting; }));
  EXPECT_THAT(CorrectionSentence(session.Status()), HasSubstr("disconnected"));
  session.Retry();
  EXPECT_TRUE(Eventually([&] { return caster.streams() == 2; }));
}

TEST_F(Field, AWrongPasswordIsTold) {
  LoopbackCaster caster(Content(kStationFrame, 1000), SystemClock());
  ASSERT_TRUE(caster.Start(0).ok());
  CorrectionPlan plan = PlanFor(caster, "MNT");
  plan.caster.password = "wrong";
  const auto connection = MakeTcpNtripConnection(errors);
  CorrectionSession session(plan, *connection, surroundings);
  const CorrectionThread thread(session);
  EXPECT_TRUE(Eventually([&] { return session.Status().state == CorrectionState::Refused; }));
}

}  // namespace
}  // namespace tarvex
