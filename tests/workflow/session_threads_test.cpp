// A session while other threads work beside it: commands come from one, corrections flow through
// another. The thread sanitizer watches these.
#include <gmock/gmock.h>

#include <atomic>
#include <thread>

#include "app/workflow/collect_session.h"
#include "gnss/caster/loopback_caster.h"
#include "tests/workflow/field_site.h"

namespace tarvex {
namespace {

class SessionThreads : public FieldSite {
 protected:
  /// More epochs than the session takes; the clock is the machine's, as a caster's on a socket is.
  void PlayEpochsOfAnHour() {
    std::string minute;
    for (int second = 0; second < 60; ++second) minute += Epoch(second);
    std::string hour;
    for (int i = 0; i < 60; ++i) hour += minute;
    connections = {{hour}};
    listener.then = [this](const SessionEvent& event) {
      if (std::holds_alternative<PositionSeen>(event)) SystemClock().SleepMilliseconds(1);
      if (std::holds_alternative<PointStored>(event)) ++stored;
    };
  }

  /// For the other thread: until this is so, half a minute at most.
  template <typename Condition>
  static void WaitUntil(Condition condition) {
    for (int i = 0; i < 6000 && !condition(); ++i) SystemClock().SleepMilliseconds(5);
  }

  SessionEnd Run() {
    const Workplace here{.files = memory, .clock = SystemClock(), .observer = observer};
    const PortMaker ports = [this](const PortAddress&, const StopAsked&) {
      return std::make_unique<Port>(
          "script", std::make_unique<ScriptedLine>(SystemClock(), connections), SystemLastError());
    };
    CollectSession collecting(here, *session, calculator, plan, listener, commands, {}, ports);
    return collecting.Run();
  }

  std::atomic<int> stored = 0;
  CollectPlan plan{{.receiver = ConnectedReceiver()}, StoreTrigger::OnCommand, 0};
};

TEST_F(SessionThreads, TakeCommandsOfAnother) {
  PlayEpochsOfAnHour();
  const std::vector<std::string> descriptions = {"edge", "tree", "wall"};
  std::jthread person([&] {
    for (int i = 0; i < 3; ++i) {
      commands.Send(SetDescription{descriptions[static_cast<std::size_t>(i)]});
      commands.Send(StoreNow{});
      WaitUntil([&] { return stored > i; });
    }
    commands.Send(EndSession{});
  });
  EXPECT_EQ(Run(), SessionEnd::Asked);
  std::vector<std::string> found;
  for (const PointStored& point : listener.Of<PointStored>()) {
    found.emplace_back(point.point.description.view());
  }
  EXPECT_EQ(found, descriptions);
}

TEST_F(SessionThreads, LetCorrectionsFlowUntilItEnds) {
  // The station's position, RTCM message 1005.
  const std::string frame(
      "\xD3\x00\x13\x3E\xD7\xD3\x02\x02\x98\x0E\xDE\xEF\x34\xB4\xBD\x62\xAC\x09\x41\x98\x6F\x33\x36"
      "\x0B\x98",
      25);
  CasterContent content{.data = frame, .bytesPerSecond = 25'000};
  content.stream.mountpoint.Assign("MNT");
  content.stream.nmea = true;
  LoopbackCaster caster(content, SystemClock());
  ASSERT_TRUE(caster.Start(0).ok());
  plan.corrections = CorrectionPlan{
      .caster = {.host = FixedText<128>("127.0.0.1"), .port = std::to_string(caster.port())},
      .mountpoint = "MNT",
      .ggaIntervalMs = 20};
  PlayEpochsOfAnHour();
  std::jthread person([&] {
    std::uint64_t uploads = 0;
    WaitUntil([&] { return (uploads += caster.TakeUploads().size()) >= 3; });
    caster.DropClients();
    WaitUntil([&] {
      commands.Send(RetryCorrections{});
      return caster.streams() >= 2;
    });
    for (int points = 1; points <= 2; ++points) {
      commands.Send(StoreNow{});
      WaitUntil([&] { return stored >= points; });
    }
    commands.Send(EndSession{});
  });
  EXPECT_EQ(Run(), SessionEnd::Asked);
  const auto seen = listener.Of<PositionSeen>();
  ASSERT_FALSE(seen.empty());
  ASSERT_TRUE(seen.back().corrections);
  EXPECT_GT(seen.back().corrections->frames, 0U);
  EXPECT_GT(seen.back().corrections->bytesToReceiver, 0U);
  EXPECT_GE(caster.streams(), 2U) << "opened anew";
  // The base is in the raw file once, before the first point, however often the stream was opened.
  const std::string raw = Raw();
  const std::string base = "\n--Corrections: 127.0.0.1:" + std::to_string(caster.port()) +
                           ", mountpoint MNT, base 2003\nBP,PN,LA38.48";
  const std::size_t at = raw.find(base);
  ASSERT_NE(at, std::string::npos) << raw;
  EXPECT_GT(raw.find("\nGPS,PN1,"), at);
  EXPECT_NE(raw.find(" UTC, corrections 1.0 s old, base 2003 at "), std::string::npos) << raw;
  EXPECT_NE(raw.find("\nGPS,PN2,"), std::string::npos);
  EXPECT_EQ(raw.find("\nBP,", at + base.size()), std::string::npos);
  const auto warnings = listener.Of<SessionWarning>();
  EXPECT_EQ(std::count_if(warnings.begin(), warnings.end(),
                          [](const SessionWarning& warning) {
                            return warning.sentence.find(" km away: ") != std::string::npos;
                          }),
            1);
}

}  // namespace
}  // namespace tarvex
