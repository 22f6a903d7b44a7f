#include "core/text/number_text.h"
#include "tests/support/random_numbers.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

namespace tarvex {
namespace {

TEST(LeadingNumber, TakesWhatStartsTheText) {
  EXPECT_EQ(LeadingDouble("12.5abc"), 12.5);
  EXPECT_EQ(LeadingDouble("  +7"), 7.0);
  EXPECT_EQ(LeadingDouble("-.5*47"), -0.5);
  EXPECT_EQ(LeadingDouble("1e3,"), 1000.0);
  EXPECT_EQ(LeadingDouble("4."), 4.0);
  for (const char* none : {"", "abc", "-", "+-3", "inf", "nan", ".", "-e5"}) {
    EXPECT_EQ(LeadingDouble(none), 0.0) << none;
  }
  EXPECT_EQ(LeadingDouble("1e999"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(LeadingDouble("1e-999"), 0.0);
  EXPECT_EQ(LeadingInteger(" -12abc"), -12);
  EXPECT_EQ(LeadingInteger("A10"), 0);
  EXPECT_EQ(LeadingInteger("99999999999999999999"), std::numeric_limits<long long>::max());
}

TEST(StrictNumber, RefusesWhatIsNotANumber) {
  EXPECT_EQ(ParseNumber(" 5000.25 "), 5000.25);
  EXPECT_EQ(ParseInteger("+12"), 12);
  for (const char* bad : {"", "12x", "1,5", "--1", "nan", "1e999", "1 2"}) {
    EXPECT_EQ(ParseNumber(bad), std::nullopt) << bad;
  }
  EXPECT_EQ(ParseInteger("1.5"), std::nullopt);
}

TEST(FixedNumber, MatchesThePrintedForm) {
  RandomNumbers random(7);
  std::uniform_real_distribution<double> value(-1e7, 1e7);
  for (int i = 0; i < 5000; ++i) {
    const double v = i % 2 == 0 ? value(random) : value(random) * 1e-9;
    for (const int decimals : {0, 1, 4, 8, 10, 12}) {
      char printed[400];
      std::snprintf(printed, sizeof printed, "%.*f", decimals, v);
      ASSERT_EQ(FixedNumber(v, decimals), printed);
    }
  }
  EXPECT_EQ(FixedNumber(1e300, 2).size(), 304U);
}

// On the middle between two decimals, a hair from it, at the ends of what is quick, and signed
// zeros.
TEST(FixedNumber, MatchesThePrintedFormWhereRoundingIsClose) {
  RandomNumbers random(11);
  std::uniform_int_distribution<long long> whole(0, 1LL << 40);
  for (int i = 0; i < 20000; ++i) {
    for (const int decimals : {0, 1, 3, 4, 10}) {
      const long long units = whole(random) >> (i % 40);
      double v = (static_cast<double>(units) + 0.5) / std::pow(10.0, decimals);
      for (int step = i % 3; step > 0; --step) v = std::nextafter(v, i % 2 == 0 ? 1e300 : -1e300);
      char printed[400];
      std::snprintf(printed, sizeof printed, "%.*f", decimals, i % 7 == 0 ? -v : v);
      ASSERT_EQ(FixedNumber(i % 7 == 0 ? -v : v, decimals), printed);
    }
  }
  for (const double v :
       {0.0, -0.0, 0.5, 1.5, 2.5, 4503599627370495.5, 4503599627370497.0, 450359962737.04955,
        9007199254740993.0, 5e-324, -1e-300, 0.00005, 0.99995}) {
    for (const int decimals : {0, 1, 4, 10}) {
      char printed[400];
      std::snprintf(printed, sizeof printed, "%.*f", decimals, v);
      EXPECT_EQ(FixedNumber(v, decimals), printed);
    }
  }
}

TEST(Integers, ArePaddedBehindTheSign) {
  std::string text;
  AppendInteger(text, 7, 2);
  AppendInteger(text, -7, 3);
  AppendInteger(text, 1234, 2);
  EXPECT_EQ(text, "07-0071234");
}

}  // namespace
}  // namespace tarvex
