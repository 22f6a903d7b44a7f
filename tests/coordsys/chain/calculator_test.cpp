#include "coordsys/chain/calculator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "coordsys/catalogue/system_catalogue.h"
#include "coordsys/catalogue/utm_zones.h"

namespace tarvex {
namespace {

constexpr double kDegree = kRadiansPerDegree;

CTrgCalculator Calculator(std::string_view name) {
  CTrgCalculator calculator;
  calculator.ParseDefinition(SystemCatalogue().Find(name).value_or(NamedSystem{}).definition,
                             nullptr);
  return calculator;
}

// A shift that a test can reckon by hand.
struct NorthShift : DatumShift {
  StepOutcome outcome;
  StepOutcome ToSystem(Geodetic& position) const override {
    position.latitudeRad += 1e-5;
    position.heightM += 10.0;
    return outcome;
  }
  StepOutcome ToWgs84(Geodetic& position) const override {
    position.latitudeRad -= 1e-5;
    position.heightM -= 10.0;
    return outcome;
  }
  std::string Describe() const override { return "north"; }
};

struct SlopingGeoid : GeoidModel {
  StepOutcome outcome;
  StepOutcome Undulation(double latitudeRad, double longitudeRad,
                         double& undulationM) const override {
    undulationM = 40.0 + 10.0 * latitudeRad + longitudeRad;
    return outcome;
  }
  std::string Describe() const override { return "slope"; }
};

struct EastCorrection : GridCorrection {
  StepOutcome outcome;
  StepOutcome ToGrid(GridMetres& point) const override {
    point.eastingM += 0.25;
    return outcome;
  }
  StepOutcome ToPlane(GridMetres& point) const override {
    point.eastingM -= 0.25;
    return outcome;
  }
  std::string Describe() const override { return "east"; }
};

TEST(Calculator, ConvertsToTheJobsUnitAndBack) {
  CTrgCalculator calculator = Calculator("utm/utm wgs84 zone 32,GEOID=OFF");
  const Geodetic munich{48.1 * kDegree, 11.6 * kDegree, 560.25};
  GridPoint metres;
  ASSERT_EQ(calculator.ToGrid(munich, metres), CalculationResult::Done);
  EXPECT_NEAR(metres.northing, 5330684.896675280, 1e-6);  // PROJ 9.1.1
  EXPECT_NEAR(metres.easting, 693566.088289796, 1e-6);
  EXPECT_EQ(metres.elevation, 560.25);

  calculator.SetDistanceUnit(DistanceUnit::UsSurveyFeet);
  GridPoint feet;
  ASSERT_EQ(calculator.ToGrid(munich, feet), CalculationResult::Done);
  EXPECT_DOUBLE_EQ(feet.northing, metres.northing * kMetresToUsFeet);
  EXPECT_DOUBLE_EQ(feet.elevation, 560.25 * kMetresToUsFeet);
  Geodetic back;
  ASSERT_EQ(calculator.ToWgs84(feet, back), CalculationResult::Done);
  EXPECT_NEAR(back.latitudeRad, munich.latitudeRad, 1e-14);
  EXPECT_NEAR(back.longitudeRad, munich.longitudeRad, 1e-14);
  EXPECT_NEAR(back.heightM, munich.heightM, 1e-9);
}

TEST(Calculator, SaysWhyNothingComesOut) {
  CTrgCalculator empty;
  GridPoint point{1, 2, 3};
  EXPECT_EQ(empty.ToGrid({}, point), CalculationResult::NoSystem);
  CTrgCalculator utm = Calculator("UTM/UTM WGS84 Zone 32");
  EXPECT_EQ(utm.ToGrid({std::nan(""), 0.0, 0.0}, point), CalculationResult::NotANumber);
  EXPECT_EQ(utm.ToGrid({0.5, 0.1, std::numeric_limits<double>::infinity()}, point),
            CalculationResult::NotANumber);
  EXPECT_EQ(utm.ToGrid({0.1, 2.0, 0.0}, point), CalculationResult::OutsideDomain);
  EXPECT_EQ(point, (GridPoint{1, 2, 3}));

  CTrgCalculator broken;
  broken.ParseDefinition("nonsense", nullptr);
  EXPECT_EQ(broken.ToGrid({}, point), CalculationResult::NotAvailable);
  EXPECT_THAT(broken.StateText(), testing::HasSubstr("projection"));

  // An unknown projection is never computed as the one that the record's type happens to name.
  std::string mercator = UtmDefinition({32, Hemisphere::North});
  mercator.replace(mercator.find("Transverse_Mercator"), 19, "Mercator");
  broken.ParseDefinition(mercator, nullptr);
  EXPECT_EQ(broken.ToGrid({0.8, 0.15, 0.0}, point), CalculationResult::NotAvailable);
  broken.SetRecord(Calculator("UTM/UTM WGS84 Zone 32").record());
  EXPECT_EQ(broken.State(), CalculationResult::Done);
}

// Every step, points that are refused among those that are not, and more than one block.
TEST(Calculator, ArraysGiveTheSameAsSinglePoints) {
  for (const char* name : {"UTM/UTM WGS84 Zone 32", "UTM/UTM WGS84 Zone 33 South"}) {
    CTrgCalculator calculator = Calculator(name);
    calculator.SetDistanceUnit(DistanceUnit::UsSurveyFeet);
    std::vector<Geodetic> positions;
    for (int i = 0; i < 1000; ++i) {
      positions.push_back({0.0013 * i - 0.4, 0.15 + 0.0007 * (i % 90), 0.1 * i});
    }
    positions[7].latitudeRad = std::nan("");
    positions[300].longitudeRad = 2.0;
    positions[301].latitudeRad = 1.7;
    std::vector<GridPoint> points(positions.size(), {1, 2, 3});
    std::vector<CalculationResult> results(positions.size());
    calculator.ToGrid(positions, points, results);
    std::vector<Geodetic> back(positions.size());
    std::vector<CalculationResult> backResults(positions.size());
    points[12].easting = std::numeric_limits<double>::infinity();
    calculator.ToWgs84(points, back, backResults);
    for (std::size_t i = 0; i < positions.size(); ++i) {
      GridPoint point{1, 2, 3};
      EXPECT_EQ(calculator.ToGrid(positions[i], point), results[i]) << i;
      if (i != 12) {
        EXPECT_EQ(point, points[i]) << i;
      }
      Geodetic position;
      EXPECT_EQ(calculator.ToWgs84(points[i], position), backResults[i]) << i;
      EXPECT_EQ(position, back[i]) << i;
    }
    EXPECT_EQ(results[7], CalculationResult::NotANumber);
    EXPECT_EQ(results[300], CalculationResult::OutsideDomain);
    EXPECT_EQ(backResults[12], CalculationResult::NotANumber);
  }
  std::vector<GridPoint> points(1);
  std::vector<CalculationResult> results(1);
  CTrgCalculator().ToGrid(std::vector<Geodetic>(1), points, results);
  EXPECT_EQ(results[0], CalculationResult::NoSystem);
}

TEST(Calculator, NoDatumIsTakenForWgs84) {
  const std::string utm = UtmDefinition({32, Hemisphere::North});
  std::string shifted = utm;
  shifted.replace(shifted.find("TOWGS84[0"), 9, "TOWGS84[5");
  std::string clarke = utm;
  clarke.replace(clarke.find("6378137"), 7, "6378206");
  for (const std::string& definition : {shifted, clarke}) {
    CTrgCalculator calculator;
    calculator.ParseDefinition(definition, nullptr);
    GridPoint point;
    EXPECT_EQ(calculator.ToGrid({0.8, 0.15, 0.0}, point), CalculationResult::NoDatumShift);
    calculator.SetSteps({.datumShift = std::make_shared<NorthShift>()});
    EXPECT_EQ(calculator.ToGrid({0.8, 0.15, 0.0}, point), CalculationResult::Done);
  }
}

TEST(Calculator, EveryStepIsMadeAndUndone) {
  CTrgCalculator calculator = Calculator("UTM/UTM WGS84 Zone 32");
  const Geodetic start{0.8, 0.15, 300.0};
  GridPoint plain;
  ASSERT_EQ(calculator.ToGrid({0.8 + 1e-5, 0.15, 310.0}, plain), CalculationResult::Done);
  calculator.SetSteps({.datumShift = std::make_shared<NorthShift>(),
                       .gridCorrection = std::make_shared<EastCorrection>(),
                       .geoid = std::make_shared<SlopingGeoid>()});
  GridPoint point;
  CalculationReport report;
  ASSERT_EQ(calculator.ToGrid(start, point, &report), CalculationResult::Done);
  EXPECT_EQ(point.northing, plain.northing);
  EXPECT_EQ(point.easting, plain.easting + 0.25);
  EXPECT_NEAR(point.elevation, 300.0 - 48.15, 1e-9);
  std::vector<std::string> described;
  for (const ExplainedStep& step : report.steps) described.push_back(step.description);
  EXPECT_THAT(described, testing::ElementsAre("", "north", "slope", "", "east", ""));

  Geodetic back;
  ASSERT_EQ(calculator.ToWgs84(point, back), CalculationResult::Done);
  EXPECT_NEAR(back.latitudeRad, start.latitudeRad, 1e-13);
  EXPECT_NEAR(back.longitudeRad, start.longitudeRad, 1e-13);
  EXPECT_NEAR(back.heightM, start.heightM, 1e-6);
}

TEST(Calculator, AStepLeftUndoneIsPartOfTheResult) {
  CTrgCalculator calculator = Calculator("UTM/UTM WGS84 Zone 32");
  const auto correction = std::make_shared<EastCorrection>();
  calculator.SetSteps({.gridCorrection = correction});
  GridPoint point;
  Geodetic position;
  correction->outcome = {StepStatus::LeftUndone, 2236};
  EXPECT_EQ(calculator.ToGrid({0.8, 0.15, 0.0}, point), CalculationResult::DoneInPart);
  EXPECT_EQ(calculator.ToWgs84({5e6, 5e5, 0.0}, position), CalculationResult::DoneInPart);
  correction->outcome = {StepStatus::Refused, 2236};
  CalculationReport report;
  EXPECT_EQ(calculator.ToGrid({0.8, 0.15, 0.0}, point, &report), CalculationResult::StepRefused);
  EXPECT_EQ(report.steps.back().outcome.reason, 2236);
  correction->outcome = {StepStatus::LibraryMissing, 2232};
  EXPECT_EQ(calculator.ToWgs84({5e6, 5e5, 0.0}, position), CalculationResult::LibraryMissing);
}

TEST(Calculator, ANationalPlaneWithoutItsGridIsTold) {
  ProjectionRecord record;
  record.semiMajorM = 6377563.396;
  record.flattening = 1.0 / 299.3249646;
  record.scaleFactor = 0.9996012717;
  record.latitudeOfOriginDeg = 49.0;
  record.centralMeridianDeg = -2.0;
  record.projectionType = static_cast<int>(ProjectionType::TransverseMercatorOstn02);
  CTrgCalculator british;
  british.SetRecord(record);
  GridPoint point;
  EXPECT_EQ(british.ToGrid({0.9, -0.03, 0.0}, point), CalculationResult::NoGridCorrection);
  const auto correction = std::make_shared<EastCorrection>();
  british.SetSteps({.gridCorrection = correction});
  EXPECT_EQ(british.ToGrid({0.9, -0.03, 0.0}, point), CalculationResult::Done);
  correction->outcome = {StepStatus::LeftUndone, 2236};
  EXPECT_EQ(british.ToGrid({0.9, -0.03, 0.0}, point), CalculationResult::StepRefused);

  record.projectionType = static_cast<int>(ProjectionType::ObliqueStereographicRd2004);
  CTrgCalculator dutch;
  dutch.SetRecord(record);
  dutch.SetSteps({.datumShift = std::make_shared<NorthShift>()});
  CalculationReport report;
  EXPECT_EQ(dutch.ToGrid({0.9, -0.03, 0.0}, point, &report), CalculationResult::DoneInPart);
  EXPECT_EQ(report.steps.at(3).outcome.status, StepStatus::LeftUndone);
}

TEST(SystemCatalogue, FindsUtmZonesOfBothHemispheres) {
  const SystemCatalogue catalogue;
  EXPECT_EQ(catalogue.Search("").size(), 120U);
  const auto zones = catalogue.Search("zone 33");
  ASSERT_EQ(zones.size(), 2U);
  EXPECT_EQ(zones[0].name, "UTM/UTM WGS84 Zone 33");
  EXPECT_EQ(zones[1].name, "UTM/UTM WGS84 Zone 33 South");
  EXPECT_THAT(zones[1].definition, testing::HasSubstr("PARAMETER[\"false_northing\",10000000]"));
  for (const NamedSystem& system : catalogue.Search("")) {
    EXPECT_EQ(catalogue.Find(system.name), system);
  }
  for (const std::string_view name : {"UTM/UTM WGS84 Zone 0", "UTM/UTM WGS84 Zone 61",
                                      "UTM/UTM WGS84 Zone 3 ", "UTM/UTM WGS84 Zone", ""}) {
    EXPECT_FALSE(catalogue.Find(name)) << name;
  }
}

TEST(SystemCatalogue, TheGeoidSettingStandsBehindTheName) {
  EXPECT_EQ(ReadSystemChoice("A/B,GEOID=egm96.gtx"), (SystemChoice{"A/B", "egm96.gtx"}));
  EXPECT_EQ(ReadSystemChoice("A/B,GEOID=OFF"), (SystemChoice{"A/B", ""}));
  EXPECT_EQ(ReadSystemChoice("A, B/C"), (SystemChoice{"A, B/C", ""}));
  EXPECT_EQ(WriteSystemChoice({"A/B", "egm96.gtx"}), "A/B,GEOID=egm96.gtx");
  EXPECT_EQ(WriteSystemChoice({"A/B", ""}), "A/B,GEOID=OFF");
}

}  // namespace
}  // namespace tarvex
