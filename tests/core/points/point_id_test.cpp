#include "core/points/point_id.h"
#include "tests/support/random_numbers.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tarvex {
namespace {

int Sign(int value) {
  return (value > 0) - (value < 0);
}

TEST(PointIdOrder, ComparesDigitRunsByValueAndLettersWithoutCase) {
  const char* ascending[] = {"001", "01", "1",  "2",   "9",   "10",    "10A",
                             "010", "11", "A2", "A2B", "a10", "A10_1", "B"};
  for (std::size_t i = 0; i < std::size(ascending); ++i) {
    for (std::size_t j = 0; j < std::size(ascending); ++j) {
      const int expected = (i > j) - (i < j);
      EXPECT_EQ(Sign(ComparePointIds(ascending[i], ascending[j])), expected)
          << ascending[i] << " " << ascending[j];
    }
  }
  EXPECT_EQ(ComparePointIds("", ""), 0);
  EXPECT_EQ(ComparePointIds("a5", "A5"), 0);
}

// The binary search and the merge rely on a proper order. (Superfluous leading zeros beside
// punctuation that sorts before the digits, 009B and "9.", have none: docs/formats/crd.md.)
TEST(PointIdOrder, IsTransitiveAndAgreesWithItsKeys) {
  RandomNumbers random(11);
  const std::string_view characters = "0019A_bZ";
  const auto make = [&] {
    std::string id;
    const std::size_t length = 1 + random() % 6;
    while (id.size() < length) id += characters[random() % characters.size()];
    return id;
  };
  int keyed = 0;
  for (int i = 0; i < 200000; ++i) {
    std::string ids[] = {make(), make(), make()};
    std::sort(std::begin(ids), std::end(ids),
              [](const auto& a, const auto& b) { return ComparePointIds(a, b) < 0; });
    ASSERT_LE(ComparePointIds(ids[0], ids[2]), 0) << ids[0] << " " << ids[1] << " " << ids[2];
    ASSERT_EQ(Sign(ComparePointIds(ids[0], ids[1])), -Sign(ComparePointIds(ids[1], ids[0])));
    const auto a = MakePointIdKey(ids[0]);
    const auto b = MakePointIdKey(ids[2]);
    if (!a || !b) continue;
    ++keyed;
    ASSERT_EQ(Sign(ComparePointIds(ids[0], ids[2])), (*b < *a) - (*a < *b))
        << ids[0] << " " << ids[2];
  }
  EXPECT_GT(keyed, 10000);
}

TEST(PointId, IsNormalisedForStorage) {
  EXPECT_EQ(NormalisePointId("  a-1,b").view(), "A_1_B");
  EXPECT_EQ(NormalisePointId("1234567890").view(), "123456789");
  EXPECT_EQ(NormalisePointId("a\nb\x01").view(), "A B ");
  EXPECT_EQ(NormalisePointId("12345678\u00E9").view(), "12345678");
  EXPECT_TRUE(NormalisePointId("   ").empty());
  EXPECT_EQ(PointIdNumber("12A"), 12);
  EXPECT_EQ(PointIdNumber("A12"), 0);
}

TEST(PointId, AdvancesAfterAStore) {
  struct Case {
    const char* id;
    long long increment;
    const char* next;
  };
  const Case cases[] = {
      {"7", 1, "8"},
      {"A9", 1, "A10"},
      {"A9B", 5, "A14B"},
      {"A1B9", 1, "A1B10"},
      {"1A2B3C", 1, "1A2B4C"},
      {"A009", 1, "A10"},
      {"WALL", 1, "WALL1"},
      {"WALL", 10, "WALL10"},
      {"ABCDEFGHI", 1, "ABCDEFGHJ"},
      {"ABCDEFGZZ", 1, "ABCDEFHZZ"},
      {"ZZZZZZZZZ", 1, "ZZZZZZZZZ"},
      {"A12345B99", 1, "A12345100"},  // the letter nearest to the end makes room
      {"999999999", 1, "100000000"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(NextPointId(PointId(c.id), c.increment).view(), c.next) << c.id;
}

}  // namespace
}  // namespace tarvex
