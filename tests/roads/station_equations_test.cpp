#include "roads/station_equations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/number_text.h"
#include "tests/roads/road_data.h"

namespace tarvex {
namespace {

StationEquations Example() {
  const auto equations = ReadStationEquations(ReadRoadData("cl/simple_right_eq.cl"));
  return StationEquations::Make(equations, 1000.0, 1664.15926536).value();
}

TEST(StationEquations, NameInternalStations) {
  const StationEquations equations = Example();
  for (const auto& row : TableRows("station_equations_forward.tsv")) {
    const double internal = LeadingDouble(row[0]);
    const DisplayedStation displayed = equations.Displayed(internal);
    EXPECT_EQ(displayed.region, LeadingInteger(row[1])) << row[0];
    EXPECT_NEAR(displayed.station, LeadingDouble(row[2]), 1e-9) << row[0];
    EXPECT_EQ(FormatStation(displayed.station, StationMode::Hundreds, 2), row[3]);
    EXPECT_EQ(FormatStation(displayed.station, StationMode::Thousands, 3), row[4]);
  }
  EXPECT_EQ(equations.Text(1425.0, StationMode::Hundreds, 2), "14+75.00 R3");
  EXPECT_EQ(equations.Text(1250.0, StationMode::Hundreds, 2), "13+50.00");
}

TEST(StationEquations, FindWhatCarriesAName) {
  const StationEquations equations = Example();
  for (const auto& row : TableRows("station_equations_inverse.tsv")) {
    std::optional<int> region;
    if (!row[1].empty()) region = static_cast<int>(LeadingInteger(row[1]));
    std::string answers;
    for (const InternalStation& found : equations.Internal(LeadingDouble(row[0]), region)) {
      if (!answers.empty()) answers += ";";
      answers += FixedNumber(found.station, 3) + "(" + std::to_string(found.region) + ")";
    }
    EXPECT_EQ(answers.empty() ? "none" : answers, row[2]) << row[0] << " " << row[1];
  }
}

TEST(StationEquations, RefuseWhatFallsBackOrLiesOutside) {
  std::size_t refused = 99;
  EXPECT_FALSE(StationEquations::Make({{1200, 1300}, {1290, 1400}}, 1000, 2000, &refused));
  EXPECT_EQ(refused, 1U);
  EXPECT_FALSE(StationEquations::Make({{900, 1300}}, 1000, 2000));
  EXPECT_FALSE(StationEquations::Make({{2100, 1300}}, 1000, 2000));
  const auto swapped = Swapped({{1300, 1200}});
  EXPECT_EQ(swapped, (std::vector<StationEquation>{{1200, 1300}}));
}

// Before the start and after the end the numbers count on; in a gap there is still nothing.
TEST(StationEquations, CountOnBeyondTheEnds) {
  const auto equations = StationEquations::Make({{1250.0, 1300.0}}, 1000.0, 1400.0);
  ASSERT_TRUE(equations);
  using Found = std::vector<InternalStation>;
  EXPECT_EQ(equations->Beyond(985.0), (Found{{985.0, 1}}));
  EXPECT_EQ(equations->Beyond(1460.0), (Found{{1410.0, 2}}));
  EXPECT_EQ(equations->Beyond(1275.0), Found{});
  EXPECT_EQ(equations->Beyond(985.0, 2), Found{});
  // A road that begins anew at its equation: 500 is before the start as well as behind the end.
  const auto anew = StationEquations::Make({{1500.0, 0.0}}, 1000.0, 1600.0);
  EXPECT_EQ(anew->Beyond(500.0), (Found{{500.0, 1}, {2000.0, 2}}));
}

TEST(StationEntry, TakesEveryNotation) {
  EXPECT_EQ(ParseStationEntry(" 1475.5 "), (StationEntry{1475.5, {}}));
  EXPECT_EQ(ParseStationEntry("14+75.5"), (StationEntry{1475.5, {}}));
  EXPECT_EQ(ParseStationEntry("1+475.5"), (StationEntry{1475.5, {}}));
  EXPECT_EQ(ParseStationEntry("-1+50.00"), (StationEntry{-150.0, {}}));
  EXPECT_EQ(ParseStationEntry("14+75.00 R2"), (StationEntry{1475.0, 2}));
  EXPECT_EQ(ParseStationEntry("1475 (3)"), (StationEntry{1475.0, 3}));
  for (const char* text :
       {"", "12+5", "12+", "12+-5", "a", "1475 R", "1475 (2", "1475 R0", "1+2+3"}) {
    EXPECT_FALSE(ParseStationEntry(text)) << text;
  }
}

}  // namespace
}  // namespace tarvex
