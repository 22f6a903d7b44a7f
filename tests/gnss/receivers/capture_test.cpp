// Recordings of real receivers, compared with what an independent reader makes of them.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <vector>

#include "core/text/field_cursor.h"
#include "core/text/number_text.h"
#include "core/text/text.h"
#include "gnss/nmea/sentence_reader.h"
#include "gnss/port/port_address.h"
#include "gnss/receivers/position_reader.h"
#include "gnss/receivers/receiver_make.h"
#include "tests/support/manual_clock.h"

namespace tarvex {
namespace {

struct ExpectedPosition {
  std::string file;
  std::size_t offset = 0;
  std::string sentence;
  std::string latitude;
  std::string longitude;
  std::string quality;
  std::string satellites;
  std::string hdop;
  std::string height;
  std::string separation;
};

std::string DataPath(std::string_view name) {
  return std::string(TARVEX_TEST_DATA) + "/gnss/" + std::string(name);
}

std::string DataBytes(std::string_view name) {
  std::string bytes;
  EXPECT_TRUE(ReadWholeFile(SystemFiles(), DataPath(name), 1 << 20, bytes).ok()) << name;
  return bytes;
}

std::vector<ExpectedPosition> ExpectedPositions() {
  const std::string bytes = DataBytes("positions.tsv");
  std::string_view rest = bytes;
  std::vector<ExpectedPosition> rows;
  (void)TakeLine(rest);
  while (const auto line = TakeLine(rest)) {
    const auto field = [&](int n) {
      return std::string(FirstField(SkipFields(*line, '\t', n), '\t'));
    };
    rows.push_back({field(0), static_cast<std::size_t>(LeadingInteger(field(1))), field(2),
                    field(4), field(5), field(6), field(7), field(8), field(9), field(10)});
  }
  return rows;
}

constexpr int kGga = 1;
constexpr int kGll = 2;
constexpr int kGns = 4;
constexpr int kPtnlGgk = 32;

int SentenceOf(std::string_view type) {
  if (type == "PTNL,GGK") return kPtnlGgk;
  if (type.ends_with("GLL")) return kGll;
  return type.ends_with("GNS") ? kGns : kGga;
}

double Height(const ExpectedPosition& row) {
  if (row.sentence == "PTNL,GGK") return LeadingDouble(row.height.substr(3));  // "EHT371.467"
  return LeadingDouble(row.height) + LeadingDouble(row.separation);
}

TEST(Captures, EverySentenceReadsAsAnIndependentReaderSays) {
  std::map<std::string, std::string> files;
  int positions = 0;
  for (const ExpectedPosition& row : ExpectedPositions()) {
    if (!files.contains(row.file)) files[row.file] = DataBytes(row.file);
    std::string_view rest = std::string_view(files[row.file]).substr(row.offset);
    const std::string_view line = TakeLine(rest).value_or("");
    NmeaSettings settings = FindMake(kMakeAnyNmea).settings.nmea;
    settings.position = SentenceOf(row.sentence);
    GnssPositionState state;
    const SentenceResult result = SentenceReader(settings, {}).Take(line, state);
    SCOPED_TRACE(std::string(line));
    if (row.quality == "0" || row.quality == "V") {
      EXPECT_EQ(result, SentenceResult::NoFix);
      continue;
    }
    if (row.latitude.empty()) {
      EXPECT_TRUE(result == SentenceResult::Read || state.latitude == 0.0);
      continue;
    }
    ASSERT_EQ(result, SentenceResult::Position);
    ++positions;
    EXPECT_NEAR(state.latitude, LeadingDouble(row.latitude), 2e-10);
    EXPECT_NEAR(state.longitude, LeadingDouble(row.longitude), 2e-10);
    if (row.sentence.ends_with("GLL")) continue;
    EXPECT_EQ(state.satellites, LeadingInteger(row.satellites));
    EXPECT_NEAR(state.height, Height(row), 1e-9);
  }
  EXPECT_EQ(positions, 342);
}

// What a whole log comes to when it is read as the receiver it came from.
struct LogCase {
  std::string_view file;
  int receiverType;
  int position;
  std::size_t accepted;
  std::size_t noFix;
};

class CaptureLog : public testing::TestWithParam<LogCase> {};

TEST_P(CaptureLog, ReadsToItsEnd) {
  const LogCase& log = GetParam();
  ManualClock clock;
  LastErrorRecord errors;
  const auto port = MakePort({.kind = PortKind::File, .target = DataPath(log.file)}, SystemFiles(),
                             clock, errors);
  ASSERT_EQ(port->Open(), PortError::None);
  GnssConnection connection{
      .port = port.get(), .clock = clock, .settings = FindMake(log.receiverType).settings};
  connection.settings.nmea.position = log.position;
  GnssPositionState state;
  std::size_t accepted = 0;
  std::size_t noFix = 0;
  for (int call = 0; call < 2000 && !connection.ended(); ++call) {
    const GnssReadResult result = ReadGnssPosition(state, connection, log.receiverType);
    if (result == GnssReadResult::Accepted) ++accepted;
    if (result == GnssReadResult::NoFix) ++noFix;
  }
  EXPECT_TRUE(connection.ended());
  EXPECT_EQ(accepted, log.accepted);
  EXPECT_EQ(noFix, log.noFix);
}

std::string CaseName(const testing::TestParamInfo<LogCase>& info) {
  std::string name;
  for (const char c : info.param.file) name += IsDigit(c) || UpperCase(c) != LowerCase(c) ? c : '_';
  return name + std::to_string(info.param.receiverType) + "_" +
         std::to_string(static_cast<int>(info.param.position));
}

constexpr LogCase kLogs[] = {
    {"nmea-rtk.log", kMakeNmea, kGga, 72, 0},
    {"nmea-rtk.log", kMakeAnyNmea, kGga, 122, 0},
    {"r2_ptnl_ggk_part1.log", kMakeNmea, kGns, 11, 22},
    {"r2_ptnl_ggk_part1.log", kMakeAnyNmea, kGns, 11, 0},
    {"r2_ptnl_ggk_part1.log", kMakeNmea, kPtnlGgk, 11, 0},
    {"ublox-f9p-hpnmea.log", kMakeNmea, kGga, 0, 0},
    {"ublox-f9p-hpnmea.log", kMakeAnyNmea, kGga, 9, 0},
    {"rst39.log", kMakeNmea, kGga, 40, 0},
    {"isync.log", kMakeNmea, kGga, 12, 0},
    {"saab-r4.log", kMakeNmea, kGll, 12, 0},
    {"humminbird-M37.log", kMakeAnyNmea, kGga, 8, 0},
    {"meinberg-gps164.log", kMakeAnyNmea, kGga, 0, 0},
    {"firefly-II.log", kMakeAnyNmea, kGga, 0, 0},
};

INSTANTIATE_TEST_SUITE_P(Logs, CaptureLog, testing::ValuesIn(kLogs), CaseName);

TEST(Captures, EllipsoidHeightIsGgaHeightPlusSeparation) {
  // Two sentences of one receiver about one epoch, by different ways.
  std::string bytes = DataBytes("r2_ptnl_ggk_part1.log");
  std::map<std::int32_t, double> gga;
  int compared = 0;
  int floating = 0;  // quality 12, where GGA says 5
  std::string_view rest = bytes;
  while (const auto line = TakeLine(rest)) {
    NmeaSettings settings = FindMake(kMakeAnyNmea).settings.nmea;
    settings.position = line->starts_with("$PTNL") ? kPtnlGgk : kGga;
    GnssPositionState state;
    if (SentenceReader(settings, {}).Take(*line, state) != SentenceResult::Position) {
      continue;
    }
    if (settings.position == kGga) {
      gga[state.epochMs] = state.height;
    } else {
      ASSERT_TRUE(gga.contains(state.epochMs));
      EXPECT_NEAR(gga[state.epochMs], state.height, 0.0011);
      ++compared;
      if (state.solutionType == SolutionType::Float) ++floating;
    }
  }
  EXPECT_EQ(compared, 11);
  EXPECT_EQ(floating, 8);
}

}  // namespace
}  // namespace tarvex
