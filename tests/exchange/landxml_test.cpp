#include "exchange/landxml.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "core/text/number_text.h"
#include "core/text/text.h"
#include "platform/file.h"

namespace tarvex {
namespace {

using testing::HasSubstr;

std::string ReadData(const std::string& name) {
  std::string text;
  EXPECT_TRUE(ReadWholeFile(SystemFiles(), std::string(TARVEX_TEST_DATA) + "/landxml/" + name,
                            1 << 20, text)
                  .ok());
  return text;
}

LandXmlAlignment Import(const std::string& text) {
  LandXmlDocument document = ReadLandXml(text).value();
  EXPECT_EQ(document.alignments.size(), 1U);
  return std::move(document.alignments.at(0));
}

RoadGeometry Geometry(const LandXmlAlignment& alignment) {
  return MakeRoadGeometry(alignment.centerline, alignment.equations).value();
}

// Columns: element station [display] offset northing easting azimuth curvature [elevation grade].
void ExpectStations(const std::string& xml, const std::string& table, bool displayColumn) {
  const LandXmlAlignment alignment = Import(ReadData(xml));
  const RoadGeometry road = Geometry(alignment);
  for (const AlignmentElement& element : road.alignment.elements()) EXPECT_TRUE(element.sound);
  const std::string text = ReadData(table);
  std::string_view rest = text;
  int rows = 0;
  while (const auto line = TakeLine(rest)) {
    if (line->starts_with('#') || line->starts_with("element")) continue;
    std::vector<std::string> fields(1);
    for (const char c : *line) c == '\t' ? fields.emplace_back() : fields.back().append(1, c);
    const double station = LeadingDouble(fields[1]);
    if (displayColumn) {
      // At the equation itself the table gives the back name, the road the ahead one.
      const double shown = road.equations.Displayed(station).station;
      EXPECT_NEAR(shown, station == 1400.0 ? 2000.0 : LeadingDouble(fields[2]), 1e-6);
      fields.erase(fields.begin() + 2);
    }
    const auto point = road.alignment.PointAt(station, LeadingDouble(fields[2]));
    ASSERT_TRUE(point);
    EXPECT_NEAR(point->at.northing, LeadingDouble(fields[3]), 6e-5) << *line;
    EXPECT_NEAR(point->at.easting, LeadingDouble(fields[4]), 6e-5) << *line;
    const double azimuth = point->azimuth * 180 / std::numbers::pi - LeadingDouble(fields[5]);
    EXPECT_NEAR(std::remainder(azimuth, 360.0), 0.0, 2e-6) << *line;
    if (fields.size() > 8 && !fields[7].empty()) {
      const auto at = alignment.profile->At(station);
      ASSERT_TRUE(at) << *line;
      EXPECT_NEAR(at->elevation, LeadingDouble(fields[7]), 6e-5) << *line;
      EXPECT_NEAR(at->grade, LeadingDouble(fields[8]), 1e-5) << *line;
    }
    ++rows;
  }
  EXPECT_GT(rows, 50);
}

TEST(LandXmlReader, MeetsIndependentPointsOfRealFiles) {
  ExpectStations("indot_ftus_arc_paracurves.xml", "indot_stations.tsv", false);
  ExpectStations("toivola_arcs_circcurves.xml", "toivola_stations.tsv", false);
  ExpectStations("scs_station_equation.xml", "scs_station_equation_stations.tsv", true);
}

TEST(LandXmlReader, EndsWhereTheFilesEnd) {
  struct Case {
    const char* file;
    DistanceUnit unit;
    PlanPoint end;
    double station;
  };
  const Case cases[] = {
      {"indot_ftus_arc_paracurves.xml",
       DistanceUnit::UsSurveyFeet,
       {630447.49265700008, 1321688.7797160002},
       2103.7205600000002 + 2796.6790253265699},
      {"toivola_arcs_circcurves.xml", DistanceUnit::Metres, {6876723.854, 24525794.78}, 616.442493},
      {"scs_station_equation.xml",
       DistanceUnit::UsSurveyFeet,
       {675353.553391, 905853.553391},
       1984.820206}};
  for (const Case& c : cases) {
    EXPECT_EQ(ReadLandXml(ReadData(c.file))->unit, c.unit) << c.file;
    const RoadGeometry road = Geometry(Import(ReadData(c.file)));
    EXPECT_NEAR(road.alignment.endStation(), c.station, 2e-6) << c.file;
    const auto end = road.alignment.PointAt(road.alignment.endStation());
    EXPECT_NEAR(end->at.northing, c.end.northing, 1e-9) << c.file;
    EXPECT_NEAR(end->at.easting, c.end.easting, 1e-9) << c.file;
  }
  EXPECT_TRUE(Import(ReadData("toivola_y3.xml")).profile);
}

TEST(LandXmlWriter, RoundTripsToTheSameRoad) {
  for (const char* file : {"indot_ftus_arc_paracurves.xml", "toivola_arcs_circcurves.xml",
                           "toivola_y3.xml", "scs_station_equation.xml"}) {
    const LandXmlAlignment first = Import(ReadData(file));
    const RoadGeometry road = Geometry(first);
    const auto text = WriteLandXml({.name = "A & B",
                                    .unit = DistanceUnit::UsSurveyFeet,
                                    .road = &road,
                                    .profile = first.profile ? &*first.profile : nullptr,
                                    .program = "Tarvex",
                                    .written = {2026, 1, 31, 9, 5, 7}});
    ASSERT_TRUE(text) << file;
    const auto again = ReadLandXml(*text);
    ASSERT_TRUE(again) << again.failure().text << *text;
    EXPECT_TRUE(again->warnings.empty()) << again->warnings.front();
    EXPECT_EQ(again->unit, DistanceUnit::UsSurveyFeet);
    const LandXmlAlignment& second = again->alignments.at(0);
    EXPECT_EQ(second.name, "A & B");
    ASSERT_EQ(first.centerline.elements.size(), second.centerline.elements.size()) << file;
    for (std::size_t i = 0; i < first.centerline.elements.size(); ++i) {
      const CenterlineElement& a = first.centerline.elements[i];
      const CenterlineElement& b = second.centerline.elements[i];
      EXPECT_EQ(a.record, b.record) << file << i;
      EXPECT_NEAR(a.northing, b.northing, 1e-8) << file << i;
      EXPECT_NEAR(a.easting, b.easting, 1e-8) << file << i;
      EXPECT_NEAR(a.station, b.station, 2e-3) << file << i;  // the files' own lengths are rounded
      EXPECT_NEAR(a.radius, b.radius, 2e-3) << file << i;
    }
    ASSERT_EQ(first.equations.size(), second.equations.size());
    for (std::size_t i = 0; i < first.equations.size(); ++i) {
      EXPECT_NEAR(first.equations[i].back, second.equations[i].back, 1e-8);
      EXPECT_NEAR(first.equations[i].ahead, second.equations[i].ahead, 1e-8);
    }
    ASSERT_EQ(first.profile.has_value(), second.profile.has_value());
    if (!first.profile) continue;
    for (double s = first.profile->startStation(); s < first.profile->endStation(); s += 7.3) {
      EXPECT_NEAR(first.profile->At(s)->elevation, second.profile->At(s)->elevation, 1e-7);
    }
  }
}

TEST(LandXmlWriter, RefusesSpiralsThatTurnToBothSides) {
  // Radius 100 right, relaxing with A 50 over 40 units to radius 166.7 left.
  Centerline centerline;
  const LocalFrame end = SpiralEnd(0.01, -0.006, 40.0);
  centerline.elements.resize(2);
  centerline.elements[0].record = KeyPointKind::Spiral;
  centerline.elements[0].radius = 100.0;
  centerline.elements[0].spiralParameter = 50.0;
  centerline.elements[0].angle = 2.0;
  centerline.elements[1].northing = end.x;
  centerline.elements[1].easting = end.y;
  centerline.elements[1].station = 40.0;
  const RoadGeometry road = MakeRoadGeometry(centerline, {}).value();
  ASSERT_TRUE(road.alignment.elements()[0].sound);
  const auto text = WriteLandXml({.name = "both",
                                  .unit = DistanceUnit::Metres,
                                  .road = &road,
                                  .profile = nullptr,
                                  .program = "",
                                  .written = {}});
  ASSERT_FALSE(text);
  EXPECT_EQ(text.failure().code, LandXmlRefusal::TurnsToBothSides);
  EXPECT_EQ(text.failure().place, 0U);
}

std::string Changed(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

TEST(LandXmlReader, RefusesByNameAndLine) {
  const std::string scs = ReadData("scs_station_equation.xml");
  struct Case {
    const char* from;
    const char* to;
    LandXmlFault fault;
    const char* words;
  };
  const Case cases[] = {
      {"spiType=\"clothoid\"", "spiType=\"bloss\"", LandXmlFault::CannotHold,
       "Line 9: a centerline holds no transition curve of the type \"bloss\""},
      {"<Line length", "<IrregularLine length", LandXmlFault::NotXml, "Line 8"},
      {"USSurveyFoot", "mile", LandXmlFault::CannotHold, "the unit \"mile\""},
      {"staAhead=\"2000", "staIncrement=\"decreasing\" staAhead=\"2000", LandXmlFault::CannotHold,
       "Line 14: a centerline cannot hold stations that decrease"},
      {"<End>675000.000000 905299.600378</End>", "<End>675000.0 905299.7</End>",
       LandXmlFault::CannotHold, "Line 9: the element starts 0.100 away"},
      {"<Center>675303.118034 905374.444399", "<Center>x", LandXmlFault::BadNumber,
       "Line 10: Curve has no usable Center point"},
      {"rot=\"ccw\" crvType", "crvType", LandXmlFault::BadNumber, "Curve lacks rot"},
      {"length=\"150.000000\"", "length=\"long\"", LandXmlFault::BadNumber,
       "Spiral has no usable \"length\""},
      {"<LandXML", "<KML", LandXmlFault::NotXml, ""},
  };
  for (const Case& c : cases) {
    const auto refused = ReadLandXml(Changed(scs, c.from, c.to));
    ASSERT_FALSE(refused) << c.to;
    EXPECT_EQ(refused.failure().code, c.fault) << c.to << ": " << refused.failure().text;
    EXPECT_THAT(refused.failure().text, HasSubstr(c.words));
  }
  EXPECT_EQ(ReadLandXml("<a/>").failure().code, LandXmlFault::NotLandXml);
  EXPECT_EQ(ReadLandXml("").failure().code, LandXmlFault::NotXml);
  const auto none = ReadLandXml(scs, "Other");
  EXPECT_EQ(none.failure().code, LandXmlFault::NoAlignment);
  EXPECT_THAT(none.failure().text,
              HasSubstr("no alignment is called \"Other\"; there is \"SCS-EQ\""));
  EXPECT_TRUE(ReadLandXml(scs, "SCS-EQ"));
}

TEST(LandXmlReader, TakesPointsByReferenceAndArcsCalledSpirals) {
  const auto document = ReadLandXml(
      "<x:LandXML xmlns:x='http://www.landxml.org/schema/LandXML-1.2'>"
      "<x:Units><x:Metric linearUnit='meter'/></x:Units>"
      "<x:CgPoints><x:CgPoint name='P1'>100 200 5</x:CgPoint></x:CgPoints><x:Alignments>"
      "<x:Alignment name='a' staStart='50'><x:CoordGeom>"
      "<x:Line><x:Start pntRef='P1'/><x:End>200 200</x:End></x:Line>"
      "<x:Spiral length='157.0796326795' radiusStart='100' radiusEnd='100' rot='cw' "
      "spiType='clothoid' constant='0'><x:Start>200 200</x:Start><x:PI>300 200</x:PI>"
      "<x:End>300 300</x:End></x:Spiral></x:CoordGeom></x:Alignment></x:Alignments></x:LandXML>");
  ASSERT_TRUE(document) << document.failure().text;
  const RoadGeometry road = Geometry(document->alignments[0]);
  ASSERT_EQ(road.alignment.elements().size(), 2U);
  EXPECT_EQ(road.alignment.elements()[1].shape, ElementShape::Arc);
  EXPECT_NEAR(road.alignment.elements()[1].length, 50 * std::numbers::pi, 1e-9);
  EXPECT_TRUE(road.alignment.elements()[1].sound);
}

// Two roads in one document: a ramp of three points and a main road with a transition curve that no
// centerline holds.
constexpr std::string_view kTwoRoads =
    "<LandXML><Units><Metric linearUnit='meter'/></Units><Alignments>"
    "<Alignment name='Ramp' length='100' staStart='0'><CoordGeom>"
    "<Line><Start>0 0</Start><End>100 0</End></Line></CoordGeom>"
    "<Profile><ProfAlign name='R'><PVI>0 10</PVI><PVI>100 "
    "20</PVI></ProfAlign></Profile></Alignment>"
    "<Alignment name='Main' length='100' staStart='0'><CoordGeom>"
    "<Spiral length='100' radiusStart='INF' radiusEnd='500' rot='cw' spiType='bloss'>"
    "<Start>0 0</Start><PI>50 0</PI><End>99 3</End></Spiral></CoordGeom>"
    "<Profile><ProfAlign name='M'><PVI>0 500</PVI><PVI>100 500</PVI></ProfAlign>"
    "<ProfAlign name='Ditch'><PVI>0 1</PVI><PVI>100 1</PVI></ProfAlign></Profile></Alignment>"
    "</Alignments></LandXML>";

TEST(LandXmlReader, NeverTakesTheProfileOfAnotherAlignment) {
  const auto unnamed = ReadLandXmlProfile(kTwoRoads);
  ASSERT_FALSE(unnamed);
  EXPECT_EQ(unnamed.failure().code, LandXmlFault::SeveralAlignments);
  EXPECT_THAT(unnamed.failure().text, HasSubstr("\"Ramp\", \"Main\""));
  const auto main = ReadLandXmlProfile(kTwoRoads, "Main");
  ASSERT_TRUE(main) << main.failure().text;
  EXPECT_EQ(main->profile.At(50.0)->elevation, 500.0);
  EXPECT_EQ(main->name, "M");
  EXPECT_THAT(main->warnings, testing::ElementsAre(HasSubstr("\"Ditch\"")));
  EXPECT_EQ(ReadLandXmlProfile(kTwoRoads, "Ramp")->profile.At(50.0)->elevation, 15.0);
  EXPECT_EQ(ReadLandXmlProfile(kTwoRoads, "Side").failure().code, LandXmlFault::NoAlignment);
  EXPECT_EQ(ReadLandXmlProfile(ReadData("scs_station_equation.xml")).failure().code,
            LandXmlFault::NoProfile);
  EXPECT_TRUE(ReadLandXmlProfile(ReadData("toivola_y3.xml")));
}

TEST(LandXmlReader, TellsAStartStationThatIsNoNumber) {
  const std::string text = Changed(ReadData("scs_station_equation.xml"), "staStart=\"1000.000000\"",
                                   "staStart=\"1+000.00\"");
  EXPECT_THAT(ReadLandXml(text)->warnings,
              testing::Contains(HasSubstr("is no number (\"1+000.00\"); it starts at 0")));
}

TEST(LandXmlReader, StandsFilesCutAnywhere) {
  for (const char* file : {"scs_station_equation.xml", "toivola_y3.xml"}) {
    const std::string text = ReadData(file);
    for (std::size_t length = 0; length < text.size(); ++length) {
      const auto document = ReadLandXml(std::string_view(text).substr(0, length));
      EXPECT_TRUE(document || !document.failure().text.empty()) << length;
    }
  }
}

}  // namespace
}  // namespace tarvex
