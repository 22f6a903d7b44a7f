// Where a position is against what is to be set out, by numbers worked out by hand.
#include "app/workflow/alignment_target.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include "core/text/number_text.h"

namespace tarvex {
namespace {

using testing::HasSubstr;

constexpr double kPi = std::numbers::pi;
constexpr double kTiny = 1e-9;

StakeDesign Place(const char* name, double northing, double easting,
                  std::optional<double> elevation = {}) {
  return {.name = name, .northing = northing, .easting = easting, .elevation = elevation};
}

AlignmentPlace Along(const PlainAlignment& line, std::optional<double> station, double offset) {
  return {.name = "L",
          .station = station,
          .offset = offset,
          .elevation = [&line](double at) { return line.ElevationAt(at); },
          .stationText = [](double at) { return FixedNumber(at, 3); },
          .outsideLimits = {},
          .slope = {}};
}

// Facing northeast, a point 3 north and 4 east is 7/sqrt(2) ahead and 1/sqrt(2) to the right.
TEST(StakeTarget, APointIsAheadAndBesideTheWayOneGoes) {
  PointTarget target(Place("12", 103.0, 204.0, 49.5));
  const auto relation =
      target.Relate({100.0, 200.0, 50.0}, {StakeReference::Travel, kPi / 4.0, false});
  ASSERT_TRUE(relation);
  EXPECT_NEAR(relation->deltas.forward, 7.0 / std::sqrt(2.0), kTiny);
  EXPECT_NEAR(relation->deltas.right, 1.0 / std::sqrt(2.0), kTiny);
  EXPECT_NEAR(relation->deltas.distance, 5.0, kTiny);
  EXPECT_NEAR(relation->deltas.azimuth, std::atan2(4.0, 3.0), kTiny);
  EXPECT_NEAR(relation->cut.value(), 0.5, kTiny);
  EXPECT_EQ(StakeDescription(*relation), "12 C 0.50");
  EXPECT_FALSE(target.Relate({100.0, 200.0, {}}, {})->cut);
  EXPECT_FALSE(PointTarget(Place("13", 1.0, 2.0)).Relate({1.0, 2.0, 3.0}, {})->cut);
}

TEST(StakeTarget, TheWayOneGoesIsThatOfTheLastMovement) {
  TravelDirection travel(0.5);
  travel.Take({0.0, 0.0, {}}, 1);
  travel.Take({0.3, 0.0, {}}, 1);
  EXPECT_FALSE(travel.azimuth());
  travel.Take({0.6, 0.0, {}}, 1);
  EXPECT_NEAR(travel.azimuth().value(), 0.0, kTiny);
  travel.Take({0.6, 5.0, {}}, 2);  // a jump to another kind of solution
  EXPECT_NEAR(travel.azimuth().value(), 0.0, kTiny);
  travel.Take({0.6, 5.6, {}}, 2);
  EXPECT_NEAR(travel.azimuth().value(), kPi / 2.0, kTiny);
  travel.Take({0.5, 5.6, {}}, 2);  // standing still turns nothing
  EXPECT_NEAR(travel.azimuth().value(), kPi / 2.0, kTiny);
}

// A line of length 50 to the northeast (3-4-5), rising from 10 to 15.
TEST(StakeTarget, ALineIsStakedByStationAndOffset) {
  std::string problem;
  const auto line = LineBetween(Place("A", 100.0, 200.0, 10.0), Place("B", 130.0, 240.0, 15.0),
                                CheckLimits{}, problem);
  ASSERT_TRUE(line) << problem;
  EXPECT_NEAR(line->length, 50.0, kTiny);

  // 20 along and 2 to the right of it: (112, 216) + 2 * (-0.8, 0.6).
  AlignmentTarget fixed(line->alignment, Along(*line, 20.0, 2.0));
  EXPECT_EQ(fixed.name(), "L 20.000 2.000 R");
  EXPECT_NEAR(fixed.place()->northing, 110.4, kTiny);
  EXPECT_NEAR(fixed.place()->easting, 217.2, kTiny);
  EXPECT_NEAR(fixed.place()->elevation.value(), 12.0, kTiny);
  auto relation = fixed.Relate({106.0, 208.0, 12.25}, {});  // on the line, 10 along
  EXPECT_NEAR(relation->deltas.forward, 10.0, kTiny);
  EXPECT_NEAR(relation->deltas.right, 2.0, kTiny);
  EXPECT_NEAR(relation->stationToGo, 10.0, kTiny);
  EXPECT_NEAR(relation->cut.value(), 0.25, kTiny);
  EXPECT_EQ(relation->currentText, "10.000 0.000");
  EXPECT_EQ(relation->reference, StakeReference::Alignment);
  // A person who wants to be told from north is.
  relation = fixed.Relate({106.0, 208.0, 12.25}, {StakeReference::North, 0.0, true});
  EXPECT_NEAR(relation->deltas.forward, 4.4, kTiny);
  EXPECT_NEAR(relation->deltas.right, 9.2, kTiny);

  // Wherever one is beside it: back onto the line, at the elevation there.
  AlignmentTarget beside(line->alignment, Along(*line, {}, 0.0));
  EXPECT_FALSE(beside.place());
  relation = beside.Relate({106.0 - 0.8, 208.0 + 0.6, 11.0}, {});
  EXPECT_NEAR(relation->deltas.forward, 0.0, kTiny);
  EXPECT_NEAR(relation->deltas.right, -1.0, kTiny);
  EXPECT_NEAR(relation->cut.value(), 0.0, kTiny);
  EXPECT_EQ(relation->design.name, "L 10.000 0.000");
  // Beyond its end one goes back to it.
  relation = beside.Relate({136.0, 248.0, 11.0}, {});
  EXPECT_NEAR(relation->current->station, 60.0, kTiny);
  EXPECT_NEAR(relation->deltas.forward, -10.0, kTiny);
  EXPECT_NEAR(relation->cut.value(), -4.0, kTiny);
  EXPECT_FALSE(line->ElevationAt(60.0));
  // Nothing is known of the elevation where one of the ends has none.
  const auto flat =
      LineBetween(Place("A", 0.0, 0.0), Place("B", 0.0, 9.0, 5.0), CheckLimits{}, problem);
  EXPECT_FALSE(flat->ElevationAt(4.0));
  EXPECT_FALSE(LineBetween(Place("A", 1.0, 1.0), Place("B", 1.0, 1.0), CheckLimits{}, problem));
  EXPECT_THAT(problem, HasSubstr("one place"));
}

// A quarter of a circle of radius 100 about the origin, from north to east: it curves right.
TEST(StakeTarget, AnArcIsStakedByStationAndOffset) {
  std::string problem;
  ArcPoints points{.start = Place("PC", 100.0, 0.0, 0.0),
                   .end = Place("PT", 0.0, 100.0, 10.0),
                   .center = {0.0, 0.0}};
  const auto arc = ArcBetween(points, CheckLimits{}, problem);
  ASSERT_TRUE(arc) << problem;
  EXPECT_NEAR(arc->length, 50.0 * kPi, kTiny);
  const double half = std::sqrt(0.5);
  AlignmentTarget middle(arc->alignment, Along(*arc, 25.0 * kPi, 5.0));  // 5 towards the centre
  EXPECT_NEAR(middle.place()->northing, 95.0 * half, kTiny);
  EXPECT_NEAR(middle.place()->easting, 95.0 * half, kTiny);
  EXPECT_NEAR(middle.place()->elevation.value(), 5.0, kTiny);

  // The same by its radius, on either side, and three quarters of the circle the other way.
  const auto right = CenterOfArc(points.start, points.end, 100.0, false);
  EXPECT_NEAR(right->northing, 0.0, kTiny);
  EXPECT_NEAR(right->easting, 0.0, kTiny);
  const auto left = CenterOfArc(points.start, points.end, -100.0, false);
  EXPECT_NEAR(left->northing, 100.0, kTiny);
  EXPECT_NEAR(left->easting, 100.0, kTiny);
  EXPECT_FALSE(CenterOfArc(points.start, points.end, 70.0, false));
  points.longWay = true;
  const auto around = ArcBetween(points, CheckLimits{}, problem);
  ASSERT_TRUE(around) << problem;
  EXPECT_NEAR(around->length, 150.0 * kPi, kTiny);
  EXPECT_NEAR(around->alignment.PointAt(75.0 * kPi)->at.northing, -100.0 * half, kTiny);

  points.longWay = false;
  points.center = {1.0, 0.0};
  EXPECT_FALSE(ArcBetween(points, CheckLimits{}, problem));
  EXPECT_THAT(problem, HasSubstr("the two radii differ by 1.005"));
}

// The centre of half a circle is on its chord and tells no side.
TEST(StakeTarget, HalfACircleWantsASide) {
  std::string problem;
  ArcPoints points{
      .start = Place("PC", 0.0, 0.0), .end = Place("PT", 0.0, 20.0), .center = {0.0, 10.0}};
  EXPECT_FALSE(ArcBetween(points, CheckLimits{}, problem));
  EXPECT_THAT(problem, HasSubstr("half a circle"));
  for (const double turn : {1.0, -1.0}) {
    points.turn = turn;
    const auto arc = ArcBetween(points, CheckLimits{}, problem);
    ASSERT_TRUE(arc) << problem;
    // Going east and curving right begins northward.
    EXPECT_NEAR(arc->alignment.PointAt(5.0 * kPi)->at.northing, turn * 10.0, kTiny);
  }
}

}  // namespace
}  // namespace tarvex
