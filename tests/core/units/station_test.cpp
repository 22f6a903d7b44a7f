#include "core/units/station.h"

#include <gtest/gtest.h>

#include <limits>

namespace tarvex {
namespace {

TEST(Station, IsWrittenInPlusNotation) {
  struct Case {
    double station;
    StationMode mode;
    int decimals;
    const char* text;
  };
  const Case cases[] = {
      {1234.5, StationMode::Hundreds, 2, "12+34.50"},
      {1299.999, StationMode::Hundreds, 2, "13+00.00"},
      {5.25, StationMode::Hundreds, 2, "0+05.25"},
      {9.999, StationMode::Hundreds, 2, "0+10.00"},
      {99.6, StationMode::Hundreds, 0, "1+00"},
      {-0.0001, StationMode::Hundreds, 2, "0+00.00"},
      {-0.0001, StationMode::Hundreds, 4, "-0+00.0001"},
      {-150.0, StationMode::Hundreds, 2, "-1+50.00"},
      {12345.678, StationMode::Thousands, 3, "12+345.678"},
      {1005.5, StationMode::Thousands, 3, "1+005.500"},
      {1055.5, StationMode::Thousands, 1, "1+055.5"},
      {1999.9999, StationMode::Thousands, 3, "2+000.000"},
      {-0.4, StationMode::Thousands, 0, "0+000"},
      {299.99999999999, StationMode::Hundreds, 4, "3+00.0000"},
      {1234.5, StationMode::Plain, 1, "1234.5"},
      {-12.25, StationMode::Plain, 2, "-12.25"},
      {-0.001, StationMode::Plain, 2, "0.00"},
      {std::numeric_limits<double>::quiet_NaN(), StationMode::Hundreds, 2, ""},
  };
  for (const Case& c : cases) EXPECT_EQ(FormatStation(c.station, c.mode, c.decimals), c.text);
}

TEST(Station, ExamplesNameTheTwelveFormats) {
  EXPECT_EQ(StationFormatExample(StationMode::Hundreds, 1), "(e.g. 1+00.0)");
  EXPECT_EQ(StationFormatExample(StationMode::Thousands, 4), "(e.g. 0+100.0000)");
  EXPECT_EQ(StationFormatExample(StationMode::Plain, 1), "(e.g. 100.0)");
}

}  // namespace
}  // namespace tarvex
