#include "roads/section.h"
#include "roads/catch_point.h"
#include "roads/template_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/text/number_text.h"
#include "core/text/text.h"
#include "roads/stakeout.h"
#include "roads/template_file.h"
#include "tests/roads/road_data.h"

namespace tarvex {
namespace {

constexpr double kTolerance = 1e-6;

RoadTemplate Example() {
  return ReadTemplate(ReadRoadData("section_example.tpl"));
}

TEST(DesignSection, MeetsTheVectors) {
  std::map<std::string, std::vector<std::vector<std::string>>> cases;
  for (auto& row : TableRows("section_points.tsv")) cases[row[0]].push_back(row);
  ASSERT_EQ(cases.size(), 3U);
  for (const auto& [name, rows] : cases) {
    std::optional<Superelevation> super;
    if (name.find("left outward +6") != std::string::npos) super = Superelevation{6.0, -6.0};
    if (name.find("left outward -6") != std::string::npos) super = Superelevation{-6.0, 6.0};
    const DesignSection design = BuildSection(Example(), 100.0, super);
    ASSERT_EQ(design.points.size(), rows.size()) << name;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      EXPECT_NEAR(design.points[i].offset, LeadingDouble(rows[i][1]), kTolerance) << name << i;
      EXPECT_NEAR(design.points[i].elevation, LeadingDouble(rows[i][2]), kTolerance) << name << i;
      EXPECT_EQ(design.points[i].description, rows[i][3]) << name << i;
    }
  }
}

// "plane z=99.200-1/100*u" or "poly (0.00,99.00) (6.00,98.80)"
GroundLine ReadGround(std::string_view text) {
  if (text.starts_with("plane")) {
    text.remove_prefix(text.find('=') + 1);
    const std::size_t sign = text.find_first_of("+-");
    const double level = LeadingDouble(text);
    const double top = LeadingDouble(text.substr(sign));
    return GroundLine::Plane(level, top / LeadingDouble(text.substr(text.find('/') + 1)));
  }
  std::vector<GroundLine::Vertex> vertices;
  while (text.find('(') != std::string_view::npos) {
    text.remove_prefix(text.find('(') + 1);
    const double offset = LeadingDouble(text);
    vertices.push_back({offset, LeadingDouble(text.substr(text.find(',') + 1))});
  }
  return GroundLine::Polyline(vertices).value();
}

TEST(CatchPoint, MeetsTheVectors) {
  const RoadTemplate section = Example();
  const DesignSection design = BuildSection(section, 100.0);
  for (const auto& row : TableRows("catch.tsv")) {
    const Side side = row[1] == "L" ? Side::Left : Side::Right;
    const CatchPoint found = FindCatchPoint(section, design, side, ReadGround(row[2]));
    if (row[5] == "no catch") {
      EXPECT_EQ(found.result, CatchResult::NoCatch) << row[0];
      continue;
    }
    ASSERT_EQ(found.result, CatchResult::Caught) << row[0];
    EXPECT_EQ(found.kind, row[5] == "cut" ? EarthworkKind::Cut : EarthworkKind::Fill) << row[0];
    EXPECT_NEAR(found.hingeOffset, LeadingDouble(row[3]), kTolerance) << row[0];
    EXPECT_NEAR(found.hingeElevation, LeadingDouble(row[4]), kTolerance) << row[0];
    EXPECT_EQ(found.ratio, LeadingDouble(row[6])) << row[0];
    EXPECT_NEAR(found.offset, LeadingDouble(row[7]), kTolerance) << row[0];
    EXPECT_NEAR(found.elevation, LeadingDouble(row[8]), kTolerance) << row[0];
    EXPECT_NEAR(found.height, LeadingDouble(row[9]), kTolerance) << row[0];
    std::string ditch;
    for (const SectionPoint& point : found.between) {
      ditch += (ditch.empty() ? "(" : " (") + FixedNumber(point.offset, 4) + "," +
               FixedNumber(point.elevation, 4) + "," + point.description + ")";
    }
    EXPECT_EQ(ditch, row.size() > 10 ? row[10] : "") << row[0];
  }
}

TEST(CatchPoint, TellsWhyThereIsNone) {
  RoadTemplate section = Example();
  const DesignSection design = BuildSection(section, 100.0);
  const auto on = [&](const GroundLine& ground) {
    return FindCatchPoint(section, design, Side::Left, ground);
  };
  EXPECT_EQ(on(GroundLine::Plane(99.856, 0.0)).result, CatchResult::OnGrade);
  EXPECT_EQ(on(*GroundLine::Polyline({{0, 99}, {3, 99}})).result, CatchResult::NoGround);
  EXPECT_EQ(on(*GroundLine::Polyline({{0, 90}, {9, 90}})).result, CatchResult::GroundEnds);
  EXPECT_FALSE(GroundLine::Polyline({{5, 99}, {3, 99}}));
  // As steep as the last slope, but for the digits that were typed.
  EXPECT_EQ(on(GroundLine::Plane(90.0, -0.499999999)).result, CatchResult::NoCatch);
  section.rightOfWay.left = 9.0;
  EXPECT_TRUE(on(GroundLine::Plane(99.2, -0.01)).beyondRightOfWay);
  // The ground falls away under the ditch: no cut after all.
  const auto daylight = on(*GroundLine::Polyline({{0, 99.9}, {5.4, 99.9}, {6, 97}, {60, 97}}));
  EXPECT_TRUE(daylight.ditchDaylights);
  EXPECT_EQ(daylight.kind, EarthworkKind::Fill);
  section.fill[0].slopes.clear();
  EXPECT_EQ(on(GroundLine::Plane(90.0, 0.0)).result, CatchResult::NoSlopes);
}

// The slope begins at its hinge: where the ground crosses its line behind that, it does not catch.
TEST(GroundLine, IsMetOnlyFromTheStartOfALine) {
  const GroundLine ground = *GroundLine::Polyline({{0, 10}, {20, 30}, {40, 20}});
  EXPECT_FALSE(ground.FirstMeeting(5.0, 8.0, -1.0, 40.0)) << "they cross at 1.5";
  const auto met = ground.FirstMeeting(5.0, 25.0, 0.0, 40.0);
  ASSERT_TRUE(met);
  EXPECT_NEAR(met->offset, 15.0, 1e-12);
}

TEST(CatchPoint, SteppedSlopesRunThroughTheirBands) {
  RoadTemplate section = Example();
  section.fillSettings.series = 1;
  const DesignSection design = BuildSection(section, 100.0);
  // 1.5 high at 6:1, to 3 high at 4:1, the rest at 2:1, down to level ground 5 below the edge.
  const auto found = FindCatchPoint(section, design, Side::Left, GroundLine::Plane(94.856, 0.0));
  ASSERT_EQ(found.result, CatchResult::Caught);
  EXPECT_NEAR(found.offset, 5.4 + 1.5 * 6 + 1.5 * 4 + 2.0 * 2, kTolerance);
  EXPECT_EQ(found.row, 3);
  EXPECT_EQ(found.breaks.size(), 2U);
}

// Rows without a ratio are passed over; the others keep their numbers in the table, on the spot and
// while staking alike.
TEST(CatchPoint, NamesTheRowOfTheTable) {
  RoadTemplate section = Example();
  section.fill[0].slopes = {{1.0, 0.0}, {1.5, 6.0}, {99.0, 2.0}};
  const DesignSection design = BuildSection(section, 100.0);
  const CatchPoint found =
      FindCatchPoint(section, design, Side::Left, GroundLine::Plane(94.856, 0.0));
  EXPECT_EQ(found.row, 3);
  EXPECT_EQ(NextSlopeStep(section, design, Side::Left, {15.4, 94.856}, {})->row, found.row);
}

TEST(SlopeStaking, FollowsASteppedSlopeThroughItsBands) {
  RoadTemplate section = Example();
  section.fillSettings.series = 1;
  const DesignSection design = BuildSection(section, 100.0);
  const auto at = [&](double offset) {
    return NextSlopeStep(section, design, Side::Left, {offset, 94.856}, {}).value();
  };
  EXPECT_EQ(at(8.0).row, 1);
  EXPECT_NEAR(at(5.4 + 1.5 * 6 + 1.0).design, 99.856 - 1.5 - 1.0 / 4, kTolerance);
  EXPECT_EQ(at(30.0).row, 3);
  EXPECT_TRUE(at(5.4 + 1.5 * 6 + 1.5 * 4 + 2.0 * 2).caught);
}

TEST(SlopeStaking, ComesToTheCatchPoint) {
  const RoadTemplate section = Example();
  const DesignSection design = BuildSection(section, 100.0);
  for (const auto& row : TableRows("catch.tsv")) {
    if (row[5] == "no catch") continue;
    const Side side = row[1] == "L" ? Side::Left : Side::Right;
    const GroundLine ground = ReadGround(row[2]);
    SlopeShot shot{8.0, ground.At(8.0).value()};
    std::optional<SlopeShot> before;
    std::optional<SlopeStep> step;
    int steps = 0;
    for (; steps < 12; ++steps) {
      step = NextSlopeStep(section, design, side, shot, before, 0.001);
      ASSERT_TRUE(step) << row[0];
      if (step->caught) break;
      before = shot;
      shot.offset += step->goOut;
      const auto level = ground.At(shot.offset);
      if (!level) shot.offset = 19.0;  // the rover stays on the ground that is known
      shot.ground = ground.At(shot.offset).value();
    }
    EXPECT_LT(steps, 12) << row[0];
    EXPECT_NEAR(shot.offset, LeadingDouble(row[7]), 0.02) << row[0];
  }
}

}  // namespace
}  // namespace tarvex
