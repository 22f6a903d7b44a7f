#include "roads/profile.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/text/number_text.h"
#include "tests/roads/road_data.h"

namespace tarvex {
namespace {

VerticalPoint Parabola(double station, double elevation, double in, double out) {
  return {station, elevation, VerticalCurveKind::Parabola, in, out, 0.0};
}

TEST(Profile, MeetsTheVectors) {
  const auto rows = TableRows("profile_points.tsv");
  std::vector<VerticalPoint> points;
  points.push_back({LeadingDouble(rows.front()[0]), LeadingDouble(rows.front()[1])});
  for (const auto& row : TableRows("profile_curves.tsv")) {
    points.push_back(Parabola(LeadingDouble(row[0]), LeadingDouble(row[1]), LeadingDouble(row[2]),
                              LeadingDouble(row[3])));
  }
  points.push_back({LeadingDouble(rows.back()[0]), LeadingDouble(rows.back()[1])});
  const auto made = Profile::Make(points);
  ASSERT_TRUE(made);
  for (const auto& row : rows) {
    const auto at = made->At(LeadingDouble(row[0]));
    ASSERT_TRUE(at) << row[0];
    EXPECT_NEAR(at->elevation, LeadingDouble(row[1]), 1e-8) << row[0];
    EXPECT_NEAR(at->grade * 100, LeadingDouble(row[2]), 1e-8) << row[0];
  }
  EXPECT_FALSE(made->At(points.front().station - 0.001));
  EXPECT_FALSE(made->At(points.back().station + 0.001));
}

TEST(Profile, RunsCirclesThroughTheVectors) {
  const auto rows = TableRows("profile_circular.tsv");
  const double s0 = LeadingDouble(rows.front()[0]);
  const double s1 = LeadingDouble(rows.back()[0]);
  const double z0 = LeadingDouble(rows.front()[1]);
  const double z1 = LeadingDouble(rows.back()[1]);
  // Centre of a crest of radius 1300 through both ends.
  const double chord = std::hypot(s1 - s0, z1 - z0);
  const double height = std::sqrt(1300.0 * 1300.0 - chord * chord / 4);
  const double sc = (s0 + s1) / 2 + height * (z1 - z0) / chord;
  const double zc = (z0 + z1) / 2 - height * (s1 - s0) / chord;
  const double g1 = -(s0 - sc) / (z0 - zc);
  const double g2 = -(s1 - sc) / (z1 - zc);
  const double s = (z1 - z0 + g1 * s0 - g2 * s1) / (g1 - g2);
  const double z = z0 + g1 * (s - s0);
  const auto made = Profile::Make({{s0 - 50, z0 - 50 * g1},
                                   {s, z, VerticalCurveKind::Circle, 0, 0, 1300.0},
                                   {s1 + 50, z1 + 50 * g2}});
  ASSERT_TRUE(made);
  EXPECT_NEAR(made->SpanOf(1).from, s0, 1e-6);
  EXPECT_NEAR(made->SpanOf(1).to, s1, 1e-6);
  for (const auto& row : rows) {
    // The table's stations have 6 decimals: on a grade of 3 % that is 2e-8 of elevation.
    EXPECT_NEAR(made->At(LeadingDouble(row[0]))->elevation, LeadingDouble(row[1]), 3e-8);
  }
}

TEST(Profile, RefusesWhatIsNoProfile) {
  EXPECT_EQ(Profile::Make({{0, 0}}).failure().code, ProfileFault::TooFew);
  const auto falls = Profile::Make({{0, 0}, {10, 0}, {10, 1}});
  EXPECT_EQ(falls.failure().code, ProfileFault::StationsFall);
  EXPECT_EQ(falls.failure().place, 2U);
  const auto overlap =
      Profile::Make({{0, 0}, Parabola(50, 1, 30, 30), Parabola(100, 0, 30, 30), {200, 0}});
  EXPECT_EQ(overlap.failure().code, ProfileFault::CurvesOverlap);
  EXPECT_EQ(overlap.failure().place, 2U);
  EXPECT_EQ(Profile::Make({Parabola(0, 0, 5, 5), {10, 0}}).failure().code, ProfileFault::BadCurve);
}

}  // namespace
}  // namespace tarvex
