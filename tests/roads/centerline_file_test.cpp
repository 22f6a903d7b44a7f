#include "roads/centerline_file.h"
#include "roads/template_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <numbers>

#include "roads/centerline_reader.h"
#include "roads/centerline_writer.h"
#include "roads/road_texts.h"
#include "roads/template_file.h"
#include "tests/roads/road_data.h"
#include "tests/support/random_numbers.h"
#include "tests/support/scratch_folder.h"

namespace tarvex {
namespace {

constexpr double kPi = std::numbers::pi;

std::vector<CenterlineElement> Chain(std::string_view text, bool keepTangentPoints = false) {
  return ReadChain(text, keepTangentPoints).value().elements;
}

// "kind station" of each node, to read a chain at a glance.
std::string Outline(const std::vector<CenterlineElement>& chain) {
  std::string text;
  for (const CenterlineElement& element : chain) {
    text += std::to_string(static_cast<int>(element.kind)) + " " +
            std::to_string(std::lround(element.station)) + "; ";
  }
  return text;
}

TEST(CenterlineReader, BuildsCurvesAndSpiralGroups) {
  const auto chain = Chain(ReadRoadData("cl/scs_right.cl"));
  EXPECT_EQ(Outline(chain), "0 2000; 1 2150; 1 2230; 0 2390; 0 2470; 0 2590; ");
  EXPECT_NEAR(chain[1].angle, (36.0 + 39.0 / 60 + 55.26200093 / 3600) * kPi / 180, 1e-12);
  EXPECT_NEAR(chain[1].radius, 254.2268, 1e-4);  // to the centre, not the curve's radius
  EXPECT_NEAR(chain[2].radius, 250.0, 1e-9);
  EXPECT_DOUBLE_EQ(chain[4].angle, (127.0 + 15.0 / 60 + 30.0 / 3600) * kPi / 180);

  const auto spiral = Chain(ReadRoadData("cl/egg_sp.cl"));
  EXPECT_EQ(Outline(spiral), "0 0; 0 50; 3 155; 0 215; 0 298; 0 348; ");
  EXPECT_EQ(spiral[2].radius, 300.0);
  EXPECT_EQ(spiral[2].spiralParameter, 109.544511501);
  EXPECT_EQ(spiral[2].angle, 1.0);
}

TEST(CenterlineReader, DropsTheLastRecordWhateverItIs) {
  EXPECT_EQ(Outline(Chain("0,10,L,1,1\n0,20,L,2,2\n")), "0 10; ");
  EXPECT_EQ(Outline(Chain("0,10,L,1,1\n")), "0 10; ");  // a single element stays
  EXPECT_EQ(Outline(Chain(ReadRoadData("bad/no_terminator.cl"))), "0 1000; 0 1200; 0 1514; ");
  const auto unclosed = ReadChain(ReadRoadData("bad/no_terminator.cl"), false);
  EXPECT_THAT(unclosed->notes, testing::ElementsAre(LineNote{5, kTextTerminatorMissing, ""}));
  EXPECT_TRUE(ReadChain(ReadRoadData("cl/egg_sp.cl"), false)->notes.empty());
  for (const char* empty : {"", "7,5,STARTPT,1,2\n0,0,L,0,0\n"}) {
    const auto nothing = ReadChain(empty, false);
    ASSERT_FALSE(nothing) << empty;
    EXPECT_EQ(nothing.failure().code, ChainFault::Nothing);
  }
}

TEST(CenterlineReader, StopsAtTheStartPoint) {
  const auto reading = ReadChain(
      "0,10,L,1,1\n0,20,L,2,2\n0,0,L,0,0\n7,5.5,STARTPT,100.5,200.25\n0,30,L,3,3\n", false);
  EXPECT_EQ(Outline(reading->elements), "0 10; 0 20; ");
  ASSERT_TRUE(reading->startPoint);
  EXPECT_EQ(reading->startPoint->id.view(), "7");
  EXPECT_EQ(reading->startPoint->station, 5.5);
  EXPECT_EQ(reading->startPoint->easting, 100.5);
  EXPECT_EQ(reading->startPoint->northing, 200.25);
}

TEST(CenterlineReader, SkipsWhatIsNoRecordAndSaysWhere) {
  const auto reading = ReadChain(
      "# a\n"                    // 1: fields missing
      "0,10, L \r\n"             // 2: no easting
      "-3,15,L,5,5\n"            // 3: negative id
      "EQ,12,13\n"               // 4: not an element
      "\n"                       // 5
      "0,20,L,1\n"               // 6: no northing, reads 0
      "0,abc,l,50,60,x,y,z,w\n"  // 7: kind by letter case
      "0,40,ABCDEFGHIJKL,90,90\n"
      "0,0,L,0,0\n",
      false);
  EXPECT_EQ(Outline(reading->elements), "0 20; 0 0; 0 40; ");
  EXPECT_EQ(reading->elements[0].northing, 0.0);
  std::vector<int> lines;
  for (const LineNote& note : reading->notes) lines.push_back(note.line);
  EXPECT_THAT(lines, testing::ElementsAre(1, 2, 3, 7, 8));
  EXPECT_EQ(reading->notes[4].argument, "ABCDEFGHI");
}

TEST(CenterlineReader, CutsLinesAt254Bytes) {
  const std::string id(241, '7');
  const auto chain = Chain("0,5,L,1,1\n" + id + ",1,L,8,1234567\n0,0,L,0,0\n");
  ASSERT_EQ(chain.size(), 2U);
  EXPECT_EQ(chain[1].id.view(), "7777777777");
  EXPECT_EQ(chain[1].northing, 123456.0);
}

TEST(CenterlineReader, RadiusLinesRememberTheirCentre) {
  const auto chain = Chain(
      "0,0,L,0,0\n0,10,PC,0,10\nC1,90.0000,R,100,10\n0,20,PC,5,20\n0,-10.3000,R\n"
      "0,30,PC,9,40\n\n0,40,PT,50,50\n0,0,L,0,0\n");
  ASSERT_EQ(chain.size(), 5U);
  EXPECT_EQ(chain[1].centerId.view(), "C1");
  EXPECT_DOUBLE_EQ(chain[1].angle, kPi / 2);
  EXPECT_DOUBLE_EQ(chain[2].angle, -10.5 * kPi / 180);
  EXPECT_EQ(chain[2].centerEasting, 100.0);
  EXPECT_DOUBLE_EQ(chain[2].radius, std::hypot(95.0, 10.0));
  EXPECT_DOUBLE_EQ(chain[3].angle, chain[2].angle);
  EXPECT_DOUBLE_EQ(chain[3].radius, std::hypot(91.0, 30.0));
  // The file ends in place of the radius line: that element is last and goes.
  EXPECT_EQ(Outline(Chain("0,0,L,0,0\n0,10,PC,0,10\n")), "0 0; ");
}

TEST(CenterlineReader, CurveStartsInheritTheIdBeforeThem) {
  const auto chain =
      Chain("1,0,L,0,0\n12,10,L,0,10\n0,10,PC,0,10\nC,45.0,R,100,10\n0,20,PT,5,20\n0,0,L,0,0\n");
  EXPECT_EQ(Outline(chain), "0 0; 0 10; 0 20; ");  // the vertex under the curve start goes
  EXPECT_EQ(chain[1].id.view(), "12");
  EXPECT_EQ(chain[1].record, KeyPointKind::CurveStart);
}

TEST(CenterlineReader, CollapsesDuplicateVertices) {
  const auto ends = [](const char* easting) {
    return Outline(Chain("0,0,L,0,0\n0,10,L,10,0\n0,11,L," + std::string(easting) +
                         ",0\n0,20,L,20,0\n0,0,L,0,0\n"));
  };
  EXPECT_EQ(ends("10.0004"), "0 0; 0 11; 0 20; ");
  EXPECT_EQ(ends("10.0006"), "0 0; 0 10; 0 11; 0 20; ");
  // A curve end doubled within 0.002 keeps the angle and the later place.
  const auto chain = Chain(
      "0,0,L,0,0\n0,5,ST,10,0,30.0\n0,6,PT,10.0019,0\n0,7,L,10.0019,0.0018\n0,9,L,20,0\n0,0,L,0,"
      "0\n");
  EXPECT_EQ(Outline(chain), "0 0; 0 7; 0 9; ");
  EXPECT_DOUBLE_EQ(chain[1].angle, kPi / 6);
  // After the curve end it is the second of two that goes: here "ST" on "ST".
  EXPECT_EQ(
      Outline(Chain("0,0,L,0,0\n0,5,ST,10,0,30.0\n0,6,ST,10.0001,0\n0,9,L,20,0\n0,0,L,0,0\n")),
      "0 0; 0 5; 0 9; ");
}

TEST(CenterlineReader, TangentSpiralsReplaceTheVertexUnderThem) {
  const std::string text =
      "0,0,L,0,0\n5,10,L,0,10\n0,10,TS,0,10.0015\n0,5.0,R,50,10\n0,20,SC,1,20\n0,5.0,R,50,10\n"
      "0,30,CS,2,30\n0,40,ST,3,40\n0,50,L,4,50\n0,0,L,0,0\n";
  EXPECT_EQ(Outline(Chain(text)), "0 0; 1 10; 1 20; 0 30; 0 40; 0 50; ");
  EXPECT_EQ(Outline(Chain(text, true)), "0 0; 0 10; 1 10; 1 20; 0 30; 0 40; 0 50; ");
}

TEST(CenterlineReader, LeadInVerticesCarryAnAzimuthOfTheirOwn) {
  const auto with = [](const std::string& azimuth) {
    return Chain("0,0,L,0,0\n0,10,TS,0,10," + azimuth +
                 "\n0,5.0,R,50,10\n0,20,SC,1,20\n0,5.0,R,50,10\n0,30,CS,2,30\n0,40,ST,3,40\n"
                 "0,0,L,0,0\n");
  };
  EXPECT_EQ(with("0.00009").size(), 5U);
  EXPECT_EQ(with("6.28315").size(), 5U);  // the same azimuth on the other side of north
  EXPECT_EQ(with("765432.1").size(), 5U);
  const auto chain = with("-6.1831853");
  ASSERT_EQ(chain.size(), 6U);
  EXPECT_EQ(chain[1].kind, ElementKind::Vertex);
  EXPECT_EQ(chain[1].station, 10.0 - 0.000001);
  EXPECT_EQ(chain[1].northing, 10.0 - std::cos(*chain[2].tangentAzimuth) * 0.000001);
  EXPECT_EQ(chain[1].easting, 0.0 - std::sin(*chain[2].tangentAzimuth) * 0.000001);
  EXPECT_NEAR(*chain[2].tangentAzimuth, 0.1, 1e-7);
  // As the first record it becomes the head.
  const auto first =
      Chain("0,10,TS,0,10,1.5\n0,5.0,R,50,10\n0,20,SC,1,20\n0,5.0,R,50,10\n0,0,L,0,0\n");
  EXPECT_EQ(Outline(first), "0 10; 1 10; 1 20; ");
}

TEST(CenterlineReader, RefusesMoreElementsThanARoadHas) {
  std::string text;
  for (std::size_t i = 0; i <= kMostCenterlineElements; ++i) text += "0,1,L,1,1\n";
  const auto refused = ReadChain(text, false);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.failure().code, ChainFault::TooLong);
  EXPECT_EQ(refused.failure().place, kMostCenterlineElements + 1);
}

TEST(StationLimits, ReadTheirTwoKeys) {
  EXPECT_EQ(ReadStationLimits("START_STA=12.5\r\nEND_STA=99\n"), (StationLimits{12.5, 99.0}));
  EXPECT_EQ(ReadStationLimits("x\nEND_STA=\nSTART_STA\nstart_sta=5\n"), StationLimits{});
  EXPECT_EQ(ReadStationLimits("START_STA=765432.1\nEND_STA=-1"), (StationLimits{{}, -1.0}));
  EXPECT_EQ(StationLimitsPath("/a.b/road"), "/a.b/road.cle");
  EXPECT_EQ(StationLimitsPath("/a.b/road.x.cl"), "/a.b/road.x.cle");
}

TEST(StationRange, IsOnlyEverNarrowed) {
  Road road;
  EXPECT_FALSE(StationRange(road));
  EXPECT_EQ(StartStation(road, 5.0), 0.0);
  road.centerline.emplace();
  road.centerline->elements.resize(2);
  road.centerline->elements[0].station = 100.0;
  road.centerline->elements[1].station = 200.0;
  road.centerline->startStation = StartStation(road);
  road.centerline->limits = {150.0, 180.0};
  EXPECT_EQ(*StationRange(road, 5.0), (StationSpan{100.0, 195.0, false, false}));
  road.useStationLimits = true;
  EXPECT_EQ(*StationRange(road), (StationSpan{150.0, 180.0, true, true}));
  road.centerline->limits = {100.0000005, 250.0};
  EXPECT_EQ(*StationRange(road), (StationSpan{100.0, 200.0, false, false}));
  road.centerline->elements[0].station = 0.00004;
  EXPECT_EQ(StartStation(road), 0.0);
  EXPECT_EQ(StartStation(road, 1.0), 1.00004);
}

TEST(LoadCenterline, TellsWhatItCouldNotDo) {
  Road road = LoadRoad("cl/simple_right.cl");
  std::string shown;
  const ShowMessage show = [&](std::string_view text) { shown = text; };
  const auto faultOf = [&](const std::string& path, LoadCenterlineOptions options) {
    const auto loaded = LoadCenterline(SystemFiles(), road, path, options, show);
    EXPECT_FALSE(loaded);
    return loaded ? std::nullopt : std::optional(loaded.failure().code);
  };
  EXPECT_EQ(faultOf("", {.reportErrors = true}), CenterlineFault::Nothing);
  EXPECT_EQ(shown, "");
  EXPECT_EQ(faultOf(RoadData("none.cl"), {}), CenterlineFault::NotOpened);
  EXPECT_EQ(shown, "");
  EXPECT_EQ(faultOf(RoadData("none.cl"), {.reportErrors = true}), CenterlineFault::NotOpened);
  EXPECT_THAT(shown, testing::HasSubstr("none.cl"));
  EXPECT_EQ(road.centerline->elements.size(), 4U);  // the road that was open stays
  EXPECT_EQ(road.centerline->startStation, 1000.0);
}

TEST(LoadCenterline, ReadsTheLimitsBesideTheFile) {
  const ScratchFolder folder;
  const std::string path = folder.Path("limits.road.cl");
  ASSERT_TRUE(ReplaceWholeFile(SystemFiles(), path, ReadRoadData("cl/simple_right.cl")).ok());
  ASSERT_TRUE(
      ReplaceWholeFile(SystemFiles(), StationLimitsPath(path), "START_STA=1100\nEND_STA=9e9\n")
          .ok());
  Road road;
  road.useStationLimits = true;
  ASSERT_TRUE(LoadCenterline(SystemFiles(), road, path));
  EXPECT_EQ(*StationRange(road), (StationSpan{1100.0, 1664.15926536, true, false}));
}

// What editors put before a text is no part of an id, a key or a section.
TEST(LoadCenterline, PassesOverAByteOrderMark) {
  const auto chain = Chain(
      "\xEF\xBB\xBF"
      "0,10,L,1,1\n0,20,L,2,2\n0,0,L,0,0\n");
  ASSERT_EQ(chain.size(), 2U);
  EXPECT_EQ(chain[0].id.view(), "0");
  EXPECT_EQ(ReadStationEquations("\xEF\xBB\xBF"
                                 "EQ,1,2\n")
                .size(),
            1U);
  EXPECT_EQ(ReadStationLimits("\xEF\xBB\xBF"
                              "START_STA=5\n")
                .start,
            5.0);
  EXPECT_EQ(ReadTemplate("\xEF\xBB\xBF*DITCH\nMOVESL,1,1,D\n").ditch.size(), 1U);
}

TEST(CenterlineWriter, WritesEveryRecordForm) {
  CenterlineElement e;
  e.id.Assign("12");
  e.station = 1234.5678951;
  e.easting = 10.25;
  e.northing = 20.123456789;
  e.centerId.Assign("C7");
  e.centerEasting = 1.0;
  e.centerNorthing = 2.0;
  const auto text = [&](KeyPointKind kind, double angle, const CenterlineFormat& format) {
    e.record = kind;
    e.angle = angle;
    return CenterlineRecords({&e, 1}, format);
  };
  EXPECT_EQ(text(KeyPointKind::Line, 0.0, kPlainCenterline),
            "0,1234.56790,L,10.250000,20.123457\n");
  EXPECT_EQ(text(KeyPointKind::Line, 0.0, kCenterlineWithIds),
            "12,1234.56790,L,10.25000,20.12346\n");
  EXPECT_EQ(text(KeyPointKind::CurveEnd, 0.0, kCenterlineWithIds),
            "12,1234.56790,PT,10.25000,20.12346\n");
  EXPECT_EQ(text(KeyPointKind::CurveStart, kPi / 4, kCenterlineWithIds),
            "12,1234.56790,PC,10.25000000,20.12345679\nC7,45.000000000000,R,1.000000,2.000000\n");
  EXPECT_EQ(text(KeyPointKind::CurveSpiral, 0.0, kExactCenterline),
            "12,1234.567895,CS,10.250000000000,20.123456789000\n");
  EXPECT_EQ(text(KeyPointKind::CurveStart, -kPi / 4, kPlainCenterline),
            "0,1234.56790,PC,10.250000,20.123457\n0,-45.000000000000,R,1.000000,2.000000\n");
  EXPECT_EQ(text(KeyPointKind::CurveSpiral, 0.0, kPlainCenterline),
            "0,1234.56790,CS,10.250000,20.123457\n");
  EXPECT_EQ(text(KeyPointKind::SpiralTangent, 0.0, kPlainCenterline),
            "0,1234.56790,ST,10.250000,20.123457\n");
  EXPECT_EQ(text(KeyPointKind::SpiralTangent, 127.5 * kPi / 180, kPlainCenterline),
            "0,1234.56790,ST,10.250000,20.123457,127.300000000000\n");
  EXPECT_EQ(text(KeyPointKind::SpiralCurve, kPi / 2, kPlainCenterline),
            "0,1234.56790,SC,10.250000,20.123457\n0,90.000000000000,R,1.000000,2.000000\n");
  e.tangentAzimuth = 1.26114583;
  EXPECT_EQ(text(KeyPointKind::TangentSpiral, kPi / 2, kPlainCenterline),
            "0,1234.56790,TS,10.250000,20.123457,1.26114583\n"
            "0,90.000000000000,R,1.000000,2.000000\n");
  e.radius = 300.0;
  e.spiralParameter = 109.544511501;
  EXPECT_EQ(text(KeyPointKind::Spiral, 1.0, kPlainCenterline),
            "0,1234.56790,SP,10.250000,20.123457,300.000000,109.544511501,1.0\n");
}

TEST(CenterlineWriter, ClosesTheChainBeforeAStartPoint) {
  Centerline centerline;
  centerline.elements = Chain("0,10,L,1,1\n0,20,L,2,2\n0,0,L,0,0\n");
  centerline.startPoint = CenterlineStartPoint{CenterlineId("7"), 5.5, 200.25, 100.5};
  const std::string text =
      CenterlineText(centerline, std::vector<StationEquation>{{1200, 1300}}, kCenterlineWithIds);
  EXPECT_EQ(text,
            "0,10.00000,L,1.00000,1.00000\n0,20.00000,L,2.00000,2.00000\n0,0,L,0,0\n"
            "7,5.50000,STARTPT,100.50000000,200.25000000\n0,0,L,0,0\nEQ,1200.00000,1300.00000\n");
  // The plain form leaves the ids of key points out, not that of the start point.
  EXPECT_THAT(CenterlineText(centerline, {}, kPlainCenterline),
              testing::HasSubstr("\n7,5.50000,STARTPT,100.50000000,200.25000000\n"));
  const auto again = ReadChain(text, false);
  EXPECT_EQ(Outline(again->elements), "0 10; 0 20; ");
  EXPECT_EQ(again->startPoint, centerline.startPoint);
  EXPECT_EQ(ReadStationEquations(text), (std::vector<StationEquation>{{1200, 1300}}));
}

// The reader hands ids on: a key point without one may get that of the key point before.
bool SameOrHandedOn(const std::vector<CenterlineElement>& a,
                    const std::vector<CenterlineElement>& b, std::size_t i) {
  return a[i].id == b[i].id || (i > 0 && !HasId(a[i].id) && b[i].id == b[i - 1].id);
}

void ExpectSameChain(const std::vector<CenterlineElement>& a,
                     const std::vector<CenterlineElement>& b, const std::string& text) {
  ASSERT_EQ(a.size(), b.size()) << text;
  for (std::size_t i = 0; i < a.size(); ++i) {
    EXPECT_EQ(a[i].kind, b[i].kind) << i << "\n" << text;
    EXPECT_TRUE(SameOrHandedOn(a, b, i)) << i << "\n" << text;
    EXPECT_NEAR(a[i].station, b[i].station, 1e-6) << i << "\n" << text;
    EXPECT_NEAR(a[i].northing, b[i].northing, 1e-9) << i << "\n" << text;
    EXPECT_NEAR(a[i].easting, b[i].easting, 1e-9) << i << "\n" << text;
    EXPECT_NEAR(a[i].angle, b[i].angle, 1e-10) << i << "\n" << text;
    EXPECT_NEAR(a[i].radius, b[i].radius, 1e-6) << i << "\n" << text;
  }
}

TEST(CenterlineWriter, KeepsKeyPointsOnTheSamePlaceApart) {
  const std::pair<const char*, const char*> cases[] = {
      // A curve that ends where a spiral begins, its end kept by a vertex between them.
      {"0,100,PC,0,0\n0,20.3,R,55,66\n0,150,PT,40,40\n0,160,L,40,40\n0,170,TS,40,40,0.9\n"
       "0,20.3,R,80,0\n0,200,SC,60,70\n0,20.3,R,80,0\n0,0,L,0,0\n",
       "0 100; 0 150; 0 170; 1 170; 1 200; "},
      // A curve that begins where a spiral ends.
      {"0,100,L,0,0\n0,150,ST,40,40,45.3\n0,150,ST,40,40\n0,150,PC,40,40\n0,20.3,R,55,66\n"
       "0,200,PT,60,90\n0,0,L,0,0\n",
       "0 100; 0 150; 0 150; 0 200; "},
      // The vertex behind a spiral that ends there.
      {"0,100,L,0,0\n0,150,SP,40,40,300,120.5,-1\n0,150,ST,40,40\n0,150,L,40,40\n"
       "0,200,L,60,90\n0,0,L,0,0\n",
       "0 100; 3 150; 0 150; 0 200; "}};
  for (const auto& [text, outline] : cases) {
    Centerline centerline;
    centerline.elements = Chain(text);
    EXPECT_EQ(Outline(centerline.elements), outline);
    EXPECT_EQ(Outline(Chain(CenterlineText(centerline, {}))), outline);
  }
  // A curve's start without an id does not take that of a vertex somewhere before it.
  Centerline curve;
  curve.elements = Chain(
      "7,100,L,0,0\n0,150,PT,40,40\n0,150,PC,40,40\n0,20.3,R,55,66\n0,200,PT,60,90\n0,0,L,0,0\n");
  ASSERT_FALSE(HasId(curve.elements[1].id));
  const auto again = Chain(CenterlineText(curve, {}));
  ASSERT_EQ(again.size(), 3U);
  EXPECT_FALSE(HasId(again[1].id));
}

// A lead-in whose "TS" was merged away: the one thing that no record can say again.
bool HasOrphanLeadIn(const std::vector<CenterlineElement>& chain) {
  for (std::size_t i = 0; i < chain.size(); ++i) {
    const bool beforeSpiral =
        i + 1 < chain.size() && chain[i + 1].record == KeyPointKind::TangentSpiral;
    if (chain[i].record == KeyPointKind::LeadIn && !beforeSpiral) return true;
  }
  return false;
}

TEST(CenterlineWriter, WhatIsWrittenLoadsToTheSameChain) {
  for (const char* name :
       {"cl/angle_points.cl", "cl/compound_right.cl", "cl/egg_sp.cl", "cl/scs_right.cl",
        "cl/simple_left.cl", "bad/ts_azimuth_plus_0.001.cl"}) {
    const Road road = LoadRoad(name);
    const std::string text = CenterlineText(*road.centerline, {});
    ExpectSameChain(road.centerline->elements, Chain(text), text);
  }
  // Random records on a coarse lattice, so that coincident points and odd orders are common.
  RandomNumbers random(20260101);
  const char* kinds[] = {"L", "PC", "PT", "TS", "SC", "CS", "ST", "SP"};
  for (int round = 0; round < 300; ++round) {
    std::string text;
    const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    for (int i = pick(12) + 2; i > 0; --i) {
      const std::string kind = kinds[pick(8)];
      text += std::to_string(pick(3)) + "," + std::to_string(1000 - i * 10) + "," + kind + "," +
              std::to_string(pick(3) * 100 + 10) + "," + std::to_string(pick(3) * 100 + 10);
      if (kind == "SP") text += ",300,120.5,-1";
      if (kind == "ST" && pick(2) == 1) text += ",45.3";
      if (kind == "TS" && pick(2) == 1) text += ",0." + std::to_string(pick(9) + 1);
      text += "\n";
      if (kind == "PC" || kind == "TS" || kind == "SC") text += "0,-20.3,R,55,66\n";
    }
    auto chain = Chain(text + "0,0,L,0,0\n");
    if (HasOrphanLeadIn(chain)) continue;
    Centerline centerline;
    centerline.elements = chain;
    const std::string written = CenterlineText(centerline, {});
    ExpectSameChain(chain, Chain(written), text + "---\n" + written);
    if (HasFailure()) break;
  }
}

TEST(CenterlineWriter, ReplacesStationsAndNothingElse) {
  EXPECT_EQ(
      WithStations("a,1,L,2,3\r\n# note\nb,2,L,4,5", std::vector<LineStation>{{1, 7.5}, {3, 9}}, 3),
      "a,7.500,L,2,3\r\n# note\nb,9.000,L,4,5");
}

}  // namespace
}  // namespace tarvex
