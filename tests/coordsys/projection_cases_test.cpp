// Published points of projected systems: every case of the files, both ways where the source has
// both.
#include <gtest/gtest.h>

#include <cmath>

#include "coordsys/definition_reader.h"
#include "coordsys/projection.h"
#include "core/units.h"
#include "tests/coordsys/case_file.h"
#include "tests/coordsys/modules.h"

namespace tarvex {
namespace {

constexpr double kEarthRadius_m = 6371000.0;

double Distance(double latitude_deg, double longitude_deg, const LatLon& position) {
  const double north = position.latitude_rad - latitude_deg * kRadiansPerDegree;
  const double east = position.longitude_rad - longitude_deg * kRadiansPerDegree;
  return kEarthRadius_m * std::hypot(north, east * std::cos(position.latitude_rad));
}

void Check(const GeodesyCase& c) {
  ProjectionRecord record;
  std::string compound_name;
  ReadDefinition(c.definition, record, compound_name, nullptr);
  const MadeProjection made = MakeProjection(record);
  ASSERT_TRUE(made.projection) << c.where << ": fault " << static_cast<int>(made.fault);
  if (c.forward) {
    PlanePoint point;
    ASSERT_EQ(made.projection->Forward(
                  {c.latitude_deg * kRadiansPerDegree, c.longitude_deg * kRadiansPerDegree}, point),
              ProjectionResult::Done)
        << c.where;
    EXPECT_NEAR(point.northing_m, c.northing * c.metres_per_unit, c.tolerance_m) << c.where;
    EXPECT_NEAR(point.easting_m, c.easting * c.metres_per_unit, c.tolerance_m) << c.where;
  }
  if (c.inverse) {
    LatLon position;
    ASSERT_EQ(made.projection->Inverse(
                  {c.northing * c.metres_per_unit, c.easting * c.metres_per_unit}, position),
              ProjectionResult::Done)
        << c.where;
    EXPECT_LT(Distance(c.latitude_deg, c.longitude_deg, position), 1.5 * c.tolerance_m) << c.where;
  }
}

class ProjectionCases : public testing::TestWithParam<const char*> {};

TEST_P(ProjectionCases, AreMet) {
  RequireModules();
  for (const GeodesyCase& c : ReadCases(GetParam())) Check(c);
}

INSTANTIATE_TEST_SUITE_P(Files, ProjectionCases,
                         testing::Values("guidance_note_7_2.txt", "gigs_5100.txt",
                                         "state_plane_points.txt", "proj_builtins.txt"),
                         [](const auto& file) {
                           const std::string name = file.param;
                           return name.substr(0, name.find('.'));
                         });

}  // namespace
}  // namespace tarvex
