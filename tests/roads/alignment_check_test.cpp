#include "roads/alignment_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "roads/centerline_reader.h"
#include "tests/roads/road_data.h"

namespace tarvex {
namespace {

RoadGeometry Geometry(const std::string& text) {
  Centerline centerline;
  centerline.elements = ReadChain(text, false)->elements;
  auto made = MakeRoadGeometry(centerline, ReadStationEquations(text));
  EXPECT_TRUE(made);
  return *std::move(made);
}

std::vector<std::string> Findings(const std::string& text) {
  std::vector<std::string> lines;
  for (const CheckFinding& finding : CheckAlignment(Geometry(text), {}, {})) {
    lines.push_back((finding.kind == FindingKind::Refused ? "REFUSED " : "") +
                    std::to_string(finding.line) + ": " + finding.text);
  }
  return lines;
}

// `text` with one piece of it replaced.
std::string Changed(std::string text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

TEST(AlignmentCheck, HasNothingToSayAboutSoundRoads) {
  for (const char* name : {"simple_right", "simple_left", "compound_right", "egg_sp", "scs_right",
                           "angle_points", "simple_right_eq"}) {
    EXPECT_THAT(Findings(ReadRoadData(std::string("cl/") + name + ".cl")), testing::IsEmpty())
        << name;
  }
}

TEST(AlignmentCheck, NamesTheNumberThatIsWrong) {
  using testing::ElementsAre;
  using testing::HasSubstr;
  EXPECT_THAT(Findings(ReadRoadData("bad/sc_station_plus_0.05.cl")),
              ElementsAre("REFUSED 4: The station of SC 22+30.05 is suspect: it looks 0.0500 too "
                          "large, both neighbours miss it alike."));
  EXPECT_THAT(Findings(ReadRoadData("bad/angle_sign_flipped.cl")),
              ElementsAre("2: At PC 12+00.00 the centre lies to the right, the sign of the angle "
                          "says the other side."));
  EXPECT_THAT(
      Findings(ReadRoadData("bad/ts_azimuth_plus_0.001.cl")),
      ElementsAre(HasSubstr("2: The azimuth field of TS 21+50.00 is suspect: it is 206.3")));
  EXPECT_THAT(Findings(ReadRoadData("bad/all_stations_zero.cl")),
              ElementsAre(HasSubstr("REFUSED 0: All key points carry the same station")));
  const std::string road = ReadRoadData("cl/scs_right.cl");
  EXPECT_THAT(Findings(Changed(road, "512720.8336865356", "512720.8536865356")),
              testing::Contains(HasSubstr("The coordinates of CS 23+89.98 are suspect")));
  const std::string simple = ReadRoadData("cl/simple_right.cl");
  EXPECT_THAT(Findings(Changed(simple, "10353.5533905933", "10353.5833905933")),
              testing::Contains(HasSubstr("The centre of the curve at PC 12+00.00 is suspect")));
}

TEST(AlignmentCheck, TakesDisplayedStationsBack) {
  // The same road, with the stations after the first equation as a plan shows them.
  std::string text = ReadRoadData("cl/simple_right_eq.cl");
  text = Changed(text, "EQ,1200.00000,1300.00000", "EQ,1100.00000,1200.00000");
  const RoadGeometry internal = Geometry(text);
  EXPECT_FALSE(internal.converted);
  text = Changed(text, "0,1200.0", "0,1300.0");
  text = Changed(text, "1514.15926536", "1564.15926536");
  text = Changed(text, "1664.15926536", "1714.15926536");
  const RoadGeometry displayed = Geometry(text);
  EXPECT_TRUE(displayed.converted);
  EXPECT_NEAR(displayed.alignment.endStation(), internal.alignment.endStation(), 1e-9);
  EXPECT_EQ(displayed.equations.Displayed(1250.0), internal.equations.Displayed(1250.0));
  EXPECT_THAT(Findings(text), testing::ElementsAre(testing::HasSubstr("displayed stations")));
  const RoadGeometry refused =
      Geometry(Changed(text, "EQ,1100.00000,1200.00000", "EQ,9100.00000,1200.00000"));
  EXPECT_EQ(refused.refusedEquation, 0U);
}

// A sentence names a place as the table and the plan do, and a kink that no road has is a fault.
TEST(AlignmentCheck, NamesStationsAsTheyAreDisplayedAndBrokenJoins) {
  using testing::HasSubstr;
  const std::string mirrored =
      "0,1000,L,0,0\n0,1100,PC,0,100\n0,90,R,0,150\n0,1178.53981634,PT,50,150\n"
      "0,1278.53981634,L,50,250\n0,0,L,0,0\n";
  const auto kinked = Findings(mirrored);
  ASSERT_FALSE(kinked.empty());
  EXPECT_THAT(kinked, testing::Contains(HasSubstr("At PC 11+00.00 the azimuth jumps by")));
  EXPECT_THAT(kinked, testing::Contains(testing::AllOf(testing::StartsWith("REFUSED 2"),
                                                       HasSubstr("90.0000 degrees"))));
  EXPECT_FALSE(Geometry(mirrored).alignment.elements()[1].sound);
  EXPECT_THAT(Findings(mirrored + "EQ,1050,2000\n"),
              testing::Contains(HasSubstr("At PC 20+50.00 the azimuth jumps")));
  const auto noted = Findings(
      "0,1000,L,0,0\n0,1100,PC,0,100\n0,90,R,50,100.05\n0,1178.6,PT,50,150.05\n0,0,L,0,0\n");
  EXPECT_THAT(noted, testing::Contains(testing::AllOf(testing::StartsWith("2: At PC"),
                                                      testing::EndsWith("\"."))));
}

}  // namespace
}  // namespace tarvex
