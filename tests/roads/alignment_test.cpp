#include "roads/alignment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numbers>
#include <random>

#include "core/text/number_text.h"
#include "roads/centerline_reader.h"
#include "tests/roads/road_data.h"
#include "tests/support/random_numbers.h"

namespace tarvex {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kTolerance = 2e-8;

Alignment MakeAlignment(const std::string& file) {
  const Road road = LoadRoad(file);
  auto made = Alignment::FromChain(road.centerline->elements);
  EXPECT_TRUE(made) << file;
  return *std::move(made);
}

const Alignment& Example(const std::string& name) {
  static std::map<std::string, Alignment> made;
  const auto found = made.find(name);
  if (found != made.end()) return found->second;
  return made.emplace(name, MakeAlignment("cl/" + name + ".cl")).first->second;
}

Alignment FromText(const std::string& text) {
  return Alignment::FromChain(ReadChain(text, false)->elements).value();
}

TEST(Alignment, MeetsThePointsOfTheVectors) {
  for (const auto& row : TableRows("points.tsv")) {
    const auto point = Example(row[0]).PointAt(LeadingDouble(row[1]), LeadingDouble(row[2]));
    ASSERT_TRUE(point);
    EXPECT_NEAR(point->at.northing, LeadingDouble(row[3]), kTolerance) << row[0] << " " << row[1];
    EXPECT_NEAR(point->at.easting, LeadingDouble(row[4]), kTolerance) << row[0] << " " << row[1];
    const double azimuth = point->azimuth * 180 / kPi - LeadingDouble(row[5]);
    EXPECT_NEAR(std::remainder(azimuth, 360.0), 0.0, 1e-8) << row[0] << " " << row[1];
    // At a key point the table gives the curvature behind, the alignment the one ahead.
    const double ahead = std::fabs(point->curvature - LeadingDouble(row[6]));
    const auto behind = Example(row[0]).PointAt(LeadingDouble(row[1]) - 1e-6);
    EXPECT_LT(std::min(ahead, std::fabs(behind->curvature - LeadingDouble(row[6]))), 1e-9)
        << row[0] << " " << row[1];
  }
}

TEST(Alignment, MeetsTheStationsOfTheVectors) {
  for (const auto& row : TableRows("station_offset.tsv")) {
    const PlanPoint point{LeadingDouble(row[1]), LeadingDouble(row[2])};
    const auto found = Example(row[0]).Closest(point);
    ASSERT_TRUE(found);
    const std::string at = row[0] + " " + row[3] + " " + row[4];
    EXPECT_NEAR(found->station, LeadingDouble(row[3]), kTolerance) << at;
    EXPECT_NEAR(found->offset, LeadingDouble(row[4]), kTolerance) << at;
    const std::string place = found->place == Place::BeforeStart ? "before"
                              : found->place == Place::AfterEnd  ? "after"
                                                                 : "on";
    EXPECT_EQ(place, row[5]) << at;
    const auto candidates = Example(row[0]).Candidates(point);
    ASSERT_FALSE(candidates.empty());
    EXPECT_NEAR(candidates.front().station, found->station, 1e-7) << at;
  }
}

std::string CandidateText(const StationOffset& found) {
  const char* kinds[] = {"foot", "vertex", "before", "after"};
  return "(" + FixedNumber(found.station, 6) + "," + FixedNumber(found.offset, 6) + "," +
         kinds[static_cast<int>(found.place)] + ")";
}

TEST(Alignment, ListsEveryCandidate) {
  for (const auto& row : TableRows("station_offset_candidates.tsv")) {
    const PlanPoint point{LeadingDouble(row[1]), LeadingDouble(row[2])};
    const auto found = Example(row[0]).Candidates(point);
    std::string text;
    for (const StationOffset& candidate : found) {
      text += (text.empty() ? "" : " ") + CandidateText(candidate);
    }
    // Near the centre of a curve the sixth decimal of a station is soft.
    std::string_view expected = row[3];
    for (const StationOffset& candidate : found) {
      ASSERT_TRUE(expected.starts_with("(")) << text;
      EXPECT_NEAR(candidate.station, LeadingDouble(expected.substr(1)), 2e-5) << row[3] << text;
      expected.remove_prefix(expected.find(',') + 1);
      EXPECT_NEAR(candidate.offset, LeadingDouble(expected), 2e-6) << row[3] << text;
      expected.remove_prefix(std::min(expected.find(')') + 2, expected.size()));
    }
    EXPECT_EQ(expected, "") << text;
    const auto closest = Example(row[0]).Closest(point);
    EXPECT_EQ(CandidateText(*closest), CandidateText(found.front()));
  }
}

TEST(Alignment, HoldsAtCoordinatesOfTenMillion) {
  // Every road moved to 1e7 and turned: station and offset come back to 1e-8.
  RandomNumbers random(1);
  std::uniform_real_distribution<double> part(0.0, 1.0);
  for (const char* name :
       {"simple_right", "simple_left", "compound_right", "egg_sp", "scs_right"}) {
    const Road road = LoadRoad(std::string("cl/") + name + ".cl");
    auto chain = road.centerline->elements;
    const double shiftN = 1e7 - chain[0].northing;
    const double shiftE = 1e7 - chain[0].easting;
    for (auto& e : chain) {
      e.northing += shiftN;
      e.easting += shiftE;
      e.centerNorthing += shiftN;
      e.centerEasting += shiftE;
    }
    const Alignment moved = Alignment::FromChain(chain).value();
    for (int i = 0; i < 500; ++i) {
      const double station =
          moved.startStation() + part(random) * (moved.endStation() - moved.startStation());
      const double offset = 40.0 * (part(random) - 0.5);
      const auto found = moved.Closest(moved.PointAt(station, offset)->at);
      EXPECT_NEAR(found->station, station, kTolerance) << name;
      EXPECT_NEAR(found->offset, offset, kTolerance) << name;
    }
  }
}

TEST(Alignment, KeepsKeyPointsWhereTheFileHasThem) {
  for (const char* name : {"cl/scs_right.cl", "bad/sc_station_plus_0.05.cl",
                           "bad/angle_sign_flipped.cl", "bad/ts_azimuth_plus_0.001.cl"}) {
    const Road road = LoadRoad(name);
    const Alignment alignment = MakeAlignment(name);
    for (const CenterlineElement& node : road.centerline->elements) {
      const auto point = alignment.PointAt(node.station);
      EXPECT_NEAR(point->at.northing, node.northing, 1e-5) << name << node.station;
      EXPECT_NEAR(point->at.easting, node.easting, 1e-5) << name << node.station;
    }
  }
}

TEST(Alignment, FindsTheFaultsOfTheVectors) {
  const auto residuals = [](const char* name, std::size_t element) {
    return MakeAlignment(std::string("bad/") + name).elements()[element].residuals;
  };
  for (const auto& row : TableRows("bad_residuals.tsv")) {
    const bool group = row[0] != "angle_sign_flipped.cl";
    // A lead-in vertex is no element, so the spiral is always the second one.
    const ElementResiduals arc = residuals(row[0].c_str(), group ? 2 : 1);
    const ElementResiduals entry = residuals(row[0].c_str(), 1);
    double found = 0.0;
    if (row[2].starts_with("entry spiral")) found = *entry.chord;
    if (row[2].starts_with("arc: end")) found = *arc.endRadius;
    if (row[2].starts_with("arc: sweep*R")) found = *arc.length;
    if (row[2].starts_with("arc: sweep -")) found = *arc.angle;
    if (row[2].starts_with("arc: turn")) found = arc.turnAgainstSign ? -1.0 : 1.0;
    if (row[2].starts_with("TS azimuth")) found = *entry.azimuthField;
    if (row[2].starts_with("azimuth of the tangent")) found = -*entry.join;
    const double expected = LeadingDouble(row[3]);
    EXPECT_NEAR(found, expected, std::max(0.01 * std::fabs(expected), 1e-8)) << row[0] << row[2];
  }
  EXPECT_FALSE(MakeAlignment("bad/sc_station_plus_0.05.cl").elements()[1].sound);
  EXPECT_TRUE(MakeAlignment("bad/ts_azimuth_plus_0.001.cl").elements()[1].sound);
}

TEST(Alignment, RebuildsStationsFromCoordinates) {
  const Road road = LoadRoad("bad/all_stations_zero.cl");
  const Alignment alignment = MakeAlignment("bad/all_stations_zero.cl");
  const auto stations = alignment.GeometricStations(road.centerline->elements);
  const auto rows = TableRows("restation.tsv");
  ASSERT_EQ(stations.size(), rows.size());
  for (const auto& row : rows) {
    EXPECT_NEAR(stations[static_cast<std::size_t>(LeadingInteger(row[0]))], LeadingDouble(row[2]),
                2e-9);
  }
}

TEST(Alignment, TakesTheTurnFromTheCentre) {
  // Half circles, where only the sign of the angle tells; and the long way round.
  const auto half = [](const char* angle) {
    return FromText(std::string("0,0,L,0,-50\n0,50,PC,0,0\n0,") + angle +
                    ",R,100,0\n0,364.159265,PT,200,0\n0,400,L,200,-35.84\n0,0,L,0,0\n");
  };
  EXPECT_NEAR(half("180.0").PointAt(50 + 50 * kPi)->at.northing, 100.0, 1e-5);
  EXPECT_NEAR(half("-180.0").PointAt(50 + 50 * kPi)->at.northing, -100.0, 1e-5);
  const Alignment loop = FromText(
      "0,0,L,-100,0\n0,100,PC,0,0\n0,270.0,R,0,-100\n0,571.238898,PT,-100,-100\n"
      "0,600,L,-100,-71.238898\n0,0,L,0,0\n");
  EXPECT_NEAR(loop.elements()[1].length, 150 * kPi, 1e-6);
  EXPECT_NEAR(loop.PointAt(100 + 100 * kPi)->at.northing, -200.0, 1e-5);
  const auto inside = loop.Closest({-200.0, -10.0});
  EXPECT_NEAR(inside->station, 100 + 100 * (kPi + std::atan(0.1)), 1e-5);
}

TEST(Clothoid, MeetsThePublishedEndPoints) {
  for (const auto& row : TableRows("spiral_local.tsv")) {
    const double radius = LeadingDouble(row[0]);
    const double length = LeadingDouble(row[1]);
    const LocalFrame in = SpiralEnd(0.0, 1.0 / radius, length);
    EXPECT_NEAR(in.x, LeadingDouble(row[4]), 1e-9) << row[0];
    EXPECT_NEAR(in.y, LeadingDouble(row[5]), 1e-9) << row[0];
    // Out of the curve, to the left: the same chord, run from its other end.
    const LocalFrame out = SpiralEnd(-1.0 / radius, 0.0, length);
    EXPECT_NEAR(std::hypot(out.x, out.y), LeadingDouble(row[6]), 1e-9) << row[0];
    EXPECT_LT(out.y, 0.0);
  }
}

// Fresnel's integrals in extended precision, by Gauss' rule of three points on short steps.
TEST(Clothoid, MeetsItsIntegralEverywhere) {
  using Extended = long double;
  constexpr int kSteps = 2000;
  for (const double sweep : {0.05, 0.49, 0.51, 0.98}) {
    constexpr double kLength = 200.0;
    std::vector<SpiralPanel> panels;
    const CurvePiece piece =
        MakeSpiralPiece({0.0, 0.0}, 0.0, 0.0, 2.0 * sweep / kLength, kLength, panels);
    const auto turned = [&](Extended s) {
      return Extended{sweep} * (s / Extended{kLength}) * (s / Extended{kLength});
    };
    const Extended step = Extended{kLength} / kSteps;
    const Extended aside = 0.5L * step * std::sqrt(0.6L);
    Extended x = 0.0L;
    Extended y = 0.0L;
    for (int i = 0; i < kSteps; ++i) {
      const LocalFrame at = piece.At(static_cast<double>(step * i), panels);
      ASSERT_NEAR(at.x, static_cast<double>(x), 2e-12) << sweep << " " << i;
      ASSERT_NEAR(at.y, static_cast<double>(y), 2e-12) << sweep << " " << i;
      const Extended middle = (i + 0.5L) * step;
      for (const auto& [place, weight] :
           {std::pair{middle - aside, 5}, {middle, 8}, {middle + aside, 5}}) {
        x += step / 18 * weight * std::cos(turned(place));
        y += step / 18 * weight * std::sin(turned(place));
      }
    }
  }
}

// A group that turns by `turn` with spirals of two lengths, appended from a place and azimuth on;
// the end becomes the new place.
struct Walker {
  PlanPoint at{7e5, 2.5e6};
  double azimuth = 0.0;
  double station = 100.0;
  std::string text;

  void Key(const std::string& kind, const std::string& more = "") {
    text += "0," + FixedNumber(station, 9) + "," + kind + "," + FixedNumber(at.easting, 10) + "," +
            FixedNumber(at.northing, 10) + more + "\n";
  }
  void Go(double k0, double k1, double length) {
    std::vector<SpiralPanel> panels;
    const CurvePiece piece = MakeSpiralPiece(at, azimuth, k0, k1, length, panels);
    at = piece.ToGrid(piece.end.x, piece.end.y);
    azimuth += 0.5 * (k0 + k1) * length;
    station += length;
  }
  void Group(double turn, double radius, double in, double arc, double out) {
    const double k = turn / radius;
    Walker toCurve = *this;
    toCurve.Go(0.0, k, in);
    const double across = toCurve.azimuth + turn * kPi / 2;
    const std::string center =
        "0," + std::string(turn < 0 ? "-" : "") + "10.0,R," +
        FixedNumber(toCurve.at.easting + radius * std::sin(across), 10) + "," +
        FixedNumber(toCurve.at.northing + radius * std::cos(across), 10) + "\n";
    Key("TS");
    text += center;
    Go(0.0, k, in);
    Key("SC");
    text += center;
    Go(k, k, arc);
    Key("CS");
    Go(k, 0.0, out);
    Key("ST");
  }
};

TEST(Alignment, TakesSpiralsOfTwoLengthsAndReversingCurves) {
  Walker walker;
  walker.Key("L");
  walker.Go(0.0, 0.0, 50.0);
  walker.Group(-1.0, 180.0, 60.0, 40.0, 100.0);
  walker.Group(1.0, 120.0, 50.0, 70.0, 50.0);  // its "TS" lies on the "ST" before and replaces it
  walker.Group(1.0, 200.0, 80.0, 1e-7, 40.0);  // spiral to spiral: the "CS" replaces the "SC"
  walker.Go(0.0, 0.0, 30.0);
  walker.Key("L");
  const Alignment road = FromText(walker.text + "0,0,L,0,0\n");
  ASSERT_EQ(road.elements().size(), 1U + 3 + 3 + 2 + 1);
  for (const AlignmentElement& element : road.elements()) {
    EXPECT_TRUE(element.sound);
    EXPECT_NEAR(element.residuals.chord.value_or(0.0), 0.0, 1e-6);
    EXPECT_NEAR(element.residuals.join.value_or(0.0), 0.0, 1e-7);
  }
  EXPECT_NEAR(road.elements()[1].length, 60.0, 1e-8);
  EXPECT_NEAR(road.elements()[3].length, 100.0, 1e-8);
  EXPECT_NEAR(road.endStation(), walker.station, 1e-8);
  const auto end = road.Closest(walker.at);
  EXPECT_NEAR(end->station, walker.station, kTolerance);
}

TEST(Alignment, TakesSpiralRecordsThatRelax) {
  // A relaxing SP from R 120 back to R 300 is the tightening one walked backward.
  const Road road = LoadRoad("cl/egg_sp.cl");
  const auto& chain = road.centerline->elements;
  const Alignment forward = Example("egg_sp");
  std::vector<CenterlineElement> back{chain[3], chain[2]};
  back[0].record = KeyPointKind::Spiral;
  back[0].kind = ElementKind::Spiral;
  back[0].station = 0.0;
  back[1].station = 60.0;
  back[0].radius = 120.0;
  back[0].spiralParameter = 109.544511501;
  back[0].angle = -2.0;
  back[1].record = KeyPointKind::Line;
  const Alignment reversed = Alignment::FromChain(back).value();
  ASSERT_TRUE(reversed.elements()[0].sound);
  for (const double s : {10.0, 30.0, 59.0}) {
    const auto there = forward.PointAt(chain[2].station + 60.0 - s);
    const auto here = reversed.PointAt(s);
    EXPECT_NEAR(here->at.northing, there->at.northing, 1e-7);
    EXPECT_NEAR(here->at.easting, there->at.easting, 1e-7);
  }
  // A step ahead of the start the foot and the start itself are equally near.
  for (double s = 0.0; s < 2e-6; s += 1e-8) {
    for (const double offset : {-33.3, -5.0, 7.3, 40.0}) {
      const auto closest = reversed.Closest(reversed.PointAt(s, offset)->at);
      ASSERT_NEAR(closest->station, s, 5e-6) << offset;
      ASSERT_NEAR(closest->offset, offset, 1e-8) << s;
    }
  }
  back[0].angle = 2.0;
  back[0].spiralParameter = 50.0;
  const Alignment refused = Alignment::FromChain(back).value();
  EXPECT_EQ(refused.elements()[0].fault, ElementFault::SpiralUnknown);
  EXPECT_FALSE(refused.PointAt(30.0)->sound);
}

TEST(Alignment, StaysCalmOnAnyChain) {
  EXPECT_EQ(Alignment::FromChain({}).failure().code, AlignmentFault::Nothing);
  const auto infinite = Alignment::FromChain(
      ReadChain("0,0,L,0,0\n0,1,L,1e999,0\n0,2,L,5,5\n0,0,L,0,0\n", false)->elements);
  EXPECT_EQ(infinite.failure().code, AlignmentFault::OutOfRange);
  EXPECT_EQ(infinite.failure().place, 2U);
  RandomNumbers random(7);
  const char* kinds[] = {"L", "PC", "PT", "TS", "SC", "CS", "ST", "SP"};
  const char* numbers[] = {"0", "1e-9", "100", "-250.5", "1e7", "99.9999", "765432.1", "3"};
  for (int round = 0; round < 4000; ++round) {
    const bool onGround = round < 2000;
    if (!onGround) numbers[4] = "1e11";
    std::string text;
    const auto pick = [&](const auto& list) { return std::string(list[random() % 8]); };
    for (int i = 0; i < 8; ++i) {
      text += "0," + pick(numbers) + "," + pick(kinds);
      for (int field = 0; field < 5; ++field) text += "," + pick(numbers);
      text += "\n";
    }
    const auto made = Alignment::FromChain(ReadChain(text, false)->elements);
    if (!made) continue;
    for (const double station : {-1.0, 0.0, 50.0, 100.0, 1e6}) {
      const auto point = made->PointAt(station, 5.0);
      ASSERT_TRUE(std::isfinite(point->at.northing) && std::isfinite(point->at.easting)) << text;
      const auto closest = made->Closest(point->at);
      ASSERT_TRUE(std::isfinite(closest->station) && std::isfinite(closest->offset)) << text;
      const auto all = made->Candidates(point->at);
      ASSERT_FALSE(all.empty()) << text;
      if (!onGround) continue;
      EXPECT_NEAR(all.front().distance, closest->distance, 0.001) << text;
    }
  }
}

TEST(Alignment, FollowsTheRoverThroughInsideCorners) {
  const Alignment& corner = Example("angle_points");
  const auto before = corner.Follow({81.0, 20.0}, 75.0);
  const auto after = corner.Follow({81.0, 20.0}, 125.0);
  EXPECT_LT(before->station, 100.0);
  EXPECT_GT(after->station, 100.0);
  EXPECT_EQ(Alignment::WorthOffering(corner.Candidates({-5.0, 3.0})).size(), 1U);
}

}  // namespace
}  // namespace tarvex
