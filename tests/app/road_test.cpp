// The road commands, as a person types them over the example of docs/roads.md.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/file.h"
#include "tests/app/json_reading.h"
#include "tests/app/program_run.h"

namespace tarvex {
namespace {

using testing::HasSubstr;

std::string ReadFile(const std::string& path) {
  std::string text;
  EXPECT_TRUE(ReadWholeFile(SystemFiles(), path, 1 << 24, text).ok()) << path;
  return text;
}

// A folder with the files of docs/roads and a job in their coordinate system.
class RoadCommands : public testing::Test {
 protected:
  RoadCommands() {
    for (const char* name : {"site.cl", "site.tpl", "site.xml", "rover.nmea"}) {
      folder_.Write(name, ReadFile(std::string(TARVEX_TEST_DATA) + "/../../docs/roads/" + name));
    }
    EXPECT_EQ(folder_.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
  }

  void WriteVector(const std::string& name) {
    folder_.Write("vector.cl", ReadFile(std::string(TARVEX_TEST_DATA) + "/roads/" + name));
  }

  ProgramFolder folder_;
};

TEST_F(RoadCommands, CheckStakeAndWriteBack) {
  const ProgramResult check = folder_.Run("road check site.cl --svg road.svg");
  EXPECT_EQ(check.exitCode, 0);
  EXPECT_THAT(check.output, HasSubstr("5 elements, largest mismatch 0.0000"));
  EXPECT_THAT(check.output, HasSubstr("Equation 1+250.000 BK = 1+300.000 AH"));
  EXPECT_EQ(folder_.Read("road.svg").substr(0, 5), "<?xml");

  const ProgramResult stake = folder_.Run(
      "road stake site.cl 1+210 -3.6 --profile site.xml --template site.tpl --job site.crd "
      "--receiver file:rover.nmea --store 10 --store-on-stake");
  EXPECT_EQ(stake.exitCode, 0) << stake.errors;
  const std::string raw = folder_.Read("site.rw5");
  EXPECT_THAT(raw, HasSubstr("\nGPS,PN10,"));
  EXPECT_THAT(raw, HasSubstr("\n--Stake design:N 5184687.8041,E 520489.5432,EL1101.5880,"
                             "--1+210.000 3.600 L\n--Stake found:N "));
  EXPECT_THAT(raw,
              HasSubstr("\n--Stake difference:N 0.0060,E -0.0040,EL0.0050,HD0.0072,HT0.0200,"));
  EXPECT_THAT(folder_.Read("site.not"), HasSubstr("PT_ID:10\nHRMS,"));
  EXPECT_EQ(stake.output,
            "FIXED: at 1+201.823 2.459 R  forward 8.039  left 6.279  N 6.200  E 8.100  C 0.650\n"
            "FIXED: at 1+206.997 1.201 L  forward 3.026  left 2.430  N 2.400  E 3.050  C 0.610\n"
            "FIXED: at 1+209.592 3.246 L  forward 0.417  left 0.354  N 0.350  E 0.420  C 0.420\n"
            "FIXED: at 1+209.996 3.606 L  forward 0.004  right 0.006  S 0.006  E 0.004  C 0.005"
            "  ON THE STAKE\nStored point 10 for 1+210.000 3.600 L: N 0.006, E -0.004, EL 0.005, "
            "distance 0.007, within the tolerance.\n");

  EXPECT_EQ(folder_.Run("road write site.cl --out same.cl").exitCode, 0);
  EXPECT_EQ(folder_.Read("same.cl"), folder_.Read("site.cl"));
  EXPECT_EQ(folder_.Run("road write site.cl --out same.cl").exitCode, 1);  // it exists
  EXPECT_EQ(folder_.Run("road section site.tpl --elevation 100 --out same.tpl").exitCode, 0);
  EXPECT_EQ(folder_.Read("same.tpl"), folder_.Read("site.tpl"));
}

TEST_F(RoadCommands, PointsGoIntoTheJobAndComeBackAsStations) {
  const std::string design = " --profile site.xml --template site.tpl";
  EXPECT_EQ(folder_.Run("road point site.cl 1+210 -3.6 --store site.crd --id R1" + design).exitCode,
            0);
  const auto found = JsonReading(
      folder_.Run("road station site.cl --job site.crd --point R1 --json" + design).output);
  const JsonReading& answer = found["points"][0]["answers"][0];
  EXPECT_NEAR(answer["station"].number(), 1210.0, 1e-4);
  EXPECT_NEAR(answer["offset"].number(), -3.6, 1e-4);
  EXPECT_NEAR(answer["cut"].number(), 0.0, 1e-6);
  EXPECT_EQ(found["points"][0]["description"], "1+210.000 3.6000 L");

  const auto listed =
      JsonReading(folder_.Run("road list site.cl --interval 100 --profile site.xml --json").output);
  ASSERT_GE(listed["stations"].size(), 7U);
  EXPECT_EQ(listed["stations"][0]["elevation"], 1098.0);
  EXPECT_EQ(folder_.Run("road point site.cl 1+210 --store site.crd --id R2").exitCode, 2);
  EXPECT_EQ(folder_
                .Run("road point site.cl 1+210 --unit us-feet --elevation 1 --store site.crd "
                     "--id R2")
                .exitCode,
            2);
}

// An offset has the elevation of the template's surface, the same in every command, or none.
TEST_F(RoadCommands, NeverShowTheCenterlinesElevationBesideIt) {
  const std::string target = " site.cl 1+210 -3.6 --profile site.xml";
  const ProgramResult bare = folder_.Run("road point" + target);
  EXPECT_THAT(bare.output, HasSubstr("no design elevation (an offset without a template)"));
  EXPECT_THAT(bare.errors, HasSubstr("--template FILE.tpl gives the surface"));
  const ProgramResult unstored = folder_.Run("road point" + target + " --store site.crd --id R1");
  EXPECT_EQ(unstored.exitCode, 2);
  EXPECT_EQ(JsonReading(folder_.Run("points site.crd --json").output)["points"].size(), 0U);
  const JsonReading level =
      JsonReading(folder_.Run("road point" + target + " --level --json").output);
  EXPECT_NEAR(level["elevation"].number(), 1101.66, 1e-6);
  EXPECT_EQ(level["elevation_from"], "level across from the centerline");

  const std::string surface = target + " --template site.tpl";
  const ProgramResult shown = folder_.Run("road point" + surface);
  EXPECT_THAT(shown.output, HasSubstr("EL 1101.5880 (template)"));
  EXPECT_THAT(shown.errors, HasSubstr("no --superelevation was given"));
  const JsonReading point = JsonReading(folder_.Run("road point" + surface + " --json").output);
  const std::string place =
      " --at " + point["northing"].written() + " " + point["easting"].written();
  const JsonReading stake =
      JsonReading(folder_.Run("road stake" + surface + place + " 1101.6 --json").output);
  EXPECT_NEAR(stake["cut"].number(), 0.012, 1e-6);
  EXPECT_EQ(stake["elevation_from"], "template");
  const ProgramResult without = folder_.Run("road stake" + target + place + " 1101.6");
  EXPECT_EQ(without.output.find(" F "), std::string::npos) << without.output;
  EXPECT_THAT(without.errors, HasSubstr("there is no design elevation at 1+210.000 3.6000 L"));
  const JsonReading turned = JsonReading(
      folder_.Run("road stake" + surface + place + " 1101.6 --superelevation 6,-6 --json").output);
  EXPECT_NEAR(turned["design_elevation"].number(), 1101.66 + 0.216, 1e-6);
  EXPECT_THAT(
      folder_.Run("road point site.cl 1+210 -9 --profile site.xml --template site.tpl").output,
      HasSubstr("no design elevation (outside the template's surface)"));

  const std::string design = " --profile site.xml --template site.tpl";
  const JsonReading list = JsonReading(
      folder_.Run("road list site.cl --interval 10 --offset -3.6 --json" + design).output);
  for (const JsonReading& row : list["stations"].values()) {
    if (row["station_text"] != "1+210.000") continue;
    EXPECT_NEAR(row["elevation"].number(), 1101.588, 1e-6);
  }
  const ProgramResult blank =
      folder_.Run("road list site.cl --interval 100 --offset -3.6 --profile site.xml");
  EXPECT_EQ(blank.output.find("1098.0000"), std::string::npos);
  EXPECT_THAT(blank.errors, HasSubstr("an offset without a template"));
  EXPECT_EQ(folder_
                .Run("store site.crd R5 " + point["northing"].written() + " " +
                     point["easting"].written() + " 1101.6")
                .exitCode,
            0);
  const std::string station = "road station site.cl --job site.crd --point R5";
  EXPECT_THAT(folder_.Run(station + design).output, HasSubstr("C 0.012"));
  EXPECT_THAT(folder_.Run(station + " --profile site.xml").output,
              HasSubstr("3.6000 L  no design elevation (an offset without a template)"));
}

TEST_F(RoadCommands, SayWhatIsOutsideTheStationLimits) {
  folder_.Write("site.cle", "START_STA=1100\nEND_STA=1200\n");
  const ProgramResult stake =
      folder_.Run("road stake site.cl 1+210 --limits --at 5184676.43 520440.35");
  EXPECT_THAT(stake.errors, HasSubstr("the target 1+210.000 is outside the station limits"));
  EXPECT_EQ(stake.output.find("outside"), std::string::npos);
  EXPECT_THAT(folder_.Run("road stake site.cl 1+150 --limits --at 5184610 520320").output,
              HasSubstr("(outside the station limits)"));
}

TEST_F(RoadCommands, AskWhichStationIsMeant) {
  WriteVector("cl/simple_right_eq.cl");
  EXPECT_THAT(folder_.Run("road point vector.cl 1475").errors,
              HasSubstr("say which: \"1475 R2\" or \"1475 R3\""));
  EXPECT_THAT(folder_.Run("road point vector.cl 12+50").errors, HasSubstr("no station 12+50"));
  const auto point = JsonReading(folder_.Run("road point vector.cl \"1475 R3\" --json").output);
  EXPECT_EQ(point["internal_station"], 1425.0);
}

TEST_F(RoadCommands, TakeStationsBeyondTheEnds) {
  EXPECT_THAT(folder_.Run("road point site.cl 0+985").output, HasSubstr("(before the start)"));
  EXPECT_THAT(folder_.Run("road point site.cl 1+460").output, HasSubstr("1+460.000 0.0000: "));
  EXPECT_THAT(folder_.Run("road point site.cl 1+460").output, HasSubstr("(after the end)"));
  EXPECT_THAT(folder_.Run("road point site.cl 1+275").errors, HasSubstr("in the gap"));
}

TEST_F(RoadCommands, FaultsAreNamedAndRestationed) {
  WriteVector("bad/all_stations_zero.cl");
  const ProgramResult check = folder_.Run("road check vector.cl");
  EXPECT_EQ(check.exitCode, 1);
  EXPECT_THAT(check.output, HasSubstr("FAULT  All key points carry the same station"));
  EXPECT_EQ(folder_.Run("road write vector.cl --restation --out good.cl").exitCode, 0);
  EXPECT_EQ(folder_.Run("road check good.cl").exitCode, 0);
  WriteVector("bad/no_terminator.cl");
  EXPECT_THAT(folder_.Run("road check vector.cl").output,
              HasSubstr("Line 5: the last key point was dropped"));
  EXPECT_EQ(folder_.Run("road check none.cl").exitCode, 1);
}

TEST_F(RoadCommands, WriteEveryFormAndGiveMergedRecordsTheirStation) {
  folder_.Write("dup.cl",
                "1,0,L,0,10\n7,0,L,0,100\n0,0,PC,0,100\n0,90,R,50,100\n0,0,PT,50,150\n"
                "0,0,L,150,150\n0,0,L,0,0\n");
  EXPECT_EQ(folder_.Run("road write dup.cl --restation --out again.cl").exitCode, 0);
  EXPECT_EQ(folder_.Read("again.cl"),
            "1,0.000000,L,0,10\n7,90.000000,L,0,100\n0,90.000000,PC,0,100\n0,90,R,50,100\n"
            "0,168.539816,PT,50,150\n0,268.539816,L,150,150\n0,0,L,0,0\n");
  EXPECT_EQ(folder_.Run("road write again.cl --form plain --out plain.cl").exitCode, 0);
  EXPECT_EQ(folder_.Read("plain.cl"),
            "0,0.00000,L,0.000000,10.000000\n0,90.00000,PC,0.000000,100.000000\n"
            "0,90.000000000000,R,50.000000,100.000000\n0,168.53982,PT,50.000000,150.000000\n"
            "0,268.53982,L,150.000000,150.000000\n0,0,L,0,0\n");
  EXPECT_EQ(folder_.Run("road write again.cl --form ids --out ids.cl").exitCode, 0);
  EXPECT_EQ(folder_.Read("ids.cl"),
            "1,0.00000,L,0.00000,10.00000\n7,90.00000,PC,0.00000000,100.00000000\n"
            "0,90.000000000000,R,50.000000,100.000000\n0,168.53982,PT,50.00000,150.00000\n"
            "0,268.53982,L,150.00000,150.00000\n0,0,L,0,0\n");
  EXPECT_EQ(folder_.Run("road write again.cl --restation --form ids --out no.cl").exitCode, 2);

  // Stations that jumped at the equation count through from now on, which is said.
  folder_.Write("jump.cl", "0,1000,L,0,1\n0,1450,L,0,401\n0,0,L,0,0\nEQ,1250,1300\n");
  const ProgramResult jumped = folder_.Run("road write jump.cl --restation --out through.cl");
  EXPECT_THAT(jumped.errors, HasSubstr("those written count through"));
  EXPECT_THAT(folder_.Read("through.cl"), HasSubstr("0,1400.000000,L,0,401\n"));
  EXPECT_EQ(folder_.Run("road write again.cl --restation --out quiet.cl").errors,
            "Wrote quiet.cl.\n");
}

TEST_F(RoadCommands, MakeATemplate) {
  const ProgramResult made = folder_.Run(
      "road template new own.tpl --both 3.6,-2%,EP --left 1.8,-4%,ES --right 0,0.15,TC "
      "--right 2,-50:1,WALK --fill-left 1.5,6 --fill-left 99,4 --cut-right 99,2");
  EXPECT_EQ(made.exitCode, 0) << made.errors;
  EXPECT_THAT(made.output, HasSubstr("5.4000 L       -0.1440  ES\n"));
  const std::string text = folder_.Read("own.tpl");
  EXPECT_EQ(text.substr(0, text.find("RATIO ")),
            "*SURFACEL\nOFFSET,0.00000,0.00000\nMOVESL,3.60000,-2.00000%%,EP\n"
            "MOVESL,1.80000,-4.00000%%,ES\n*SURFACER\nOFFSET,0.00000,0.00000\n"
            "MOVESL,3.60000,-2.00000%%,EP\nMOVESL,0.00000,0.15000,TC\n"
            "MOVESL,2.00000,-0.04000,WALK\n*FILL-L\nFILDSL,1.500,6.000\nFILDSL,99.000,4.000\n");
  EXPECT_THAT(text, HasSubstr("*CUT-R\nCUTUSL,99.000,2.000\nROCKSL,1.000\n"));
  EXPECT_EQ(folder_.Run("road section own.tpl --elevation 100").exitCode, 0);
  EXPECT_EQ(folder_.Run("road template new own.tpl").exitCode, 1);  // it exists

  folder_.Write("curbs.tpl", "*SURFACEL\n**CURBLA1\nCBTOP ,0.15\n");
  EXPECT_EQ(folder_
                .Run("road template new c.tpl --like curbs.tpl --left 3,-2%,EP --left "
                     "INSERT,CURBLA1")
                .exitCode,
            0);
  EXPECT_THAT(folder_.Read("c.tpl"), HasSubstr("%%,EP\nINSERT,CURBLA1\n*SURFACER\n"));
  EXPECT_THAT(folder_.Read("c.tpl"), HasSubstr("**CURBLA1\nCBTOP ,0.15000\n"));
  for (const char* wrong :
       {"--left 3.6", "--left x,-2%,EP", "--left 0,-2%,EP", "--left -1,-2%,EP",
        "--left INSERT,CURBLB2", "--fill-left 3", "--fill-left 0,3",
        "--left 3,-2%,ThisDescriptionIsFarTooLongForALineOfATemplateBecauseEverythingBehindThe"
        "HundredAndTwentyFirstByteIsNotReadByAnybody"}) {
    const ProgramResult result = folder_.Run("road template new w.tpl " + std::string(wrong));
    EXPECT_EQ(result.exitCode, 2) << wrong;
    EXPECT_EQ(folder_.Run("road section w.tpl --elevation 0").exitCode, 1) << wrong;
  }
}

TEST_F(RoadCommands, ImportTellsFaultsAndContradictions) {
  const auto document = [](const std::string& curve) {
    return "<LandXML><Units><Metric linearUnit='meter'/></Units><Alignments><Alignment name='a' "
           "staStart='0'><CoordGeom><Line><Start>900 1000</Start><End>1000 1000</End></Line>" +
           curve + "<Start>1000 1000</Start>" +
           "<End>1050 1050</End></Curve></CoordGeom></Alignment></Alignments></LandXML>";
  };
  // Three quarters of a circle without its centre: the length tells which arc it is.
  folder_.Write("long.xml", document("<Curve rot='ccw' radius='50' length='235.6194490'>"));
  EXPECT_EQ(folder_.Run("road import long.xml --out long.cl").exitCode, 0);
  const JsonReading longWay = JsonReading(folder_.Run("road check long.cl --json").output);
  EXPECT_NEAR(longWay["elements"][1]["length"].number(), 235.6194490, 1e-5);
  // The stated radius contradicts the points; the stated length fits neither arc.
  folder_.Write("odd.xml", document("<Curve rot='cw' radius='49' length='120'>"
                                    "<Center>1000 1050</Center>"));
  const ProgramResult odd = folder_.Run("road import odd.xml --out odd.cl --json");
  EXPECT_THAT(odd.errors,
              HasSubstr("the radius of the curve is 50.000 by its points, but says 49"));
  EXPECT_THAT(odd.errors, HasSubstr(R"({"event":"warning","text":"FAULT: PC 0+100.000 to)"));
  EXPECT_THAT(odd.errors, HasSubstr("see: tarvex road check odd.cl"));
  EXPECT_EQ(JsonReading(odd.output)["faults"], 1);
}

TEST_F(RoadCommands, LandXmlGoesOutAndComesIn) {
  EXPECT_EQ(
      folder_.Run("road export site.cl --profile site.xml --out out.xml --name Main").exitCode, 0);
  const ProgramResult import = folder_.Run("road import out.xml --out in.cl --json");
  EXPECT_EQ(import.exitCode, 0) << import.errors;
  EXPECT_EQ(JsonReading(import.output)["alignment"], "Main");
  const auto there = JsonReading(folder_.Run("road point site.cl 1+320 2 --json").output);
  const auto back = JsonReading(folder_.Run("road point in.cl 1+320 2 --json").output);
  EXPECT_NEAR(there["northing"].number(), back["northing"].number(), 1e-6);
  EXPECT_NEAR(there["easting"].number(), back["easting"].number(), 1e-6);
}

TEST_F(RoadCommands, AskWhoseProfileIsMeant) {
  folder_.Write("two.xml",
                "<LandXML><Units><Metric linearUnit='meter'/></Units><Alignments>"
                "<Alignment name='Ramp' length='100' staStart='1000'>"
                "<Profile><ProfAlign name='R'><PVI>1000 10</PVI><PVI>1400 20</PVI></ProfAlign>"
                "</Profile></Alignment>"
                "<Alignment name='Main' length='400' staStart='1000'>"
                "<Profile><ProfAlign name='M'><PVI>1000 500</PVI><PVI>1400 500</PVI></ProfAlign>"
                "</Profile></Alignment></Alignments></LandXML>");
  const ProgramResult unnamed = folder_.Run("road point site.cl 1+050 --profile two.xml");
  EXPECT_EQ(unnamed.exitCode, 2);
  EXPECT_EQ(unnamed.output, "");
  EXPECT_THAT(unnamed.errors, HasSubstr("\"Ramp\", \"Main\""));
  EXPECT_THAT(unnamed.errors, HasSubstr("--profile-alignment"));
  EXPECT_THAT(
      folder_.Run("road point site.cl 1+050 --profile two.xml --profile-alignment Main").output,
      HasSubstr("EL 500.0000"));
  folder_.Write("beside.xml",
                "<LandXML><Units><Metric linearUnit='meter'/></Units><Alignments><Alignment "
                "name='Ramp'><Profile><ProfAlign name='R'><PVI>0 10</PVI><PVI>90 20</PVI>"
                "</ProfAlign></Profile></Alignment></Alignments></LandXML>");
  EXPECT_THAT(folder_.Run("road point site.cl 1+050 --profile beside.xml").errors,
              HasSubstr("is it the profile of this road?"));
}

TEST_F(RoadCommands, SectionsShowWhereTheyCatch) {
  const auto section = JsonReading(
      folder_.Run("road section site.tpl --elevation 100 --ground-left \"plane 97.8,-0.01\" --json")
          .output);
  EXPECT_EQ(section["left"]["kind"], "fill");
  EXPECT_NEAR(section["left"]["offset"].number(), 14.191667, 1e-6);
  EXPECT_EQ(folder_.Run("road section site.tpl --elevation 100 --ground-left \"5,9 3,9\"").exitCode,
            2);
}

TEST_F(RoadCommands, TakeNumbersOnlyAndNameTheWrongOnes) {
  struct Case {
    const char* line;
    const char* errors;  // a part of what is said
  };
  const Case cases[] = {
      {"road list site.cl --interval 50 --offset nan", "--offset: \"nan\" is not a number"},
      {"road list site.cl --interval 1e300", "--interval: \"1e300\" is out of range"},
      {"road list site.cl --interval 0", "--interval: \"0\" is not above 0"},
      {"road list site.cl --interval 50 --from 1+300 --to 1+200",
       "Nothing lies between 1+300.000 and 1+200.000"},
      {"road point site.cl 1+210 3.6L", "OFFSET: \"3.6L\" is not a number"},
      {"road station site.cl 1e300 1", "The northing \"1e300\" is out of range"},
      {"road station site.cl 5184676", "Give NORTHING EASTING"},
      {"road stake site.cl 1+210 --at nan 1", "The northing \"nan\" is not a number"},
      {"road stake site.cl 1+210 --at 1 2 --tolerance inf", "--tolerance: \"inf\""},
      {"road stake site.cl 1+210 --at 1 2 --slope left", "--slope goes with --template only"},
      {"road section site.tpl --elevation 1e300", "The elevation \"1e300\" is out of range"},
  };
  for (const Case& c : cases) {
    const ProgramResult result = folder_.Run(c.line);
    EXPECT_EQ(result.exitCode, 2) << c.line;
    EXPECT_THAT(result.errors, HasSubstr(c.errors)) << c.line;
    EXPECT_EQ(result.output, "") << c.line;
  }
  const ProgramResult noTemplate = folder_.Run("road section site.cl --elevation 1");
  EXPECT_EQ(noTemplate.exitCode, 1);
  EXPECT_THAT(noTemplate.errors, HasSubstr("site.cl is not a template"));
  folder_.Write("far.tpl", "*SURFACEL\nMOVESL,1e999,-2%,EP\n");
  EXPECT_THAT(folder_.Run("road section far.tpl --elevation 1").errors,
              HasSubstr("far.tpl line 2: a number is out of range"));
  EXPECT_EQ(folder_.Run("road list site.cl --interval 1e9 --json").exitCode, 0);
  const ProgramResult south = folder_.Run("road station site.cl --json -- -5184676 -520440");
  EXPECT_EQ(JsonReading(south.output)["points"][0]["northing"], -5184676.0) << south.errors;
}

// What another program reads stays whole when a point is stored beside it, and a place without an
// elevation has neither cut nor fill.
TEST_F(RoadCommands, PrintNothingBesideJson) {
  const ProgramResult point =
      folder_.Run("road point site.cl 1+210 --elevation 5 --store site.crd --id R1 --json");
  EXPECT_EQ(JsonReading(point.output)["elevation"], 5.0);
  EXPECT_EQ(JsonReading(point.errors)["text"], "Stored point R1.");
  const ProgramResult stake = folder_.Run(
      "road stake site.cl 1+210 --elevation 99 --at 5184676 520440 100 --job site.crd --store R2 "
      "--json");
  EXPECT_EQ(JsonReading(stake.output)["cut"], 1.0);
  const ProgramResult flat =
      folder_.Run("road stake site.cl 1+210 --elevation 99 --at 5184676 520440 --json");
  EXPECT_FALSE(JsonReading(flat.output).Has("cut"));
  const ProgramResult refused = folder_.Run(
      "road stake site.cl 1+210 --elevation 99 --at 5184676 520440 --job site.crd --store R3");
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_THAT(refused.errors, HasSubstr("no elevation; nothing was stored"));
}

}  // namespace
}  // namespace tarvex
