#include "coordsys/projection.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "core/units.h"

namespace tarvex {
namespace {

ProjectionRecord Record(ProjectionType type) {
  ProjectionRecord record;
  record.semi_major_m = 6378137.0;
  record.flattening = 1.0 / 298.257222101;
  record.projection_type = static_cast<int>(type);
  record.central_meridian = 9.0;
  record.latitude_of_origin = 40.0;
  record.standard_parallel_1 = 45.0;
  record.standard_parallel_2_or_azimuth = 49.0;
  record.scale_factor = 0.9996;
  record.false_easting = 500000.0;
  record.false_northing = -1000000.0;
  return record;
}

LatLon Degrees(double latitude, double longitude) {
  return {latitude * kRadiansPerDegree, longitude * kRadiansPerDegree};
}

const ProjectionType kMade[] = {ProjectionType::LambertConformalConic2SP,
                                ProjectionType::TransverseMercator,
                                ProjectionType::LambertConformalConic1SP};

TEST(Projection, EveryPointOfTheDomainComesBack) {
  const auto seed = std::random_device{}();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> latitude(-90.0, 90.0);
  std::uniform_real_distribution<double> longitude(-180.0, 180.0);
  for (const ProjectionType type : kMade) {
    const auto made = MakeProjection(Record(type));
    ASSERT_TRUE(made.projection);
    int inside = 0;
    for (int i = 0; i < 20000; ++i) {
      const LatLon start = Degrees(latitude(random), longitude(random));
      PlanePoint point;
      if (made.projection->Forward(start, point) != ProjectionResult::Done) continue;
      ++inside;
      LatLon back;
      ASSERT_EQ(made.projection->Inverse(point, back), ProjectionResult::Done)
          << static_cast<int>(type) << ' ' << start.latitude_rad << ' ' << start.longitude_rad;
      const double east = std::remainder(back.longitude_rad - start.longitude_rad, 2.0 * M_PI);
      EXPECT_LT(6.4e6 * std::hypot(back.latitude_rad - start.latitude_rad,
                                   east * std::cos(start.latitude_rad)),
                1e-5)
          << static_cast<int>(type) << ' ' << start.latitude_rad << ' ' << start.longitude_rad;
    }
    EXPECT_GT(inside, 9000) << static_cast<int>(type);
  }
}

TEST(Projection, PointsOutsideAreRefused) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const ProjectionType type : kMade) {
    const auto made = MakeProjection(Record(type));
    PlanePoint point{1.0, 2.0};
    LatLon position{1.0, 2.0};
    EXPECT_EQ(made.projection->Forward({kNaN, 0.0}, point), ProjectionResult::NotANumber);
    EXPECT_EQ(made.projection->Forward({0.0, kInfinity}, point), ProjectionResult::OutsideDomain);
    EXPECT_EQ(made.projection->Forward(Degrees(90.001, 9), point), ProjectionResult::OutsideDomain);
    EXPECT_EQ(made.projection->Inverse({0.0, kNaN}, position), ProjectionResult::NotANumber);
    EXPECT_EQ(made.projection->Inverse({0.0, 1e10}, position), ProjectionResult::OutsideDomain);
    EXPECT_EQ(point, (PlanePoint{1.0, 2.0}));
    EXPECT_EQ(position, (LatLon{1.0, 2.0}));
  }
  const auto mercator = MakeProjection(Record(ProjectionType::TransverseMercator));
  PlanePoint point;
  EXPECT_EQ(mercator.projection->Forward(Degrees(0, 99), point), ProjectionResult::OutsideDomain);
  EXPECT_EQ(mercator.projection->Forward(Degrees(0, -171), point), ProjectionResult::OutsideDomain);
  const auto lambert = MakeProjection(Record(ProjectionType::LambertConformalConic2SP));
  EXPECT_EQ(lambert.projection->Forward(Degrees(-90, 9), point), ProjectionResult::OutsideDomain);
  LatLon gap;  // behind the pole, where the developed cone is open
  PlanePoint pole;
  ASSERT_EQ(lambert.projection->Forward(Degrees(90, 9), pole), ProjectionResult::Done);
  EXPECT_EQ(lambert.projection->Inverse({pole.northing_m + 1e6, pole.easting_m}, gap),
            ProjectionResult::OutsideDomain);
}

TEST(Projection, ArraysGiveTheSameAsSinglePoints) {
  const auto made = MakeProjection(Record(ProjectionType::TransverseMercator));
  const std::vector<double> latitude = {0.7, 2.0, 0.8};
  const std::vector<double> longitude = {0.1, 0.1, 0.2};
  std::vector<double> northing(3);
  std::vector<double> easting(3);
  EXPECT_EQ(made.projection->Forward(latitude, longitude, northing, easting), 1U);
  EXPECT_TRUE(std::isnan(northing[1]) && std::isnan(easting[1]));
  PlanePoint point;
  ASSERT_EQ(made.projection->Forward({0.8, 0.2}, point), ProjectionResult::Done);
  EXPECT_EQ(northing[2], point.northing_m);
  EXPECT_EQ(easting[2], point.easting_m);
  std::vector<double> back_latitude(3);
  std::vector<double> back_longitude(3);
  EXPECT_EQ(made.projection->Inverse(northing, easting, back_latitude, back_longitude), 1U);
  EXPECT_NEAR(back_latitude[0], 0.7, 1e-14);
}

TEST(Projection, PolarOriginOfALambertZone) {  // Belge 1972: values of EPSG 31370 by PROJ 9.1.1
  ProjectionRecord record = Record(ProjectionType::LambertConformalConic2SP);
  record.semi_major_m = 6378388.0;
  record.flattening = 1.0 / 297.0;
  record.latitude_of_origin = 90.0;
  record.central_meridian = 4.36748666666667;
  record.standard_parallel_1 = 51.1666672333333;
  record.standard_parallel_2_or_azimuth = 49.8333339;
  record.scale_factor = 0.0;
  record.false_easting = 150000.013;
  record.false_northing = 5400088.438;
  const auto made = MakeProjection(record);
  PlanePoint point;
  ASSERT_EQ(made.projection->Forward(Degrees(50.5, 4.5), point), ProjectionResult::Done);
  EXPECT_NEAR(point.easting_m, 159401.569855966, 1e-6);
  EXPECT_NEAR(point.northing_m, 132080.715357103, 1e-6);
}

TEST(Projection, FaultsNameTheParameter) {
  struct Case {
    ProjectionType type;
    double ProjectionRecord::*field;
    double value;
    ProjectionFault fault;
  };
  const Case cases[] = {
      {ProjectionType::TransverseMercator, &ProjectionRecord::scale_factor, 0.0,
       ProjectionFault::ScaleFactor},
      {ProjectionType::TransverseMercator, &ProjectionRecord::flattening,
       std::numeric_limits<double>::infinity(), ProjectionFault::Ellipsoid},
      {ProjectionType::TransverseMercator, &ProjectionRecord::semi_major_m, 0.0,
       ProjectionFault::Ellipsoid},
      {ProjectionType::TransverseMercator, &ProjectionRecord::latitude_of_origin, 91.0,
       ProjectionFault::LatitudeOfOrigin},
      {ProjectionType::TransverseMercator, &ProjectionRecord::central_meridian, 1e6,
       ProjectionFault::CentralMeridian},
      {ProjectionType::LambertConformalConic2SP, &ProjectionRecord::standard_parallel_1, -49.0,
       ProjectionFault::StandardParallels},
      {ProjectionType::LambertConformalConic2SP, &ProjectionRecord::latitude_of_origin, -90.0,
       ProjectionFault::LatitudeOfOrigin},
      {ProjectionType::LambertConformalConic1SP, &ProjectionRecord::latitude_of_origin, 0.0,
       ProjectionFault::LatitudeOfOrigin},
  };
  for (const Case& c : cases) {
    ProjectionRecord record = Record(c.type);
    record.*c.field = c.value;
    const auto made = MakeProjection(record);
    EXPECT_EQ(made.fault, c.fault);
    EXPECT_FALSE(made.projection);
  }
  ProjectionRecord record;
  record.projection_type = 17;
  EXPECT_EQ(MakeProjection(record).fault, ProjectionFault::UnknownType);
}

}  // namespace
}  // namespace tarvex
