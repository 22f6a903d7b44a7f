// Sentences into the state: published examples and the system's own mappings.
#include <gtest/gtest.h>

#include "core/text/number_text.h"
#include "gnss/nmea/nmea_number.h"
#include "gnss/nmea/sentence_line.h"
#include "gnss/nmea/sentence_reader.h"
#include "gnss/nmea/sentences.h"
#include "gnss/receivers/receiver_make.h"
#include "tests/support/random_numbers.h"

namespace tarvex {
namespace {

struct Reading {
  GnssPositionState state = {};
  NmeaSettings settings = {};
  NmeaTraits traits = {};
  SentenceReader reader{settings, traits};

  SentenceResult Take(std::string_view line) { return reader.Take(line, state); }
};

constexpr std::string_view kMunich =
    "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47";

TEST(NmeaNumber, IsTheLeadingNumberOfEveryField) {
  for (const std::string_view field :
       {"", "0", "-0", "4807.038", "3617.56130011", "-26.0", "+000.479", ".5", "5.", "-", ".",
        "1e3", "0047*7D", "12.5abc", " 7", "123456789012345678", "0.000000000000000000001", "--5",
        "9999999999999999.9"}) {
    EXPECT_EQ(NmeaNumber(field), LeadingDouble(field)) << field;
  }
  RandomNumbers random(7);
  for (int i = 0; i < 20000; ++i) {
    const std::string field = FixedNumber(static_cast<double>(random() % 1'800'000'000U) / 1e5,
                                          static_cast<int>(random() % 9));
    ASSERT_EQ(NmeaNumber(field), LeadingDouble(field)) << field;
  }
}

TEST(NmeaNumber, ReadsTimesOfDay) {
  EXPECT_EQ(MillisecondsOfDay("123519"), ((12 * 60 + 35) * 60 + 19) * 1000);
  EXPECT_EQ(MillisecondsOfDay("133859.80"), ((13 * 60 + 38) * 60 + 59) * 1000 + 800);
  EXPECT_EQ(MillisecondsOfDay("12351"), kNoEpoch);
  EXPECT_EQ(MillisecondsOfDay(""), kNoEpoch);
}

TEST(Gga, GivesPositionQualityAndEllipsoidHeight) {
  Reading reading;
  ASSERT_EQ(reading.Take(kMunich), SentenceResult::Position);
  EXPECT_NEAR(reading.state.latitude, 48.1173, 1e-9);
  EXPECT_NEAR(reading.state.longitude, 11.0 + 31.0 / 60.0, 1e-9);
  EXPECT_EQ(reading.state.solutionType, SolutionType::Autonomous);
  EXPECT_EQ(reading.state.satellites, 8);
  EXPECT_DOUBLE_EQ(reading.state.hdop, 0.9);
  EXPECT_DOUBLE_EQ(reading.state.height, 592.3);
  reading.traits.ellipsoidHeight = true;
  ASSERT_EQ(reading.Take(kMunich), SentenceResult::Position);
  EXPECT_DOUBLE_EQ(reading.state.height, 545.4);
}

TEST(Gga, MapsQualityToSolution) {
  const std::pair<const char*, SolutionType> cases[] = {
      {"1", SolutionType::Autonomous}, {"2", SolutionType::Dgps},  {"3", SolutionType::Fixed},
      {"4", SolutionType::Fixed},      {"5", SolutionType::Float}, {"8", SolutionType::Autonomous}};
  for (const auto& [quality, solution] : cases) {
    Reading reading;
    const std::string line =
        std::string("$GPGGA,1,4807.0,S,01131.0,W,") + quality + ",08,0.9,1.0,M,2.0,M,,*47";
    ASSERT_EQ(reading.Take(line), SentenceResult::Position);
    EXPECT_EQ(reading.state.solutionType, solution) << quality;
    EXPECT_LT(reading.state.latitude, 0.0);
    EXPECT_LT(reading.state.longitude, 0.0);
  }
  Reading stream{.traits = {.streamBuffered = true}};
  ASSERT_EQ(stream.Take("$GPGGA,1,4807.0,N,01131.0,E,2,08,0.9,1.0,M,2.0,M,,"),
            SentenceResult::Position);
  EXPECT_EQ(stream.state.solutionType, SolutionType::Float);
}

TEST(Gga, WithoutFixOrCutShortIsNoPosition) {
  Reading reading;
  EXPECT_EQ(reading.Take("$GPGGA,1,4807.038,N,01131.000,E,0,08,0.9,545.4,M,46.9,M,,*47"),
            SentenceResult::NoFix);
  // Cut at every length: never a position until the separation field has begun, never a crash.
  const std::size_t separationAt = kMunich.find("46.9");
  for (std::size_t length = 0; length < separationAt; ++length) {
    Reading cut;
    EXPECT_NE(cut.Take(kMunich.substr(0, length)), SentenceResult::Position) << length;
  }
}

TEST(Gga, OfTheHemisphereFamilyCarriesTheCorrectionAge) {
  Reading reading{.traits = {.hemisphereFamily = true}};
  ASSERT_EQ(reading.Take("$GPGGA,1,4807.0,N,01131.0,E,2,08,0.9,1.0,M,2.0,M,6.5,0133*5F"),
            SentenceResult::Position);
  EXPECT_DOUBLE_EQ(reading.state.correctionAge, 6.5);
}

TEST(Talkers, AreTakenWhenTheSettingSaysSo) {
  constexpr std::string_view kFixed =
      "$GNGGA,153412.00,4631.67305924,N,00836.42752370,E,4,20,0.9,1145.6315,M,50.3453,M,01,0*7E";
  Reading plain;
  EXPECT_EQ(plain.Take(kFixed), SentenceResult::Read);
  Reading any{.settings = {.anyTalker = true, .checksum = true}};
  ASSERT_EQ(any.Take(kFixed), SentenceResult::Position);
  EXPECT_EQ(any.state.solutionType, SolutionType::Fixed);
  EXPECT_EQ(any.state.epochMs, ((15 * 60 + 34) * 60 + 12) * 1000);
  EXPECT_EQ(any.Take("$GNGGA,153412.00,4631.67305925,N,00836.42752370,E,4,20,0.9,1145.6315,M,"
                     "50.3453,M,01,0*7E"),
            SentenceResult::Read);
  EXPECT_EQ(any.state.badChecksums, 1U);
}

// What receivers put around a sentence on one port with binary data.
TEST(Sentence, IsFoundBehindBinaryDataAndBeforeBlanks) {
  constexpr std::string_view kBinary("\xB5\x62\x01\x07\x00$\x13", 7);
  const std::string whole(kMunich);
  const std::pair<std::string, bool> lines[] = {
      {whole, true},
      {"$" + whole, true},
      {std::string(kBinary) + whole, true},
      {whole + " ", true},
      {whole + "\r", true},
      {whole + std::string("\0 \t", 3), true},
      {"$GPGGA,123519,4807.038,N,01131.000,E,4,08,0.9,5" + whole, true},
      {whole.substr(0, whole.size() - 1), false},
      {std::string(kBinary) + whole.substr(0, 60) + "$", false},
      {"", false},
      {"  ", false}};
  Reading plain;
  Reading any{.settings = FindMake(kMakeAnyNmea).settings.nmea};
  for (const auto& [line, found] : lines) {
    EXPECT_EQ(any.Take(line) == SentenceResult::Position, found) << line;
    if (!found) continue;
    EXPECT_DOUBLE_EQ(any.state.height, 592.3);
    EXPECT_EQ(HasGoodChecksum(SentenceIn(line)), found);
  }
  EXPECT_NE(plain.Take(lines[1].first), SentenceResult::Position) << "the fixed reader";
  EXPECT_FALSE(HasGoodChecksum("$GPGGA,123519"));
}

TEST(Gns, OfNoSystemIsNoFix) {
  const std::string line =
      "$GNGNS,235647.00,3403.47162394,N,11711.80927093,W,NNNN,10,1.2,403.6,-32.1,,";
  Reading first{.settings = {.position = 4}};
  EXPECT_EQ(first.Take(line), SentenceResult::Position)
      << "as AUTONOMOUS, where the first letter counts";
  Reading best{.settings = {.position = 4, .gnsBestMode = true}};
  EXPECT_EQ(best.Take(line), SentenceResult::NoFix);
}

TEST(Origin, OfAPositionThatIsNotMeasuredIsTold) {
  const std::pair<char, PositionOrigin> qualities[] = {
      {'1', PositionOrigin::Measured},  {'4', PositionOrigin::Measured},
      {'6', PositionOrigin::Estimated}, {'7', PositionOrigin::Entered},
      {'8', PositionOrigin::Simulated}, {'5', PositionOrigin::Measured}};
  Reading gga;
  for (const auto& [quality, origin] : qualities) {
    ASSERT_EQ(gga.Take("$GPGGA,123519,4807.038,N,01131.000,E," + std::string(1, quality) +
                       ",08,0.9,545.4,M,46.9,M,,"),
              SentenceResult::Position);
    EXPECT_EQ(gga.state.origin, origin) << quality;
    EXPECT_EQ(OriginSentence(origin).empty(), origin == PositionOrigin::Measured);
  }
  const std::pair<const char*, PositionOrigin> modes[] = {{"AA", PositionOrigin::Measured},
                                                          {"EN", PositionOrigin::Estimated},
                                                          {"ER", PositionOrigin::Measured},
                                                          {"MM", PositionOrigin::Entered},
                                                          {"S", PositionOrigin::Simulated}};
  Reading gns{.settings = {.position = 4, .gnsBestMode = true}};
  for (const auto& [mode, origin] : modes) {
    ASSERT_EQ(gns.Take("$GNGNS,235647.00,3403.47,N,11711.80,W," + std::string(mode) +
                       ",10,1.2,403.6,-32.1,,"),
              SentenceResult::Position);
    EXPECT_EQ(gns.state.origin, origin) << mode;
  }
}

TEST(Gns, ReadsTheFirstModeLetterOrTheBest) {
  constexpr std::string_view kLine =
      "$GNGNS,235647.00,3403.47162394,N,11711.80927093,W,NRFNN,10,1.2,403.600,-32.133,,*2E";
  Reading first{.settings = {.position = 4}};
  ASSERT_EQ(first.Take(kLine), SentenceResult::Position);
  EXPECT_EQ(first.state.solutionType, SolutionType::Autonomous);
  EXPECT_NEAR(first.state.height, 371.467, 1e-9);
  Reading best{.settings = {.position = 4, .gnsBestMode = true}};
  ASSERT_EQ(best.Take(kLine), SentenceResult::Position);
  EXPECT_EQ(best.state.solutionType, SolutionType::Fixed);
  constexpr std::string_view kEmpty = "$GPGNS,225817.00,,,,,,7,,,,4.6,138*49";
  EXPECT_EQ(first.Take(kEmpty), SentenceResult::Position) << "taken as 0/0, refused later";
  best.settings.skipEmpty = true;
  EXPECT_EQ(best.Take(kEmpty), SentenceResult::Read);
  EXPECT_NEAR(best.state.height, 371.467, 1e-9);
}

TEST(Ggk, ReadsTheHeightWithItsPrefix) {
  Reading reading{.settings = {.position = 32}};
  ASSERT_EQ(reading.Take("$PTNL,GGK,225716.00,031016,3617.55899820,N,09718.50464538,W,3,06,4.4,"
                         "EHT288.689,M*67"),
            SentenceResult::Position);
  EXPECT_DOUBLE_EQ(reading.state.height, 288.689);
  EXPECT_DOUBLE_EQ(reading.state.pdop, 4.4);
  EXPECT_EQ(reading.state.solutionType, SolutionType::Fixed);
  EXPECT_EQ(reading.Take("$PTNL,GGK,,,,,,,0,00,,,M*30"), SentenceResult::NoFix);
}

TEST(Ggk, OfThePublishedLayoutHasAFieldBeforeItsHeight) {
  constexpr std::string_view kLine =
      "$GPGGK,113616.00,041006,4724.5248557,N,00937.1063064,E,3,12,1.7,EHT1171.742,M*6D";
  Reading plain{.settings = {.position = 8}};
  ASSERT_EQ(plain.Take(kLine), SentenceResult::Position);
  EXPECT_DOUBLE_EQ(plain.state.height, 1.7);
  Reading published{.settings = {.position = 8, .ggkPublishedLayout = true}};
  ASSERT_EQ(published.Take(kLine), SentenceResult::Position);
  EXPECT_DOUBLE_EQ(published.state.height, 1171.742);
  EXPECT_DOUBLE_EQ(published.state.pdop, 1.7);
}

TEST(Gll, HasNoHeight) {
  Reading reading{.settings = {.position = 2}};
  EXPECT_EQ(reading.Take(kMunich), SentenceResult::Read);
  reading.state.height = 12.0;
  ASSERT_EQ(reading.Take("$GPGLL,3751.65,S,14507.36,E,225444,A"), SentenceResult::Position);
  EXPECT_NEAR(reading.state.latitude, -37.860833333, 1e-8);
  EXPECT_EQ(reading.state.height, 0.0);
  EXPECT_EQ(reading.state.epochMs, ((22 * 60 + 54) * 60 + 44) * 1000);
  reading.settings.gllStatus = true;
  EXPECT_EQ(reading.Take("$GPGLL,3751.65,S,14507.36,E,225444,V"), SentenceResult::NoFix);
}

TEST(Gst, GivesPrecisionInTheJobsUnit) {
  Reading reading{.state = {.unit = DistanceUnit::UsSurveyFeet}};
  ASSERT_EQ(reading.Take("$GPGST,123519.00,1.0,,,,0.03,0.04,0.10*7E"), SentenceResult::Read);
  EXPECT_NEAR(reading.state.hrms, 0.05 * 3.280833333333, 1e-12);
  EXPECT_NEAR(reading.state.vrms, 0.3280833333333, 1e-12);
  EXPECT_TRUE(reading.state.precisionKnown);
  for (const std::string_view part :
       {"$GPGST,123519.00,,,,,,,*7E", "$GPGST,123519.00,1.0,,,,0.03,0.04,*7E"}) {
    (void)reading.Take(part);
    EXPECT_FALSE(reading.state.precisionKnown) << part;
  }
}

TEST(Gsa, ListsSatellitesAndDops) {
  Reading reading{.settings = {.anyTalker = true}};
  (void)reading.Take("$GNGSA,A,3,13,16,21,15,10,29,27,20,,,,,1.05,0.64,0.83,1*03");
  EXPECT_EQ(reading.state.satellites, 8);
  EXPECT_EQ(reading.state.usedSatellites[7], (UsedSatellite{.prn = 20, .inUse = 1}));
  EXPECT_EQ(reading.state.usedSatellites[8].inUse, 0);
  EXPECT_DOUBLE_EQ(reading.state.pdop, 1.05);
  EXPECT_DOUBLE_EQ(reading.state.hdop, 0.64);
  EXPECT_DOUBLE_EQ(reading.state.vdop, 0.83);
  (void)reading.Take("$GNGSA,A,3,65,66,,,,,,,,,,,1.05,0.64,0.83,2*03");
  EXPECT_EQ(reading.state.satellites, 10) << "one GSA a system, together one solution";
  (void)reading.Take("$GPGSV,1,1,00");
  (void)reading.Take("$GPGSA,A,2,8,9,27,,,,,,,,,,4.4,4.4,0.0*37");
  EXPECT_EQ(reading.state.satellites, 3);
}

TEST(Rre, HasItsRmsBehindTheResiduals) {
  constexpr std::string_view kLine =
      "$GPRRE,10,01,-000.105,06,-000.030,10,+000.034,12,+000.166,15,-000.193,17,+000.059,19,"
      "-000.014,24,-000.118,25,+000.479,32,-000.126,0000.240,0000.334*76";
  Reading reading;
  ASSERT_EQ(reading.Take(kLine), SentenceResult::Read);
  EXPECT_DOUBLE_EQ(reading.state.hrms, 0.240);
  EXPECT_DOUBLE_EQ(reading.state.vrms, 0.334);
  EXPECT_EQ(reading.Take("$GPRRE,99999999999,1,2"), SentenceResult::RanOut);
  reading.traits = {.hemisphereFamily = true};
  EXPECT_EQ(reading.Take("$GPRRE,1,01,-0.1,0.2,0.3$GPGGA,1"), SentenceResult::InvalidData);
}

TEST(Rd1, IsReadForOneDifferentialSource) {
  constexpr std::string_view kLine = "$RD1,469164,1515,1537.4400,1,10,83,76.9,0,1F,1F,0,99999";
  Reading reading{.settings = {.differentialChoice = kReadRd1},
                  .traits = {.hemisphereFamily = true}};
  (void)reading.Take(kLine);
  EXPECT_EQ(reading.state.differentialStatus, 10);
  Reading other{.settings = {.differentialChoice = 3}, .traits = {.hemisphereFamily = true}};
  (void)other.Take(kLine);
  EXPECT_EQ(other.state.differentialStatus, 0);
}

TEST(ReceiverSettings, AreReadByKey) {
  ReceiverSettings settings;
  ReadReceiverSettings(
      "nmea_pos=32\r\nunknown=1\nsokAx3DiffChoice=4\nnmea_any_talker=1\n"
      "nmea_pos=3\nbNMEA_noRMS=maybe\nno equals sign\n",
      settings);
  EXPECT_EQ(settings.nmea.position, 32);
  EXPECT_EQ(settings.nmea.differentialChoice, 4);
  EXPECT_TRUE(settings.nmea.anyTalker);
  EXPECT_FALSE(settings.noRms);
}

TEST(ReceiverSettings, TellAnUnknownKeyFromAValueThatIsNone) {
  ReceiverSettings settings;
  EXPECT_EQ(SetReceiverSetting("nmea_po", "1", settings), SettingResult::UnknownKey);
  EXPECT_EQ(SetReceiverSetting("nmea_pos", "3", settings), SettingResult::NotAValue);
  EXPECT_EQ(settings, ReceiverSettings());
  for (const std::string_view key : SettingKeys()) {
    EXPECT_FALSE(SettingValues(key).empty()) << key;
    EXPECT_EQ(SetReceiverSetting(key, "", settings), SettingResult::NotAValue) << key;
  }
}

}  // namespace
}  // namespace tarvex
