// RTCM frames, the correction session on a script and on threads with a caster, and the caster.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "gnss/caster/loopback_caster.h"
#include "gnss/corrections/correction_session.h"
#include "gnss/corrections/correction_thread.h"
#include "gnss/corrections/crc24q.h"
#include "tests/gnss/ntrip/scripted_caster.h"
#include "tests/support/memory_files.h"
#include "tests/support/scripted_device.h"

namespace tarvex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string Capture(const std::string& name) {
  std::string bytes;
  EXPECT_TRUE(
      ReadWholeFile(SystemFiles(), std::string(TARVEX_TEST_DATA) + "/ntrip/" + name, 1 << 20, bytes)
          .ok());
  return bytes;
}

struct Messages final : RtcmFramer::Listener {
  void OnMessage(std::string_view message) override {
    ++counts[RtcmMessageNumber(message)];
    if (const auto station = ReadBaseStation(message)) base = station;
  }
  std::map<int, int> counts;
  std::optional<BaseStation> base;
};

// The station message of the RTCM 3 standard's example.
const std::string kStationFrame(
    "\xD3\x00\x13\x3E\xD7\xD3\x02\x02\x98\x0E\xDE\xEF\x34\xB4\xBD\x62\xAC\x09\x41\x98\x6F\x33"
    "\x36\x0B\x98",
    25);

struct FrameCase {
  const char* file;
  std::uint64_t frames;
  std::uint64_t skipped;
  std::map<int, int> counts;
};

// The definition, bit by bit.
std::uint32_t Crc24qByDefinition(std::string_view bytes) {
  std::uint32_t crc = 0;
  for (const char byte : bytes) {
    crc ^= std::uint32_t{static_cast<unsigned char>(byte)} << 16;
    for (int bit = 0; bit < 8; ++bit) crc = (crc << 1) ^ ((crc & 0x800000U) != 0 ? 0x1864CFBU : 0U);
  }
  return crc;
}

TEST(Crc24q, MatchesThePublishedFrame) {
  EXPECT_EQ(Crc24qOf(std::string_view(kStationFrame).substr(0, 22)), 0x360B98U);
}

TEST(Crc24q, IsItsDefinitionAtEveryLength) {
  std::mt19937 random(24);
  std::string bytes(1100, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  for (std::size_t size = 0; size < 1060; ++size) {
    const std::string_view part = std::string_view(bytes).substr(size % 40, size);
    ASSERT_EQ(Crc24qOf(part), Crc24qByDefinition(part)) << size;
    ASSERT_EQ(Crc24qFromTables(part), Crc24qByDefinition(part)) << size;
  }
}

TEST(RtcmFramer, FindsTheFramesOfCapturesInPiecesOfAnySize) {
  const FrameCase cases[] = {
      {"rtcm3.log", 2, 322, {{1005, 1}, {1029, 1}}},
      {"rtcm3.bndm.log",
       100,
       310,
       {{1004, 33}, {1006, 8}, {1008, 6}, {1012, 33}, {1013, 7}, {1029, 1}, {1033, 6}, {1230, 6}}},
      {"ublox-zed-f9t-rtcm3.log",
       182,
       8496,
       {{1005, 26}, {1077, 26}, {1087, 26}, {1097, 26}, {1127, 26}, {1230, 26}, {4072, 26}}}};
  for (const FrameCase& expected : cases) {
    const std::string bytes = Capture(expected.file);
    for (const std::size_t piece :
         {std::size_t{1}, std::size_t{7}, std::size_t{1000}, bytes.size()}) {
      RtcmFramer framer;
      Messages messages;
      for (std::size_t at = 0; at < bytes.size(); at += piece) {
        framer.Feed(std::string_view(bytes).substr(at, piece), messages);
      }
      EXPECT_EQ(framer.frames(), expected.frames) << expected.file << " by " << piece;
      EXPECT_EQ(messages.counts, expected.counts);
      EXPECT_EQ(framer.skippedBytes() + framer.waitingBytes(), expected.skipped);
    }
  }
}

TEST(RtcmFramer, GivesUpOneByteOfADamagedFrame) {
  std::string damaged = kStationFrame;
  damaged[10] = '\x00';
  RtcmFramer framer;
  Messages messages;
  // The damaged frame holds what looks like the start of a long one, which fails as well.
  const std::string behind(600, 'x');
  framer.Feed("\xD3" + damaged + kStationFrame + behind, messages);
  EXPECT_EQ(framer.frames(), 1U);
  EXPECT_EQ(framer.badCrcs(), 2U);
  EXPECT_EQ(framer.skippedBytes(), 1 + damaged.size() + behind.size());
}

TEST(RtcmMessages, TellTheBaseStation) {
  RtcmFramer framer;
  Messages messages;
  framer.Feed(kStationFrame, messages);
  ASSERT_TRUE(messages.base.has_value());
  EXPECT_EQ(messages.base->id, 2003);
  EXPECT_NEAR(messages.base->position.xM, 1114104.5999, 1e-6);
  EXPECT_NEAR(messages.base->position.yM, -4850729.7108, 1e-6);
  EXPECT_NEAR(messages.base->position.zM, 3975521.4643, 1e-6);
  for (std::size_t length = 0; length < 19; ++length) {
    EXPECT_FALSE(ReadBaseStation(std::string_view(kStationFrame).substr(3, length)).has_value());
  }
}

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
  EXPECT_TRUE(sink.Write(bytes));
  EXPECT_EQ(device->written, bytes);
  device->writeLimit = 0;
  EXPECT_FALSE(sink.Write(bytes)) << "nothing taken for so long is a failure";
  device->writeLimit = 7;
  stopped = true;
  EXPECT_FALSE(sink.Write(bytes));
  EXPECT_EQ(device->written, bytes);
}

struct Sink final : CorrectionSink {
  bool Write(std::string_view bytes) override {
    received += bytes;
    return works;
  }
  std::string received;
  bool works = true;
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
  sink.works = false;
  caster.steps = {"ICY 200 OK\r\n" + kStationFrame};
  Steps(5);
  EXPECT_EQ(session.Status().state, CorrectionState::ReceiverFailed);
  sink.works = true;
  caster.steps = {"ICY 200 OK\r\n" + kStationFrame};
  clock.milliseconds += session.Status().nextTryInMs;
  Steps(2);
  EXPECT_EQ(session.Status().state, CorrectionState::Receiving) << "it was only busy";
}

CasterContent Content(const std::string& data, std::uint32_t rate) {
  CasterContent content{.user = "u", .password = "secret", .data = data, .bytesPerSecond = rate};
  content.stream.mountpoint.Assign("MNT");
  content.stream.nmea = true;
  content.stream.format.Assign("RTCM 3.2");
  return content;
}

// Session and caster as they run in the field, on threads and loopback sockets.
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
