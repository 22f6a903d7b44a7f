// Receivers that are asked: NovAtel and Ashtech command sets, DOP on request, binary packets.
// BESTPOSA and PASHR lines are published captures with good check sums.
#include <gtest/gtest.h>

#include <limits>

#include "gnss/receivers/ashtech_sentences.h"
#include "gnss/receivers/bestpos.h"
#include "gnss/receivers/binary_position.h"
#include "gnss/receivers/crc32.h"
#include "gnss/receivers/dop_request.h"
#include "gnss/receivers/receiver_make.h"
#include "tests/gnss/receivers/scripted_receiver.h"

namespace tarvex {
namespace {

constexpr std::string_view kFixed =
    "#BESTPOSA,USB1,0,51.5,FINESTEERING,2404,603797.000,03000800,cdba,18018;SOL_COMPUTED,"
    "NARROW_INT,51.07899643518,-114.13251416136,1114.2977,-16.6000,WGS84,0.0079,0.0056,0.0141,"
    "\"3920\",1.000,0.000,34,31,31,30,00,21,7f,37*a5cec5c7";
constexpr std::string_view kFixedPos =
    "#BESTPOSA,COM2,0,91.0,FINE,2164,52077.000,420887,32,18;SOL_COMPUTED,FIXEDPOS,32.02245993006,"
    "118.85899391094,68.5505,2.0115,WGS84,0.0000,0.0000,0.0000,\"\",0.000,0.000,40,28,28,16,0,06,"
    "03,53*17b29c25";
constexpr std::string_view kNoObservations =
    "#BESTPOSA,COM2,0,0.0,FINE,2349,479940.000,,,;INSUFFICIENT_OBS,NONE,0.00000000,0.00000000,"
    "0.000,17.230,WGS84,0.0000,0.0000,0.0000,\"\",0.0,0.0,31,0,,,,,,*9cefb0ad";

TEST(LogCrc, HoldsForPublishedLogs) {
  EXPECT_TRUE(LogCrcHolds(kFixed));
  EXPECT_TRUE(LogCrcHolds(kFixedPos));
  std::string damaged(kFixed);
  damaged[120] = '9';
  EXPECT_FALSE(LogCrcHolds(damaged));
}

TEST(BestposLog, GivesPositionPrecisionAndType) {
  GnssPositionState state;
  Bestpos bestpos;
  ASSERT_EQ(ReadBestpos(kFixed, state, bestpos), GnssReadResult::Accepted);
  EXPECT_DOUBLE_EQ(state.latitude, 51.07899643518);
  EXPECT_DOUBLE_EQ(state.longitude, -114.13251416136);
  EXPECT_DOUBLE_EQ(state.height, 1114.2977);
  EXPECT_DOUBLE_EQ(bestpos.undulationM, -16.6);
  EXPECT_EQ(bestpos.datum.view(), "WGS84");
  EXPECT_NEAR(state.hrms, 0.009683, 1e-6);
  EXPECT_DOUBLE_EQ(state.vrms, 0.0141);
  EXPECT_DOUBLE_EQ(state.correctionAge, 1.0);
  EXPECT_EQ(state.satellites, 31);
  EXPECT_EQ(state.solutionType, SolutionType::Fixed);
  EXPECT_EQ(state.epochMs, (603797 % 86400) * 1000);
}

TEST(BestposLog, HasNoEpochWithoutATime) {
  std::string log(kFixedPos);
  log.replace(log.find("52077.000"), 9, "-1");
  GnssPositionState state;
  Bestpos bestpos;
  ASSERT_EQ(ReadBestpos(log, state, bestpos), GnssReadResult::Accepted);
  EXPECT_EQ(state.epochMs, kNoEpoch);
}

TEST(BestposLog, MapsTypesAndCuts) {
  const std::tuple<const char*, SolutionType, int> cases[] = {
      {"SINGLE", SolutionType::Autonomous, 0}, {"FIXEDHEIGHT", SolutionType::Autonomous, 0},
      {"PSRDIFF", SolutionType::Float, 0},     {"WIDE_INT", SolutionType::Float, 0},
      {"OMNISTAR_HP", SolutionType::Dgps, 5},  {"OMNISTAR", SolutionType::Dgps, 4},
      {"WAAS", SolutionType::Dgps, 3},         {"CDGPS", SolutionType::Dgps, 8},
      {"NARROW_INT", SolutionType::Fixed, 0},  {"INS_UNKNOWN", SolutionType::Autonomous, 0}};
  for (const auto& [type, solution, source] : cases) {
    std::string log(kFixed);
    log.replace(log.find("NARROW_INT"), 10, type);
    GnssPositionState state;
    Bestpos bestpos;
    ASSERT_EQ(ReadBestpos(log, state, bestpos), GnssReadResult::Accepted);
    EXPECT_EQ(state.solutionType, solution) << type;
    EXPECT_EQ(state.differentialSource, source) << type;
  }
  for (std::size_t length = 0; length < kFixed.find("31,31"); ++length) {
    GnssPositionState state;
    Bestpos bestpos;
    EXPECT_NE(ReadBestpos(kFixed.substr(0, length), state, bestpos), GnssReadResult::Accepted)
        << length;
  }
}

class NovAtel : public ScriptedReceiver {
 protected:
  GnssReadResult Read(std::string log) {
    device->written.clear();
    return ScriptedReceiver::Read("<OK\r\n[USB1]" + log + "\r\n", kMakeNovAtel);
  }
  static std::string With(std::string_view what, std::string_view by) {
    std::string log(kFixed);
    log.replace(log.find(what), what.size(), by);
    return log;
  }
};

TEST_F(NovAtel, AsksAndTakesAnEllipsoidHeight) {
  EXPECT_EQ(Read(With("-16.6000", "0.0000")), GnssReadResult::Accepted);
  EXPECT_EQ(device->written, "LOG THISPORT BESTPOSA ONCE\r\n");
  EXPECT_DOUBLE_EQ(state.height, 1114.2977);
  EXPECT_EQ(Read(With("-16.6000", "0.0000")), GnssReadResult::Accepted);
  EXPECT_EQ(clock.sleptMs, 400) << "requests are at least 400 ms apart";
  EXPECT_TRUE(state.repeatedEpoch);
}

TEST_F(NovAtel, SwitchesAnUndulationOff) {
  EXPECT_EQ(Read(std::string(kFixed)), GnssReadResult::InvalidData);
  EXPECT_EQ(device->written, "LOG THISPORT BESTPOSA ONCE\r\nUNDULATION 0.0\r\n");
  EXPECT_EQ(ResultSentence(GnssReadResult::InvalidData, connection),
            "The receiver was set to send heights above the ellipsoid; read again.");
  connection.settings.novatel.zeroUndulation = false;
  EXPECT_EQ(Read(std::string(kFixed)), GnssReadResult::Accepted);
  EXPECT_NEAR(state.height, 1097.6977, 1e-9);
}

TEST_F(NovAtel, SetsItsDatumBack) {
  std::string log = With("-16.6000", "0.0000");
  log.replace(log.find("WGS84"), 5, "NAD27");
  EXPECT_EQ(Read(log), GnssReadResult::DatumReset);
  EXPECT_EQ(device->written, "LOG THISPORT BESTPOSA ONCE\r\nDATUM WGS84\r\nSAVECONFIG\r\n");
  connection.settings.novatel.omnistarUserDatum = true;
  log = With("-16.6000", "0.0000");
  log.replace(log.find("NARROW_INT"), 10, "OMNISTAR_HP");
  EXPECT_EQ(Read(log), GnssReadResult::DatumReset);
  EXPECT_EQ(device->written,
            "LOG THISPORT BESTPOSA ONCE\r\nUSERDATUM 6378137 298.257222101 -.9956 1.9013 .5215 "
            ".000000125639 .0000000456985 .0000000562335 -.00062\r\nDATUM USER\r\nSAVECONFIG\r\n");
  log.replace(log.find("WGS84"), 5, "USER");
  EXPECT_EQ(Read(log), GnssReadResult::Accepted);
}

TEST_F(NovAtel, NamesWhatIsMissing) {
  EXPECT_EQ(Read(std::string(kNoObservations)), GnssReadResult::NoFix);
  EXPECT_EQ(Read(""), GnssReadResult::NoPositionSentence);
  device->writeLimit = 3;
  EXPECT_EQ(Read(std::string(kFixed)), GnssReadResult::PortReadFailed);
}

TEST_F(NovAtel, GivesDopsOnRequest) {
  device->replies = {{"PSRDOPA",
                      "<OK\r\n#PSRDOPA,COM2,0,82.0,FINESTEERING,2159,68542.000,02444000,1779,"
                      "16410;10.2780,10.2210,10.1340,10.1920,1.0800,5.0,4,7,18,6,14*1536ebe7\r\n"},
                     {"GPGSA", "[COM1]$GPGSA,A,2,8,9,27,,,,,,,,,,4.4,4.3,0.1*37\r\n"}};
  EXPECT_EQ(RequestDop(state, connection, kMakeNovAtel), GnssReadResult::Accepted);
  EXPECT_EQ(device->written, "LOG THISPORT PSRDOPA ONCE\r\n");
  EXPECT_DOUBLE_EQ(state.pdop, 10.221);
  EXPECT_DOUBLE_EQ(state.hdop, 10.134);
  EXPECT_DOUBLE_EQ(state.tdop, 1.08);
  EXPECT_EQ(RequestDop(state, connection, kMakeNovAtelGsa), GnssReadResult::Accepted);
  EXPECT_DOUBLE_EQ(state.vdop, 0.1);
  EXPECT_EQ(RequestDop(state, connection, kMakeNovAtel), GnssReadResult::NoPositionSentence);
  EXPECT_EQ(RequestDop(state, connection, kMakeNmea), GnssReadResult::NoPositionSentence);
}

constexpr std::string_view kPsrdop =
    "#PSRDOPA,COM2,0,82.0,FINESTEERING,2159,68542.000,02444000,1779,16410;10.2780,10.2210,10.1340,"
    "10.1920,1.0800,5.0,4,7,18,6,14*1536ebe7\r\n";

TEST_F(NovAtel, AsksForTheDopsOfEachPosition) {
  connection.settings = FindMake(kMakeNovAtel).settings;
  device->replies = {{"PSRDOPA", std::string(kPsrdop)}};
  ASSERT_EQ(Read(With("-16.6000", "0.0000")), GnssReadResult::Accepted);
  EXPECT_EQ(device->written, "LOG THISPORT BESTPOSA ONCE\r\nLOG THISPORT PSRDOPA ONCE\r\n");
  EXPECT_DOUBLE_EQ(state.pdop, 10.221);
  EXPECT_FALSE(state.dopCarriedOver);
  EXPECT_EQ(state.lastResult, 1);
  ASSERT_EQ(Read(With("-16.6000", "0.0000")), GnssReadResult::Accepted) << "no answer this time";
  EXPECT_TRUE(state.dopCarriedOver);
  ASSERT_EQ(Read(With("-16.6000", "0.0000")), GnssReadResult::Accepted);
  EXPECT_EQ(device->written, "LOG THISPORT BESTPOSA ONCE\r\n") << "left alone for a while";
  clock.milliseconds += 10'000;
  ASSERT_EQ(Read(With("-16.6000", "0.0000")), GnssReadResult::Accepted);
  EXPECT_NE(device->written.find("PSRDOPA"), std::string::npos);
}

TEST_F(NovAtel, DoesNotTakeALateAnswerForTheNextOne) {
  device->purgeDrops = true;
  device->input = With("-16.6000,WGS84", "0.0000,WGS84") + "\r\n";
  device->replies = {{"BESTPOSA", With("51.07899643518,-114.13251416136,1114.2977,-16.6000",
                                       "51.5,-114.5,1000.0,0.0000") +
                                      "\r\n"}};
  ASSERT_EQ(ReadGnssPosition(state, connection, kMakeNovAtel), GnssReadResult::Accepted);
  EXPECT_DOUBLE_EQ(state.latitude, 51.5);
}

constexpr std::string_view kPos =
    "$PASHR,POS,1,10,134035.35,5700.8745400,N,00959.1551112,E,059.318,10.4,077.3,000.459,+000.069,"
    "1.7,0.9,1.4,0.9,Hp23*30";
constexpr std::string_view kPosSouth =
    "$PASHR,POS,0,03,003821.00,7751.70766,S,16703.78078,E,-00039.33,,007.64,000.17,+00.00,03.6,"
    "03.6,00.0,01.4,YM06*38";

class Ashtech : public ScriptedReceiver {
 protected:
  GnssReadResult Read(std::string_view input) {
    device->written.clear();
    return ScriptedReceiver::Read(input, kMakeAshtech);
  }
};

TEST_F(Ashtech, AnswersWithAPosition) {
  EXPECT_EQ(Read("\r\n$PASHR,ACK*3D\r\n" + std::string(kPosSouth) + "\r\n"),
            GnssReadResult::Accepted);
  EXPECT_EQ(device->written, "$PASHQ,POS,A\r\n");
  EXPECT_NEAR(state.latitude, -77.8617943333, 1e-9);
  EXPECT_NEAR(state.longitude, 167.0630130, 1e-7);
  EXPECT_DOUBLE_EQ(state.height, -39.33);
  EXPECT_EQ(state.satellites, 3);
  EXPECT_EQ(state.solutionType, SolutionType::Autonomous);
  EXPECT_DOUBLE_EQ(state.pdop, 3.6) << "the empty field collapses";
  connection.settings.ashtech.model = 6;
  EXPECT_EQ(Read(std::string(kPos) + "\r\n"), GnssReadResult::Accepted);
  EXPECT_EQ(state.solutionType, SolutionType::Dgps);
  EXPECT_DOUBLE_EQ(state.pdop, 1.7);
  EXPECT_DOUBLE_EQ(state.vdop, 1.4);
}

TEST_F(Ashtech, LeavesOutPowerLines) {
  EXPECT_EQ(Read("$PASHR,POW,1\r\nrest of it\r\n" + std::string(kPosSouth) + "\r\n"),
            GnssReadResult::Accepted);
}

TEST_F(Ashtech, NamesWhatIsMissing) {
  EXPECT_EQ(Read(""), GnssReadResult::PortReadFailed);
  EXPECT_EQ(Read("$PASHR,POS,,03,003821.00,7751.7\r\n"), GnssReadResult::NoFix);
  EXPECT_EQ(Read("a\r\nb\r\nc\r\nd\r\ne\r\nf\r\n"), GnssReadResult::NoPositionSentence);
  EXPECT_EQ(Read("$PASHR,POS,1,10,134035.35\r\n"), GnssReadResult::NoPositionSentence);
  GnssPositionState own{.latitude = 1.0};
  EXPECT_EQ(ReadPashrPos("PASHR,POS", 0, own), GnssReadResult::NoPositionSentence);
  EXPECT_EQ(own.latitude, 0.0);
}

TEST_F(Ashtech, SwitchesGgaOnAndOff) {
  connection.settings.ashtech.model = 1;
  connection.settings.ashtech.port = 'B';
  const std::string gga = "$GPGGA,123519,4807.038,N,01131.000,W,2,08,0.9,100.0,F,10.0,F,4,5\r\n";
  state.unit = DistanceUnit::UsSurveyFeet;
  EXPECT_EQ(Read("$GPZDA,1\r\nnoise" + gga), GnssReadResult::Accepted);
  EXPECT_EQ(device->written, "$PASHS,NME,GGA,B,ON\r\n$PASHS,NME,GGA,B,OFF\r\n");
  EXPECT_EQ(state.solutionType, SolutionType::Float);
  EXPECT_NEAR(state.height, 110.0 * 0.30480060960125016, 1e-9);
  EXPECT_LT(state.longitude, 0.0);
  EXPECT_EQ(Read("$GPGGA,123519,4807.038,N,01131.000,W,0,08,0.9,100.0,M,10.0,M,4\r\n"),
            GnssReadResult::NoPositionSentence);
  EXPECT_EQ(Read("$GPGGA,123519,4807.038,N,01131.000,W,1,08,,,M,10.0,M\r\n"),
            GnssReadResult::NoPositionSentence)
      << "collapsed fields leave fewer than 13 tokens";
  EXPECT_EQ(Read("x\r\ny\r\n"), GnssReadResult::NoPositionSentence);
  EXPECT_EQ(device->written, "$PASHS,NME,GGA,B,ON\r\n$PASHS,NME,GGA,B,OFF\r\n");
}

TEST_F(Ashtech, AsksForTheDopsThatDoNotComeWithAPosition) {
  connection.settings = FindMake(kMakeAshtech).settings;
  ASSERT_EQ(Read(std::string(kPosSouth) + "\r\n"), GnssReadResult::Accepted);
  EXPECT_EQ(device->written, "$PASHQ,POS,A\r\n") << "they came with it";
  connection.settings.ashtech.model = 1;
  device->replies = {{"PBN", "$PASHR,PBN,1,2,3,4,5,6,7,8,9,10,11,12,2.1,1.2,1.7,0.9\r\n"}};
  ASSERT_EQ(Read("$GPGGA,123519,4807.038,N,01131.000,W,2,08,0.9,100.0,M,10.0,M,4,5\r\n"),
            GnssReadResult::Accepted);
  EXPECT_TRUE(device->written.ends_with("$PASHQ,PBN\r\n"));
  EXPECT_DOUBLE_EQ(state.pdop, 2.1);
  EXPECT_EQ(state.satellites, 8);
}

TEST(BinaryPosition, IsCheckedForItsRange) {
  GnssPositionState state;
  EXPECT_EQ(
      TakeBinaryPosition({.latitudeRad = 0.84, .longitudeRad = -1.99, .heightM = 100.0}, state),
      GnssReadResult::Accepted);
  EXPECT_DOUBLE_EQ(state.latitude, 0.84 * 57.29577951308232);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const Geodetic& bad : {Geodetic{1.5709, 0.0, 0.0}, Geodetic{0.0, -3.1417, 0.0},
                              Geodetic{0.0, 0.0, 30000.1}, Geodetic{nan, 0.0, 0.0}}) {
    EXPECT_EQ(TakeBinaryPosition(bad, state), GnssReadResult::InvalidData);
  }
  EXPECT_DOUBLE_EQ(state.height, 100.0);
}

}  // namespace
}  // namespace tarvex
