// Arrays through the calculator with every kind of datum step and geoid: the bits of single points.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "coordsys/chain/calculator.h"
#include "coordsys/datum/grid_shifts.h"
#include "coordsys/datum/seven_parameter_shift.h"
#include "coordsys/geoid/geoid_step.h"
#include "coordsys/grids/gr3df97a_grid.h"
#include "tests/coordsys/case_table.h"
#include "tests/support/random_numbers.h"

namespace tarvex {
namespace {

constexpr Ellipsoid kBessel = {6377397.155, 0.00334277318217};
constexpr SevenParameters kGerman = {598.1, 73.7, 418.2, -0.202, -0.045, 2.455, 6.7};
constexpr std::size_t kPoints = 600;  // more than two blocks

std::shared_ptr<const DatumShift> SevenParameterStep(const char* library) {
  AddRunTimeLibraryFolder(TARVEX_MODULE_FOLDER);
  return std::make_shared<SevenParameterShift>(
      kGerman, kBessel, std::make_shared<ClosedLibrary>(library, SystemRunTimeLibraries()));
}

std::shared_ptr<const DatumShift> Ntv2Step() {
  Ntv2Grid grid;
  EXPECT_TRUE(Ntv2Grid::Parse(FileBytes(TestBytes("datum/paris.gsb")), "paris", grid).ok());
  return std::make_shared<Ntv2Shift>(std::move(grid), "paris");
}

std::shared_ptr<const DatumShift> FrenchStep() {
  std::string packed;
  EXPECT_TRUE(PackGr3df97a(TestBytes("datum/gr3df97a_paris.txt"), "paris", packed).ok());
  Gr3df97aGrid grid;
  EXPECT_TRUE(Gr3df97aGrid::Parse(FileBytes(packed), "paris", grid).ok());
  return std::make_shared<Gr3df97aShift>(std::move(grid), kBessel, "paris");
}

std::shared_ptr<const GeoidModel> BavarianGeoid() {
  GeoidGrid grid;
  EXPECT_TRUE(GeoidGrid::Parse(FileBytes(TestBytes("datum/bavaria.gtx")), "b.gtx", grid).ok());
  return std::make_shared<GridGeoid>(std::move(grid), "bavaria");
}

// Steep, left undone in the north and refused in the south.
struct SlopingGeoid final : GeoidModel {
  StepOutcome Undulation(double latitude, double longitude, double& value) const override {
    if (latitude < 0.8395) return {StepStatus::Refused, 1};
    if (latitude > 0.8625) return {StepStatus::LeftUndone, 2};
    value = 30.0 + 2000.0 * latitude * longitude;
    return {};
  }
  std::string Describe() const override { return "sloping"; }
};

struct Place {
  double latitudeDeg;
  double longitudeDeg;
};

// Around a place and beyond the step's grid, with points that nothing takes among them.
std::vector<Geodetic> PositionsAround(Place place) {
  RandomNumbers random(8);
  std::uniform_real_distribution<double> off(-1.4, 1.4);
  std::vector<Geodetic> positions;
  while (positions.size() < kPoints) {
    positions.push_back({(place.latitudeDeg + off(random)) * kRadiansPerDegree,
                         (place.longitudeDeg + off(random)) * kRadiansPerDegree,
                         100.0 * off(random)});
  }
  positions[3].latitudeRad = std::nan("");
  positions[256].heightM = std::numeric_limits<double>::infinity();
  positions[257].latitudeRad = 1.7;
  positions[300].longitudeRad += 2.0 * std::numbers::pi;
  return positions;
}

// Returns how many points came there and back.
std::size_t ExpectSinglePointsBits(const CTrgCalculator& calculator,
                                   const std::vector<Geodetic>& positions) {
  std::vector<GridPoint> points(kPoints, {1, 2, 3});
  std::vector<CalculationResult> results(kPoints);
  calculator.ToGrid(positions, points, results);
  std::vector<Geodetic> back(kPoints);
  std::vector<CalculationResult> backResults(kPoints);
  calculator.ToWgs84(points, back, backResults);
  std::size_t came = 0;
  for (std::size_t i = 0; i < kPoints; ++i) {
    GridPoint point{1, 2, 3};
    EXPECT_EQ(calculator.ToGrid(positions[i], point), results[i]) << i;
    EXPECT_EQ(point, points[i]) << i;
    Geodetic position;
    EXPECT_EQ(calculator.ToWgs84(points[i], position), backResults[i]) << i;
    EXPECT_EQ(position, back[i]) << i;
    came += results[i] == CalculationResult::Done && backResults[i] == CalculationResult::Done;
  }
  return came;
}

CTrgCalculator CalculatorAround(Place place, const CalculationSteps& steps) {
  ProjectionRecord record;
  record.projectionType = static_cast<int>(ProjectionType::TransverseMercator);
  record.semiMajorM = kBessel.semiMajorM;
  record.flattening = kBessel.flattening;
  record.centralMeridianDeg = std::round(place.longitudeDeg);
  record.scaleFactor = 1.0;
  CTrgCalculator calculator;
  calculator.SetRecord(record);
  calculator.SetSteps(steps);
  return calculator;
}

TEST(DatumArrays, EveryStepGivesTheBitsOfSinglePoints) {
  constexpr Place kParis = {48.75, 2.5};
  constexpr Place kMunich = {48.0, 11.5};
  const auto sloping = std::make_shared<SlopingGeoid>();
  struct Case {
    Place place;
    CalculationSteps steps;
    std::size_t least;  // points that come through
  };
  const Case cases[] = {
      {kMunich, {.datumShift = SevenParameterStep("CoordSys.dll")}, 550},
      {kMunich, {.datumShift = SevenParameterStep("CoordSys.dll"), .geoid = BavarianGeoid()}, 300},
      {kMunich, {.datumShift = SevenParameterStep("CoordSys.dll"), .geoid = sloping}, 200},
      {kMunich, {.datumShift = SevenParameterStep("nowhere.dll")}, 0},
      {kParis, {.datumShift = Ntv2Step()}, 50},
      {kParis, {.datumShift = Ntv2Step(), .geoid = sloping}, 50},
      {kParis, {.datumShift = FrenchStep()}, 50},
      {kParis, {.datumShift = FrenchStep(), .geoid = sloping}, 50},
      {kParis, {.datumShift = std::make_shared<ChosenIdentity>(), .geoid = sloping}, 50},
      {kParis, {.datumShift = std::make_shared<MissingShift>("gone")}, 0},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.steps.datumShift->Describe());
    const std::size_t came =
        ExpectSinglePointsBits(CalculatorAround(one.place, one.steps), PositionsAround(one.place));
    EXPECT_GE(came, one.least);
    EXPECT_EQ(came == 0, one.least == 0);
  }
}

}  // namespace
}  // namespace tarvex
