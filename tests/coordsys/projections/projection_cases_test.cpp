// Published points of projected systems: every case of the files, both ways where the source has
// both.
#include <gtest/gtest.h>

#include <cmath>

#include "coordsys/definition/definition_reader.h"
#include "coordsys/projections/projection.h"
#include "core/units/units.h"
#include "tests/coordsys/case_file.h"
#include "tests/coordsys/modules.h"

namespace tarvex {
namespace {

constexpr double kEarthRadiusM = 6371000.0;

double Distance(double latitudeDeg, double longitudeDeg, const LatLon& position) {
  const double north = position.latitudeRad - latitudeDeg * kRadiansPerDegree;
  const double east = position.longitudeRad - longitudeDeg * kRadiansPerDegree;
  return kEarthRadiusM * std::hypot(north, east * std::cos(position.latitudeRad));
}

void Check(const GeodesyCase& c) {
  ProjectionRecord record;
  DefinitionFacts facts;
  ReadDefinition(c.definition, record, facts, nullptr);
  const MadeProjection made = MakeProjection(record);
  ASSERT_TRUE(made) << c.where << ": fault " << static_cast<int>(made.failure().code);
  if (c.forward) {
    PlanePoint point;
    ASSERT_EQ((*made)->Forward(
                  {c.latitudeDeg * kRadiansPerDegree, c.longitudeDeg * kRadiansPerDegree}, point),
              ProjectionResult::Done)
        << c.where;
    EXPECT_NEAR(point.northingM, c.northing * c.metresPerUnit, c.toleranceM) << c.where;
    EXPECT_NEAR(point.eastingM, c.easting * c.metresPerUnit, c.toleranceM) << c.where;
  }
  if (c.inverse) {
    LatLon position;
    ASSERT_EQ(
        (*made)->Inverse({c.northing * c.metresPerUnit, c.easting * c.metresPerUnit}, position),
        ProjectionResult::Done)
        << c.where;
    EXPECT_LT(Distance(c.latitudeDeg, c.longitudeDeg, position), 1.5 * c.toleranceM) << c.where;
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
