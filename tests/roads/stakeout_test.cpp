#include "roads/stakeout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numbers>

#include "core/text/number_text.h"
#include "tests/roads/road_data.h"

namespace tarvex {
namespace {

TEST(Stakeout, MeetsTheDeltasOfTheVectors) {
  for (const auto& row : TableRows("stakeout.tsv")) {
    std::vector<double> v;
    for (const std::string& field : row) v.push_back(LeadingDouble(field));
    const StakeDeltas deltas =
        DeltasTo({v[0], v[1], v[2]}, {v[3], v[4], v[5]}, v[6] * std::numbers::pi / 180);
    EXPECT_NEAR(deltas.goNorth, v[7], 5e-5);
    EXPECT_NEAR(deltas.goEast, v[8], 5e-5);
    EXPECT_NEAR(deltas.forward, v[9], 5e-5);
    EXPECT_NEAR(deltas.right, v[10], 5e-5);
    EXPECT_NEAR(deltas.distance, v[11], 5e-5);
    EXPECT_NEAR(deltas.azimuth * 180 / std::numbers::pi, v[12], 1e-6);
    EXPECT_NEAR(deltas.cut, v[13], 1e-9);
  }
  EXPECT_EQ(CutFillText(0.204, 2), "C 0.20");
  EXPECT_EQ(CutFillText(-0.15, 2), "F 0.15");
  EXPECT_EQ(CutFillText(-0.004, 2), "0.00");
  EXPECT_EQ(OffsetText(-3.5, 2), "3.50 L");
}

TEST(Stakeout, OpensTheGateOnlyForGoodPositions) {
  ToleranceGate gate({0.02, 0.01});
  EXPECT_FALSE(gate.Update(0.025, 0.0, true));
  EXPECT_FALSE(gate.Update(0.01, 0.0, false));
  EXPECT_FALSE(gate.Update(0.01, 0.011, true));
  EXPECT_TRUE(gate.Update(0.02, 0.01, true));
  EXPECT_TRUE(gate.Update(0.029, {}, true));
  EXPECT_FALSE(gate.Update(0.031, {}, true));
  EXPECT_FALSE(gate.Update(0.025, {}, true));
}

RoadGeometry Geometry(const char* name) {
  const Road road = LoadRoad(name);
  return MakeRoadGeometry(*road.centerline, ReadStationEquations(ReadRoadData(name))).value();
}

TEST(Stakeout, LeadsToAPlaceOfTheRoad) {
  const RoadGeometry road = Geometry("cl/scs_right.cl");
  const auto there = road.alignment.PointAt(2225.0, -3.0);
  const auto here = road.alignment.PointAt(2220.0, -1.0);
  const auto stake = StakeRoadPoint(road.alignment, {2225.0, -3.0, 50.0},
                                    {here->at.northing, here->at.easting, 50.25});
  ASSERT_TRUE(stake);
  EXPECT_NEAR(stake->stationToGo, 5.0, 1e-7);
  EXPECT_NEAR(stake->offsetToGo, -2.0, 1e-7);
  EXPECT_NEAR(*stake->cut, 0.25, 1e-9);
  EXPECT_NEAR(stake->target.northing, there->at.northing, 1e-9);
  EXPECT_GT(stake->deltas.forward, 4.9);
  EXPECT_LT(stake->deltas.right, -1.9);
}

TEST(StakeStations, ListsRoundStationsAndKeyPoints) {
  const RoadGeometry road = Geometry("cl/simple_right_eq.cl");
  const auto stations = StakeStations(road, nullptr, 100.0, road.alignment.startStation(),
                                      road.alignment.endStation());
  std::string text;
  for (const double station : stations) {
    text += road.equations.Text(station, StationMode::Plain, 2) + " ";
  }
  // Regions: up to 1200 = 1300, to 1500 = 1450, then on; key points 1200, 1514.16, 1664.16
  // internal.
  EXPECT_EQ(
      text,
      "1000.00 1100.00 1300.00 1400.00 1450.00 R3 1500.00 R3 1564.16 1600.00 1700.00 1714.16 ");
  EXPECT_TRUE(StakeStations(road, nullptr, 0.0, 1000, 1600).empty());
  // Nothing outside the span, however long the interval.
  EXPECT_EQ(StakeStations(road, nullptr, 1e6, 1000.0, 1100.0),
            (std::vector<double>{1000.0, 1100.0}));
  EXPECT_TRUE(StakeStations(road, nullptr, 1e-9, 1000, 1600).empty());
  // An equation to a station so high that doubles are more than an interval apart.
  RoadGeometry far = road;
  far.equations = StationEquations::Make({{1200, 1e20}}, 1000, 1664).value();
  EXPECT_LT(StakeStations(far, nullptr, 100.0, 1000, 1664).size(), 30U);
}

}  // namespace
}  // namespace tarvex
