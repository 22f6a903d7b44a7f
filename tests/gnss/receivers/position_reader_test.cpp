// Reading a position: every result code, the order of prefixes, budgets, and how fresh it all is.
#include "gnss/receivers/position_reader.h"

#include <gtest/gtest.h>

#include <utility>

#include "gnss/quality/point_quality.h"
#include "gnss/receivers/receiver_make.h"
#include "tests/gnss/receivers/scripted_receiver.h"

namespace tarvex {
namespace {

constexpr std::string_view kGga =
    "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n";
constexpr std::string_view kNextGga =
    "$GPGGA,123520,4807.038,N,01131.000,E,4,09,0.9,545.4,M,46.9,M,,*47\r\n";

// One second of a receiver, without and with its precision.
std::string Gga(int second) {
  return "$GPGGA,1235" + std::to_string(second) +
         ",4807.038,N,01131.000,E,4,18,0.9,545.4,M,46.9,M,,\r\n";
}

std::string Gst(int second, std::string_view sigma) {
  return "$GPGST,1235" + std::to_string(second) + ",1,1,1,0,0.03,0.04," + std::string(sigma) +
         "\r\n";
}

class PositionReader : public ScriptedReceiver {
 protected:
  GnssReadResult Read(std::string_view input, int receiverType = kMakeNmea) {
    return ScriptedReceiver::Read(input, receiverType);
  }
};

TEST_F(PositionReader, AcceptsTheFirstPositionAndLeavesTheRest) {
  EXPECT_EQ(Read(std::string("noise\r\n$GPGSA,A,3,1,2,,,,,,,,,,,2.5,1.3,2.1*39\r\n") +
                 std::string(kGga) + std::string(kNextGga)),
            GnssReadResult::Accepted);
  EXPECT_EQ(state.lastResult, 1);
  EXPECT_EQ(state.reading, 0);
  EXPECT_EQ(state.satellites, 8);
  EXPECT_DOUBLE_EQ(state.pdop, 2.5);
  EXPECT_DOUBLE_EQ(state.hdop, 0.9) << "of the GGA that came later";
  EXPECT_EQ(device->input, kNextGga);
}

TEST_F(PositionReader, NamesEveryFailure) {
  connection.port = nullptr;
  EXPECT_EQ(Read(""), GnssReadResult::NoFix);
  connection.port = port.get();
  {
    const PortUse elsewhere(*port);
    EXPECT_EQ(Read(""), GnssReadResult::NotPrepared);
  }
  EXPECT_EQ(Read("$GPGST,1"), GnssReadResult::PortReadFailed) << "the line never ends";
  device->whenEmpty = {5};
  EXPECT_EQ(Read(""), GnssReadResult::PortReadFailed);
  std::string lines;
  for (int i = 0; i < 15; ++i) lines += "$GPGSV,1,1,00*79\r\n";
  EXPECT_EQ(Read(lines + std::string(kGga)), GnssReadResult::NoPositionSentence);
  EXPECT_EQ(Read(""), GnssReadResult::Accepted) << "the position was the sixteenth line";
  EXPECT_EQ(Read("$GPGGA,1,4807.038,N,01131.000,E,0,08,0.9,5.4,M,46.9,M,,*47\r\n"),
            GnssReadResult::NoFix);
  EXPECT_EQ(Read("$GPGGA,1,0000.000,N,00000.000,E,1,08,0.9,5.4,M,46.9,M,,*47\r\n"),
            GnssReadResult::NoFix);
  EXPECT_EQ(Read("$GPGGA,1,9100.000,N,01131.000,E,1,08,0.9,5.4,M,46.9,M,,*47\r\n"),
            GnssReadResult::InvalidData);
  EXPECT_EQ(Read("$GPGGA,1,4807.000,N,18001.000,W,1,08,0.9,5.4,M,46.9,M,,*47\r\n"),
            GnssReadResult::InvalidData);
  EXPECT_EQ(Read("$GPGGA,1,4807.000,N,01131.000,E,1,08,0.9,1e9,M,46.9,M,,*47\r\n"),
            GnssReadResult::Declined);
  EXPECT_EQ(state.lastResult, 0);
}

TEST_F(PositionReader, EveryResultHasASentence) {
  for (const int code : {1, 0, -1, -5, -6, -7, -8, -9}) {
    const std::string text = ResultSentence(static_cast<GnssReadResult>(code));
    EXPECT_TRUE(text.ends_with('.') && !text.starts_with("IDS_STRING")) << code;
  }
}

TEST_F(PositionReader, SelectsTheSentenceOfTheSetting) {
  connection.settings.nmea.position = 2;
  EXPECT_EQ(Read(std::string(kGga) + "$GPGLL,4916.45,N,12311.12,W,225444,A\r\n"),
            GnssReadResult::Accepted);
  EXPECT_NEAR(state.latitude, 49.2741666667, 1e-9);
  EXPECT_EQ(state.height, 0.0);
}

TEST_F(PositionReader, DropsASentenceThatIsCutShort) {
  EXPECT_EQ(Read(std::string("$GPGGA,123519,4807.038,N\r\n") + std::string(kGga)),
            GnssReadResult::Accepted);
  EXPECT_EQ(state.satellites, 8);
}

// A link that is lost, or a recording that ends, at every byte of a position: it counts when its
// checksum stands there, and when not even the line end is missing.
TEST_F(PositionReader, NeverTakesASentenceThatWasCutOff) {
  const std::size_t sentence = kGga.find('\r');
  for (const int make : {kMakeNmea, kMakeAnyNmea, kMakeStreamBuffered}) {
    for (const int end : {DeviceStatus::kHungUp, DeviceStatus::kEndOfData, 5}) {
      for (std::size_t length = 0; length <= kGga.size(); ++length) {
        SCOPED_TRACE(std::to_string(make) + " " + std::to_string(end) + " " +
                     std::to_string(length));
        ASSERT_EQ(port->Open(), PortError::None);
        connection.settings = FindMake(make).settings;
        connection.Reconnected();
        device->input.clear();
        device->whenEmpty = {end};
        const bool checked =
            length >= sentence && end == DeviceStatus::kEndOfData && make != kMakeStreamBuffered;
        const bool taken = Read(kGga.substr(0, length), make) == GnssReadResult::Accepted;
        ASSERT_EQ(taken, length == kGga.size() || checked);
        ASSERT_DOUBLE_EQ(taken ? state.height : 592.3, 592.3);
      }
    }
  }
}

TEST_F(PositionReader, TellsARepeatedEpoch) {
  ASSERT_EQ(Read(kGga), GnssReadResult::Accepted);
  EXPECT_FALSE(state.repeatedEpoch);
  ASSERT_EQ(Read(kGga), GnssReadResult::Accepted);
  EXPECT_TRUE(state.repeatedEpoch);
  ASSERT_EQ(Read(kNextGga), GnssReadResult::Accepted);
  EXPECT_FALSE(state.repeatedEpoch);
}

TEST_F(PositionReader, MarksPrecisionOfAnotherEpoch) {
  ASSERT_EQ(Read(std::string("$GPGST,123519,1,1,1,0,0.03,0.04,0.1*00\r\n") + std::string(kGga)),
            GnssReadResult::Accepted);
  EXPECT_FALSE(state.precisionCarriedOver);
  ASSERT_EQ(Read(kNextGga), GnssReadResult::Accepted);
  EXPECT_TRUE(state.precisionCarriedOver);
  EXPECT_DOUBLE_EQ(state.hrms, 0.05);
  EXPECT_TRUE(state.dopCarriedOver);
}

// GST and GSA behind GGA, as most receivers send them: each position has the precision of its own
// epoch, the first one too, and no position is lost while it is awaited.
TEST_F(PositionReader, ReadsAnEpochOnToThePrecisionBehindIt) {
  connection.settings = FindMake(kMakeAnyNmea).settings;
  constexpr std::string_view kGsa = "$GPGSA,A,3,1,2,,,,,,,,,,,2.5,1.3,2.1\r\n";
  device->input = Gga(10) + std::string(kGsa) + Gst(10, "0.10") + Gga(11) + std::string(kGsa) +
                  Gst(11, "0.11") + Gga(12) + Gga(13) + Gst(13, "0.13") + Gga(14) +
                  Gst(14, "0.14") + Gga(15) + Gst(15, "0.15");
  const std::pair<int, double> epochs[] = {{10, 0.10}, {11, 0.11}, {12, 0.11},
                                           {13, 0.11}, {14, 0.14}, {15, 0.15}};
  for (const auto& [second, vrms] : epochs) {
    SCOPED_TRACE(second);
    ASSERT_EQ(Read("", kMakeAnyNmea), GnssReadResult::Accepted);
    EXPECT_EQ(state.epochMs, ((12 * 60 + 35) * 60 + second) * 1000);
    EXPECT_DOUBLE_EQ(state.vrms, vrms);
    EXPECT_EQ(state.precisionCarriedOver, second == 12 || second == 13)
        << "the one without, and the one after which the receiver is known again";
    EXPECT_EQ(state.satellites, 18) << "of the position";
    EXPECT_DOUBLE_EQ(state.pdop, 2.5);
  }
}

TEST_F(PositionReader, DoesNotAwaitAPrecisionThatNeverComes) {
  connection.settings = FindMake(kMakeAnyNmea).settings;
  for (int second = 10; second < 14; ++second) device->input += Gga(second);
  ASSERT_EQ(Read("", kMakeAnyNmea), GnssReadResult::Accepted);
  EXPECT_EQ(device->input, Gga(12) + Gga(13)) << "the first epoch was read to its end";
  for (int second = 11; second < 14; ++second) {
    ASSERT_EQ(Read("", kMakeAnyNmea), GnssReadResult::Accepted);
    EXPECT_EQ(state.epochMs % 60000, second * 1000);
    EXPECT_FALSE(PrecisionMayFollow(state, connection, kMakeAnyNmea));
  }
  connection.Reconnected();
  connection.settings.noRms = true;
  ASSERT_EQ(Read(Gga(20) + Gst(20, "0.1"), kMakeAnyNmea), GnssReadResult::Accepted);
  EXPECT_EQ(device->input, Gst(20, "0.1"));
}

// The fixed reader takes nothing that comes behind the position; whoever wants it asks.
TEST_F(PositionReader, KnowsThatThePrecisionOfTheFirstEpochMayFollow) {
  ASSERT_EQ(Read(Gga(10) + Gst(10, "0.10") + Gga(11) + Gga(12)), GnssReadResult::Accepted);
  EXPECT_FALSE(state.precisionKnown);
  EXPECT_TRUE(PrecisionMayFollow(state, connection, kMakeNmea));
  EXPECT_FALSE(PrecisionMayFollow(state, connection, kMakeNovAtel));
  ASSERT_EQ(Read(""), GnssReadResult::Accepted);
  EXPECT_TRUE(state.precisionKnown && state.precisionCarriedOver);
  EXPECT_FALSE(PrecisionMayFollow(state, connection, kMakeNmea));
}

// Each line takes the receiver a while.
class SlowLines final : public LineListener {
 public:
  SlowLines(ManualClock& clock, std::int64_t lineMs) : clock_(clock), lineMs_(lineMs) {}
  void OnLine(std::string_view) override { clock_.milliseconds += lineMs_; }

 private:
  ManualClock& clock_;
  std::int64_t lineMs_;
};

TEST_F(PositionReader, ComesBackInTimeWhateverElseIsSent) {
  SlowLines lines(clock, 200);
  connection.listener = &lines;
  for (int i = 0; i < 200; ++i) device->input += "$GPRMC,123519,A,,,,,,,,,\r\n";
  const std::int64_t begun = clock.milliseconds;
  connection.deadlineMs = begun + 1000;
  EXPECT_EQ(Read("", kMakeNmea), GnssReadResult::NoPositionSentence);
  EXPECT_EQ(clock.milliseconds - begun, 1000);
  connection.deadlineMs = kNoDeadline;
  EXPECT_EQ(Read("", kMakeNmea), GnssReadResult::NoPositionSentence);
  EXPECT_EQ(clock.milliseconds - begun, 1000 + 15 * 200) << "the fixed reader counts lines alone";
  connection.settings = FindMake(kMakeAnyNmea).settings;
  EXPECT_EQ(Read("", kMakeAnyNmea), GnssReadResult::NoPositionSentence);
  EXPECT_EQ(clock.milliseconds - begun, 1000 + 15 * 200 + 3000);
}

// One byte each half second, and never a line end.
class DrippingDevice final : public ByteDevice {
 public:
  explicit DrippingDevice(ManualClock& clock) : clock_(clock) {}
  DeviceStatus Open(const std::string& /*name*/) override { return {}; }
  DeviceStatus Close() override { return {}; }
  bool isOpen() const override { return true; }
  DeviceStatus GetTimeouts(DeviceTimeouts& /*timeouts*/) override { return {}; }
  DeviceStatus SetTimeouts(const DeviceTimeouts& /*timeouts*/) override { return {}; }
  DeviceStatus Read(std::span<char> out, std::size_t& got) override {
    clock_.milliseconds += 500;
    out[0] = 'x';
    got = 1;
    return {};
  }
  DeviceStatus Write(std::string_view bytes, const WriteTimeouts& /*timeouts*/,
                     std::size_t& written) override {
    written = bytes.size();
    return {};
  }
  DeviceStatus BytesWaiting(std::size_t& count) override {
    count = 0;
    return {};
  }
  DeviceStatus PurgeInput() override { return {}; }

 private:
  ManualClock& clock_;
};

TEST_F(PositionReader, ComesBackInTimeFromALineThatDripsIn) {
  port = std::make_unique<Port>("drip", std::make_unique<DrippingDevice>(clock), errors);
  ASSERT_EQ(port->Open(), PortError::None);
  connection.port = port.get();
  device = nullptr;
  for (const int make : {kMakeNmea, kMakeAnyNmea, kMakeNovAtel, kMakeAshtech}) {
    SCOPED_TRACE(make);
    const std::int64_t begun = clock.milliseconds;
    connection.deadlineMs = begun + 4000;
    connection.lastRequestAtMs = -1;
    EXPECT_NE(ReadGnssPosition(state, connection, make), GnssReadResult::Accepted);
    EXPECT_LE(clock.milliseconds - begun, 5000);
  }
}

TEST_F(PositionReader, KnowsThePaceOfASlowReceiver) {
  const auto waitAndRead = [&](std::int64_t waitMs, std::string_view input) {
    clock.milliseconds += waitMs;
    const GnssReadResult result = Read(input);
    return NextSentenceIsDue(result, state, clock);
  };
  (void)waitAndRead(0, Gga(10));
  EXPECT_FALSE(waitAndRead(4000, "")) << "told once, as its pace is not known";
  (void)waitAndRead(1000, Gga(15));
  EXPECT_TRUE(waitAndRead(4900, ""));
  (void)waitAndRead(100, Gga(20));
  EXPECT_FALSE(waitAndRead(8000, ""));
}

TEST_F(PositionReader, TellsWhatAHeightLacks) {
  ASSERT_EQ(Read("$GPGGA,123510,4807.038,N,01131.000,E,4,18,0.9,545.4,M,46.9,M,,\r\n"),
            GnssReadResult::Accepted);
  EXPECT_EQ(HeightSentence(state), "");
  ASSERT_EQ(Read("$GPGGA,123511,4807.038,N,01131.000,E,4,18,0.9,545.4,M,,M,,\r\n"),
            GnssReadResult::Accepted);
  EXPECT_NE(HeightSentence(state).find("geoid separation"), std::string::npos);
  ASSERT_EQ(
      Read("$GPGGA,123512,4807.038,N,01131.000,E,4,18,0.9,545.4,M,,M,,\r\n", kMakeEllipsoidHeight),
      GnssReadResult::Accepted);
  EXPECT_EQ(HeightSentence(state), "") << "no separation is asked of such a receiver";
  ASSERT_EQ(Read("$GPGGA,123513,4807.038,N,01131.000,E,4,18,0.9,,M,,M,,\r\n"),
            GnssReadResult::Accepted);
  EXPECT_NE(HeightSentence(state).find("no height"), std::string::npos);
}

TEST_F(PositionReader, TellsALostLinkFromTheEndOfALog) {
  device->whenEmpty = {DeviceStatus::kHungUp};
  EXPECT_EQ(ResultSentence(Read(""), connection), "The link to the receiver is lost.");
  EXPECT_TRUE(connection.linkLost());
  device->whenEmpty = {DeviceStatus::kEndOfData};
  EXPECT_EQ(ResultSentence(Read(""), connection), "The recording has ended.");
  EXPECT_TRUE(connection.ended() && !connection.linkLost());
  device->whenEmpty = {};
  EXPECT_EQ(ResultSentence(Read(""), connection), ResultSentence(GnssReadResult::PortReadFailed));
}

TEST_F(PositionReader, DropsWhatPiledUpWhileNobodyRead) {
  device->purgeDrops = true;
  ASSERT_EQ(Read(kGga), GnssReadResult::Accepted);
  clock.milliseconds += 1500;
  ASSERT_EQ(Read(kGga), GnssReadResult::Accepted) << "read in time";
  clock.milliseconds += 60'000;
  EXPECT_EQ(Read(kGga), GnssReadResult::PortReadFailed) << "a position of a minute ago";
  EXPECT_GE(SilentForMs(state, clock), 60'000);
}

TEST_F(PositionReader, ReadsAStreamBufferWithItsPrecisionAhead) {
  connection.settings = FindMake(kMakeStreamBuffered).settings;
  connection.settings.nmea.position = 2;
  ASSERT_EQ(Read("$GPGGA,123519,4807.038,N,01131.000,E,2,08,0.9,545.4,M,46.9,M,,*47\r\n\r\n"
                 "$GPGSV,x\r\n$GPGST,123519,1,1,1,0,0.03,0.04,0.1*00\r\n",
                 kMakeStreamBuffered),
            GnssReadResult::Accepted);
  EXPECT_EQ(state.solutionType, SolutionType::Float);
  EXPECT_DOUBLE_EQ(state.hrms, 0.05);
  EXPECT_EQ(clock.sleptMs, 100);
}

TEST_F(PositionReader, LeavesAPrecisionThatHasNotComeWhole) {
  connection.settings = FindMake(kMakeStreamBuffered).settings;
  ASSERT_EQ(
      Read(std::string(kGga) + "$GPGST,123519,10,0.01,0.01,0,0.010,0.012,0", kMakeStreamBuffered),
      GnssReadResult::Accepted);
  EXPECT_FALSE(state.precisionKnown);
  ASSERT_EQ(Read(".345*55\r\n" + std::string(kNextGga), kMakeStreamBuffered),
            GnssReadResult::Accepted);
  EXPECT_DOUBLE_EQ(state.vrms, 0.345);
}

TEST_F(PositionReader, GivesUpOnASilentStreamBuffer) {
  EXPECT_EQ(Read("", kMakeStreamBuffered), GnssReadResult::NoPositionSentence);
  EXPECT_EQ(clock.sleptMs, 30 * 100);
}

TEST_F(PositionReader, SimulatesTheSameWalkAtTheSameTime) {
  GnssConnection other{.clock = clock};
  GnssPositionState otherState;
  connection.port = nullptr;
  for (int epoch = 0; epoch < 50; ++epoch) {
    ASSERT_EQ(ReadGnssPosition(state, connection, kMakeSimulated), GnssReadResult::Accepted);
    ASSERT_EQ(ReadGnssPosition(otherState, other, kMakeSimulated), GnssReadResult::Accepted);
    ASSERT_FALSE(state.repeatedEpoch);
    ASSERT_EQ(state.latitude, otherState.latitude);
    ASSERT_GT(state.hrms, 0.0);
    ASSERT_LT(state.hrms, 0.021);
  }
  EXPECT_EQ(state.epochMs, ((9 * 60 + 30) * 60 + 15 + 49) * 1000);
  clock.now.second += 1;
  GnssConnection later{.clock = clock};
  GnssPositionState laterState;
  (void)ReadGnssPosition(laterState, later, kMakeSimulated);
  EXPECT_NE(laterState.latitude, state.latitude);
}

TEST(PointQuality, WritesNotesAndBlocks) {
  GnssPositionState state{.satellites = 12,
                          .solutionType = SolutionType::Fixed,
                          .hrms = 0.0125,
                          .vrms = 0.02,
                          .pdop = 1.44,
                          .precisionKnown = true};
  EXPECT_EQ(QualityComment(state, false),
            "\n--HRMS:0.013, VRMS:0.020, STATUS:FIXED, SATS:12, PDOP:1.4");
  EXPECT_EQ(QualityBlockLines(state, true, QualityStamp{"06-01-2026", "09:30:15"}),
            "HQ,0.013\nVQ,0.020\nSTATUS,FIXED\nSATS,12\nPDOP,1.4\nDATE,06-01-2026\n"
            "TIME,09:30:15\n");
  state.satellites = 0;
  state.pdop = 0.0;
  state.solutionType = static_cast<SolutionType>(9);
  EXPECT_EQ(QualityComment(state, true, QualityStamp{"06-01-2026", "09:30:15"}),
            "\n--HQ:0.013, VQ:0.020, STATUS:AUTONOMOUS\n--DT06-01-2026\n--TM09:30:15");
  EXPECT_EQ(QualityBlockLines({}, false, QualityStamp{"06-01-2026", "09:30:15"}),
            "HRMS,0.000\nVRMS,0.000\nSTATUS,AUTONOMOUS\nDATE,06-01-2026\nTIME,09:30:15\n");
  EXPECT_TRUE(TellsNoPrecision("HRMS,0.000\nVRMS,0.000\nSTATUS,FIXED\n"));
  EXPECT_TRUE(TellsNoPrecision("HQ,0.000\nVQ,0.000\n"));
  EXPECT_FALSE(TellsNoPrecision("HRMS,0.000\nVRMS,0.010\n"));
  EXPECT_FALSE(TellsNoPrecision(""));
}

}  // namespace
}  // namespace tarvex
