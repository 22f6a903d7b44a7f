// The correction session step by step, on a caster that plays a script and a clock moved by hand.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gnss/corrections/correction_session.h"
#include "gnss/corrections/crc24q.h"
#include "tests/gnss/corrections/capture.h"
#include "tests/gnss/ntrip/scripted_caster.h"
#include "tests/support/memory_files.h"
#include "tests/support/scripted_device.h"

namespace tarvex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(LatestGga, KeepsWhatHasAPosition) {
  LatestGga latest;
  latest.OnLine("$GPGGA,123519,4807.038,N,01131.000,E,0,08,0.9,545.4,M,46.9,M,,*46");
  EXPECT_EQ(latest.Get(), "");
  latest.OnLine("$GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*59");
  latest.OnLine("$GNGGA,123520,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*00");
  EXPECT_THAT(latest.Get(), HasSubstr("123519")) << "the damaged one is left out";
  EXPECT_EQ(latest.taken(), 1U);
  EXPECT_EQ(WithGpTalker(latest.Get()),
            "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n");
  latest.OnLine("$GPGGA,123520,4807.038,N,01131.000,E,0,08,0.9,545.4,M,46.9,M,,*4C");
  EXPECT_EQ(latest.Get(), "") << "the receiver has lost its position";
}

TEST(PortSink, WritesOnWhileTheReceiverTakesSomething) {
  LastErrorRecord errors;
  auto owned = std::make_unique<ScriptedDevice>();
  ScriptedDevice* const device = owned.get();
  Port port("receiver", std::move(owned), errors);
  ASSERT_EQ(port.Open(), PortError::None);
  bool stopped = false;
  PortSink sink(port, [&stopped] { return stopped; });
  device->writeLimit = 7;
  const std::string bytes = Capture("rtcm3.log");
  EXPECT_EQ(sink.Write(bytes), PortError::None);
  EXPECT_EQ(device->written, bytes);
  device->writeLimit = 0;
  EXPECT_EQ(sink.Write(bytes), PortError::WriteFailed) << "nothing taken for so long is a failure";
  device->writeLimit = 7;
  stopped = true;
  EXPECT_EQ(sink.Write(bytes), PortError::Cancelled);
  EXPECT_EQ(device->written, bytes);
}

struct Sink final : CorrectionSink {
  PortError Write(std::string_view bytes) override {
    received += bytes;
    return result;
  }
  std::string received;
  PortError result = PortError::None;
};

class Session : public testing::Test {
 protected:
  void Steps(int count) {
    for (int i = 0; i < count; ++i) (void)session.Step(500, progress);
  }

  ManualClock clock;
  MemoryFiles files;
  LastErrorRecord errors;
  NoProgress progress;
  ScriptedCaster caster{clock};
  Sink sink;
  LatestGga gga;
  CorrectionSession session{
      {.caster = {.host = FixedText<128>("caster"), .user = "u", .password = "secret"},
       .mountpoint = "MNT",
       .gga = GgaUpload::Always},
      caster,
      {.clock = clock, .files = files, .errors = errors}};
};

TEST_F(Session, PumpsCorrectionsAndTellsWhatItHas) {
  session.Attach(&sink, &gga);
  gga.OnLine("$GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*59");
  caster.steps = {"ICY 200 OK\r\n" + kStationFrame.substr(0, 10), kStationFrame.substr(10) + "x"};
  Steps(3);
  EXPECT_EQ(sink.received, kStationFrame + "x") << "every byte, also what came with the answer";
  const CorrectionStatus status = session.Status();
  EXPECT_EQ(status.state, CorrectionState::Receiving);
  EXPECT_EQ(status.bytes, kStationFrame.size() + 1);
  EXPECT_EQ(status.bytesToReceiver, status.bytes);
  EXPECT_THAT(status.messages, ElementsAre(std::pair(1005, 1U)));
  EXPECT_EQ(status.base->id, 2003);
  EXPECT_EQ(status.ggasSent, 1U);
  EXPECT_THAT(caster.sent, HasSubstr("\r\n\r\n$GPGGA,123519"));
  EXPECT_EQ(CorrectionSentence(status), "Corrections flow from caster:2101, mountpoint MNT.");
  Steps(25);
  EXPECT_EQ(session.Status().ggasSent, 2U) << "again after ten seconds";
}

struct UploadCase {
  const char* what;
  GgaUpload upload;
  std::string table;  ///< empty: the caster is not asked for it
  bool sent;
  std::string mountpoint = "MNT";
};

TEST(GgaUploads, GoWhereTheTableWantsThem) {
  const std::string table = "SOURCETABLE 200 OK\r\nContent-Length: 1\r\n\r\n";
  const std::string wanting = "STR;MNT;;RTCM 3.2;;2;GPS;N;AUT;47.4;9.6;1;0;g;none;B;N;9600;\r\n";
  const std::string notWanting = "STR;MNT;;RTCM 3.2;;2;GPS;N;AUT;47.4;9.6;0;0;g;none;B;N;9600;\r\n";
  const std::string end = "ENDSOURCETABLE\r\n";
  const UploadCase cases[] = {
      {"wanted", GgaUpload::WhenWanted, table + wanting + end, true},
      {"not wanted", GgaUpload::WhenWanted, table + notWanting + end, false},
      {"a name that a record cuts", GgaUpload::WhenWanted,
       table + "STR;MNT" + std::string(40, 'x') + ";;RTCM 3.2;;2;GPS;N;AUT;47.4;9.6;1;\r\n" + end,
       true, "MNT" + std::string(40, 'x')},
      {"another stream", GgaUpload::WhenWanted, table + "STR;X;;;;;;;;;;1;\r\n" + end, false},
      {"no table", GgaUpload::WhenWanted, "HTTP/1.0 401 Unauthorized\r\n", false},
      {"forced", GgaUpload::Always, "", true},
      {"forbidden", GgaUpload::Never, "", false}};
  for (const UploadCase& upload : cases) {
    SCOPED_TRACE(upload.what);
    ManualClock clock;
    MemoryFiles files;
    LastErrorRecord errors;
    NoProgress progress;
    ScriptedCaster caster{clock};
    LatestGga gga;
    gga.OnLine("$GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*59");
    CorrectionSession session({.caster = {.host = FixedText<128>("caster")},
                               .mountpoint = upload.mountpoint,
                               .gga = upload.upload},
                              caster, {.clock = clock, .files = files, .errors = errors});
    session.Attach(nullptr, &gga);
    if (!upload.table.empty()) caster.steps.emplace_back(upload.table);
    caster.steps.emplace_back("ICY 200 OK\r\n" + kStationFrame);
    for (int i = 0; i < 3; ++i) (void)session.Step(500, progress);
    EXPECT_EQ(session.Status().state, CorrectionState::Receiving);
    EXPECT_EQ(session.Status().ggasSent, upload.sent ? 1U : 0U);
    EXPECT_EQ(caster.performed.size(), upload.table.empty() ? 1U : 2U);
    // A table is asked for once, not with every connection.
    caster.steps = {PortError::ReadFailed, "ICY 200 OK\r\n" + kStationFrame};
    (void)session.Step(500, progress);
    session.Retry();
    (void)session.Step(500, progress);
    EXPECT_EQ(caster.performed.size(), upload.table.empty() ? 2U : 3U);
  }
}

class Wanting : public testing::Test {
 protected:
  Wanting() {
    session.Attach(nullptr, &gga);
    gga.OnLine("$GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*59");
  }
  void Steps(int count) {
    for (int i = 0; i < count; ++i) (void)session.Step(500, progress);
  }

  const std::string table = "SOURCETABLE 200 OK\r\nContent-Length: 1\r\n\r\nSTR;FIRST;\r\n";
  const std::string rest = "STR;MNT;;RTCM 3.2;;2;GPS;N;AUT;47.4;9.6;1;\r\nENDSOURCETABLE\r\n";
  ManualClock clock;
  MemoryFiles files;
  LastErrorRecord errors;
  NoProgress progress;
  ScriptedCaster caster{clock};
  LatestGga gga;
  CorrectionSession session{
      {.caster = {.host = FixedText<128>("caster"), .user = "u", .password = "p"},
       .mountpoint = "MNT"},
      caster,
      {.clock = clock, .files = files, .errors = errors}};
};

TEST_F(Wanting, ATableThatFailedIsAskedForAgain) {
  using Reply = std::deque<std::variant<std::string, PortError>>;
  for (const Reply& failed : {Reply{PortError::ReadFailed}, Reply{PortError::FewerBytesRead},
                              Reply{table, PortError::FewerBytesRead},
                              Reply{table + rest.substr(0, 20), PortError::ReadFailed}}) {
    caster.steps = failed;
    caster.steps.emplace_back("ICY 200 OK\r\n" + kStationFrame);
    session.Retry();
    Steps(2);
    ASSERT_EQ(session.Status().state, CorrectionState::Receiving);
    EXPECT_EQ(session.Status().ggasSent, 0U);
  }
  caster.steps = {table + rest, "ICY 200 OK\r\n" + kStationFrame};
  session.Retry();
  Steps(2);
  EXPECT_EQ(session.Status().ggasSent, 1U);
}

TEST_F(Wanting, AStreamThatNoTableTellsOfAndThatIsSilentIsSentThePosition) {
  caster.steps = {PortError::ReadFailed, "ICY 200 OK\r\n"};
  Steps(8);
  EXPECT_EQ(session.Status().ggasSent, 0U);
  Steps(8);
  EXPECT_EQ(session.Status().ggasSent, 1U);
}

TEST_F(Wanting, ASlowTableDoesNotHoldTheCorrectionsUp) {
  caster.steps = {table};
  caster.atEnd = "STR;ANOTHER;\r\n";
  const std::int64_t beforeMs = clock.milliseconds;
  Steps(1);
  EXPECT_LT(clock.milliseconds - beforeMs, 80'000) << "a minute of it waits for the stream";
}

TEST_F(Wanting, AnOldPositionIsNotSent) {
  caster.steps = {table + rest, "ICY 200 OK\r\n" + kStationFrame};
  caster.atEnd = kStationFrame;
  Steps(20);
  EXPECT_EQ(session.Status().ggasSent, 1U);
  clock.milliseconds += 10'000;
  Steps(2);
  EXPECT_EQ(session.Status().ggasSent, 2U);
  clock.milliseconds += 30'000;
  Steps(2);
  EXPECT_EQ(session.Status().ggasSent, 2U) << "the receiver has said nothing since";
  gga.OnLine("$GNGGA,123529,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*5A");
  Steps(2);
  EXPECT_EQ(session.Status().ggasSent, 3U);
}

TEST_F(Session, NoticesAMovedBase) {
  std::string moved = kStationFrame;
  caster.steps = {"ICY 200 OK\r\n" + kStationFrame};
  Steps(2);
  EXPECT_EQ(session.Status().baseMovedM, 0.0);
  moved[14] = static_cast<char>(moved[14] ^ 0x04);
  const std::uint32_t crc = Crc24qOf(std::string_view(moved).substr(0, 22));
  moved[22] = static_cast<char>(crc >> 16);
  moved[23] = static_cast<char>(crc >> 8);
  moved[24] = static_cast<char>(crc);
  caster.steps = {moved};
  Steps(1);
  EXPECT_GT(session.Status().baseMovedM, kBaseMovedAlarm);
}

TEST_F(Session, WaitsLongerAfterEachFailure) {
  caster.openResult = PortError::OpenFailed;
  std::vector<std::int64_t> waits;
  for (int i = 0; i < 8; ++i) {
    while (session.Status().state != CorrectionState::Waiting) Steps(1);
    waits.push_back(session.Status().nextTryInMs);
    clock.milliseconds += waits.back();
    session.Step(500, progress);
  }
  EXPECT_GE(waits[0], 10'000);
  EXPECT_LE(waits[0], 12'500);
  EXPECT_GE(waits[1], 20'000);
  EXPECT_GE(waits[7], 300'000);
  EXPECT_LE(waits[7], 375'000);
  EXPECT_THAT(CorrectionSentence(session.Status()),
              HasSubstr("The connection to the caster could not be opened. The next try is in"));
  EXPECT_EQ(caster.performed.size(), 9U);
}

TEST_F(Session, StartsAtTheFloorAgainAfterFiveMinutesOfData) {
  constexpr std::int64_t kFiveMinutesMs = 300'000;
  for (const bool steady : {false, true}) {
    SCOPED_TRACE(steady);
    caster.steps = {};
    caster.openResult = PortError::OpenFailed;
    for (int failure = 0; failure < 6; ++failure) {
      clock.milliseconds += session.Status().nextTryInMs;
      Steps(1);
    }
    ASSERT_GE(session.Status().nextTryInMs, 160'000);
    caster.openResult = PortError::None;
    caster.steps = {"ICY 200 OK\r\n", kStationFrame};
    clock.milliseconds += session.Status().nextTryInMs;
    Steps(2);
    clock.milliseconds += kFiveMinutesMs + (steady ? 1000 : -1000);
    caster.steps = {kStationFrame, PortError::ReadFailed};
    Steps(2);
    ASSERT_EQ(session.Status().state, CorrectionState::Waiting);
    if (steady) {
      EXPECT_LE(session.Status().nextTryInMs, 12'500);
    } else {
      EXPECT_GE(session.Status().nextTryInMs, 300'000) << "a stream that breaks soon is no start";
    }
  }
}

TEST_F(Session, AgeIsThatOfTheLastFrameNotOfTheLastByte) {
  caster.steps = {"ICY 200 OK\r\n", kStationFrame};
  EXPECT_EQ(session.Status().ageMs, -1);
  Steps(2);
  EXPECT_EQ(session.Status().ageMs, 0);
  clock.milliseconds += 7000;
  caster.steps = {"no frame"};
  Steps(1);
  EXPECT_GE(session.Status().ageMs, 7000);
  EXPECT_LT(session.Status().silentMs, 1000);
}

TEST_F(Session, DoesNotHammerARefusal) {
  caster.atEnd = "HTTP/1.0 401 Unauthorized\r\n";
  Steps(50);
  EXPECT_EQ(caster.performed.size(), 1U);
  EXPECT_THAT(CorrectionSentence(session.Status()), HasSubstr("does not accept the user"));
  caster.atEnd = PortError::FewerBytesRead;
  caster.steps = {"ICY 200 OK\r\n", kStationFrame};
  session.Retry();
  Steps(2);
  EXPECT_EQ(session.Status().state, CorrectionState::Receiving);
}

TEST_F(Session, TriesAgainWhatHasWorkedBefore) {
  for (const std::string refusal : {"HTTP/1.0 401 Unauthorized\r\n", "SOURCETABLE 200 OK\r\n"}) {
    caster.steps = {"ICY 200 OK\r\n", kStationFrame, PortError::ReadFailed};
    session.Retry();
    Steps(3);
    ASSERT_EQ(session.Status().state, CorrectionState::Waiting);
    caster.steps = {refusal};
    clock.milliseconds += session.Status().nextTryInMs;
    Steps(1);
    EXPECT_EQ(session.Status().state, CorrectionState::Waiting) << refusal;
    EXPECT_THAT(CorrectionSentence(session.Status()), HasSubstr("The next try is in"));
    EXPECT_THAT(CorrectionVerdict(session.Status()),
                HasSubstr("caster:2101, mountpoint MNT, broke"));
    EXPECT_GE(session.Status().nextTryInMs, 10'000);
    caster.steps = {"ICY 200 OK\r\n", kStationFrame};
    clock.milliseconds += session.Status().nextTryInMs;
    Steps(2);
    EXPECT_EQ(session.Status().state, CorrectionState::Receiving);
    EXPECT_EQ(CorrectionVerdict(session.Status()), "");
  }
}

TEST_F(Session, CountsOverItsConnections) {
  std::string damaged = kStationFrame;
  damaged[10] = '\x00';
  for (int i = 0; i < 2; ++i) {
    // What follows ends the search for the end of the damaged frame.
    caster.steps = {"ICY 200 OK\r\n" + damaged + std::string(600, 'x') + kStationFrame,
                    PortError::ReadFailed};
    session.Retry();
    Steps(3);
  }
  EXPECT_EQ(session.Status().badCrcs, 4U) << "the damaged frame holds the start of another";
  EXPECT_EQ(session.Status().frames, 2U);
  EXPECT_EQ(session.Status().connections, 2U);
}

TEST_F(Session, SaysInTheEndWhyNothingCame) {
  caster.atEnd = "HTTP/1.0 401 Unauthorized\r\n";
  Steps(3);
  session.Stop();
  EXPECT_TRUE(session.Status().nothingCame());
  EXPECT_EQ(
      CorrectionVerdict(session.Status()),
      "caster:2101, mountpoint MNT, sent no corrections: The caster does not accept this user "
      "and password.");
  caster.atEnd = PortError::FewerBytesRead;
  caster.steps = {"ICY 200 OK\r\n" + kStationFrame};
  session.Retry();
  Steps(2);
  session.Stop();
  EXPECT_EQ(CorrectionVerdict(session.Status()), "") << "they flowed until it was stopped";
}

TEST_F(Session, NamesMountpointsThatExist) {
  caster.steps = {"SOURCETABLE 200 OK\r\n",
                  "SOURCETABLE 200 OK\r\nContent-Length: 1\r\n\r\nSTR;OTHER;\r\nSTR;MNTX;\r\n"
                  "ENDSOURCETABLE\r\n"};
  Steps(3);
  EXPECT_THAT(CorrectionSentence(session.Status()),
              HasSubstr("has no mountpoint MNT; it has MNTX, OTHER."));
}

TEST_F(Session, NoticesSilenceAndOpensAnew) {
  session.Attach(&sink, nullptr);
  caster.steps = {"ICY 200 OK\r\n" + kStationFrame};
  Steps(2);
  EXPECT_EQ(session.Status().state, CorrectionState::Receiving);
  Steps(31);
  EXPECT_THAT(CorrectionSentence(session.Status()),
              HasSubstr("has sent nothing for 16 s; no position was sent to it."));
  Steps(100);
  EXPECT_EQ(session.Status().state, CorrectionState::Waiting);
  EXPECT_TRUE(caster.closed);
}

TEST_F(Session, TellsAReceiverThatDoesNotTakeThem) {
  session.Attach(&sink, nullptr);
  sink.result = PortError::WriteFailed;
  caster.steps = {"ICY 200 OK\r\n" + kStationFrame};
  Steps(5);
  EXPECT_EQ(session.Status().state, CorrectionState::ReceiverFailed);
  sink.result = PortError::None;
  caster.steps = {"ICY 200 OK\r\n" + kStationFrame};
  clock.milliseconds += session.Status().nextTryInMs;
  Steps(2);
  EXPECT_EQ(session.Status().state, CorrectionState::Receiving) << "it was only busy";
}

// What comes while a session ends is not written any more, and nothing broke off.
TEST_F(Session, EndsInTheMiddleOfTheCorrectionsAsTheyFlowed) {
  session.Attach(&sink, nullptr);
  caster.steps = {"ICY 200 OK\r\n" + kStationFrame, kStationFrame};
  Steps(2);
  sink.result = PortError::Cancelled;
  Steps(1);
  EXPECT_EQ(session.Status().state, CorrectionState::Stopped);
  EXPECT_TRUE(session.Status().flowing);
  EXPECT_EQ(session.Status().cause, PortError::None);
  EXPECT_EQ(session.Status().connections, 1);
}

}  // namespace
}  // namespace tarvex
