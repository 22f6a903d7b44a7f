// RTCM frames and messages: the check sum, captures in pieces, the base station.
#include <gtest/gtest.h>

#include <map>
#include <optional>

#include "gnss/corrections/crc24q.h"
#include "gnss/corrections/rtcm_framer.h"
#include "gnss/corrections/rtcm_messages.h"
#include "tests/gnss/corrections/capture.h"
#include "tests/support/random_numbers.h"

namespace tarvex {
namespace {

struct Messages final : RtcmFramer::Listener {
  void OnMessage(std::string_view message) override {
    ++counts[RtcmMessageNumber(message)];
    if (const auto station = ReadBaseStation(message)) base = station;
  }
  std::map<int, int> counts;
  std::optional<BaseStation> base;
};

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
  RandomNumbers random(24);
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

}  // namespace
}  // namespace tarvex
