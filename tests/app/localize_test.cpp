// Localization and explained conversions, as a person types them.
#include <gtest/gtest.h>

#include <cstdio>

#include "tests/app/json_reading.h"
#include "tests/app/program_run.h"

namespace tarvex {
namespace {

bool Holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// A receiver that stands still; the command that stores from it under the id behind it.
std::string CollectFromStillReceiver(ProgramFolder& folder) {
  folder.Write("still.log",
               "$GPGST,123519.00,,,,,0.03,0.04,0.06\r\n"
               "$GPGGA,123519.00,4717.11399,N,00833.91590,E,4,12,0.9,499.6,M,48.0,M,1.0,0001\r\n");
  return "collect site.crd --receiver file:still.log --make nmea --antenna-height 2 --first ";
}

// Four control points whose local coordinates are the grid's less 5,184,000 and 520,000, except for
// a few millimetres, and 50 m lower.
TEST(LocalizeCommand, TiesAJobToItsControl) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
  const ProgramResult none = folder.Run("localize site.crd");
  EXPECT_EQ(none.exitCode, 0);
  EXPECT_TRUE(Holds(none.output, "no control points")) << none.output;

  // The grid places of the control, from the program itself without a localization.
  const ProgramResult grid = folder.Run("convert --job site.crd",
                                        "46.8152 9.2674 1100\n46.8172 9.2694 1102\n"
                                        "46.8142 9.2704 1095\n46.8162 9.2664 1101\n");
  ASSERT_EQ(grid.exitCode, 0) << grid.errors;
  const char* const places[] = {"46.8152 9.2674 1100", "46.8172 9.2694 1102", "46.8142 9.2704 1095",
                                "46.8162 9.2664 1101"};
  std::size_t at = 0;
  for (int i = 0; i < 4; ++i) {
    const std::size_t end = grid.output.find('\n', at);
    double northing = 0.0;
    double easting = 0.0;
    double elevation = 0.0;
    ASSERT_EQ(std::sscanf(grid.output.substr(at, end - at).c_str(), "%lf %lf %lf", &northing,
                          &easting, &elevation),
              3);
    at = end + 1;
    char local[120];
    std::snprintf(local, sizeof local, "%.4f %.4f %.4f",
                  northing - 5'184'000 + (i == 2 ? 0.004 : 0), easting - 520'000, elevation - 50);
    const ProgramResult added =
        folder.Run("localize site.crd --wgs84 " + std::string(places[i]) + " --local " + local +
                   " --description \"P" + std::to_string(i + 1) + " \u00FC\"");
    ASSERT_EQ(added.exitCode, 0) << added.errors;
    EXPECT_TRUE(Holds(added.output, "The job uses the localization.")) << added.output;
  }

  const auto report = JsonReading(folder.Run("localize site.crd --json").output);
  EXPECT_EQ(report["on"], true);
  EXPECT_EQ(report["horizontal"]["redundancy"], 4);
  EXPECT_NEAR(report["horizontal"]["scale"].number(), 1.0, 3e-5);
  EXPECT_NEAR(report["vertical"]["shift_m"].number(), -50.0, 1e-3);
  EXPECT_EQ(report["points"].size(), 4U);
  EXPECT_NEAR(report["points"][2]["left_out"]["miss_north_m"].number(), 0.004, 0.0005);
  EXPECT_EQ(report["control"][1]["description"], "P2 \u00FC");
  EXPECT_TRUE(Holds(folder.Read("site.loc"), "value=\"P2 &#252;\""));
  EXPECT_TRUE(Holds(folder.Run("raw site.crd").output, "--Localization: 4 points horizontally"));

  const ProgramResult local =
      folder.Run("convert --job site.crd --explain", "46.8152 9.2674 1100\n");
  EXPECT_TRUE(Holds(local.output, "localization")) << local.output;
  EXPECT_TRUE(Holds(local.output, " 1050.00")) << local.output;

  const ProgramResult fixed =
      folder.Run("localize site.crd --method rotation --toggle-horizontal 3");
  EXPECT_TRUE(Holds(fixed.output, "rotation, 3 points, redundancy 3")) << fixed.output;
  EXPECT_TRUE(Holds(folder.Read("site.job"), "localization_method=rotation"));
  EXPECT_TRUE(Holds(folder.Run("localize site.crd --remove 3 --list").output, "P4"));
  EXPECT_TRUE(
      Holds(folder.Run("localize site.crd --off").output, "site.loc) is off: coordinates are"));
  const ProgramResult off = folder.Run("convert --job site.crd", "46.8152 9.2674 1100\n");
  EXPECT_TRUE(Holds(off.output, " 1100.0000")) << off.output;
}

TEST(LocalizeCommand, CollectedPointsComeOutInLocalCoordinates) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
  ASSERT_EQ(folder.Run("store site.crd BM1 5000 1000 471.2").exitCode, 0);
  const std::string collect = CollectFromStillReceiver(folder);
  ASSERT_EQ(folder.Run(collect + "G1").exitCode, 0);
  const ProgramResult tied = folder.Run("localize site.crd --gnss g1 --known BM1");
  EXPECT_EQ(tied.exitCode, 0) << tied.errors;
  EXPECT_TRUE(Holds(tied.output, "translation, 1 point, redundancy 0")) << tied.output;
  const ProgramResult collected = folder.Run(collect + "L1");
  EXPECT_TRUE(Holds(collected.output, "Point L1: N 5000.0000  E 1000.0000  EL 471.2000"))
      << collected.output;
  // A job whose localization is lost does not go on without it.
  folder.Write("site.loc", "no longer XML");
  const ProgramResult lost = folder.Run("collect site.crd --receiver simulated");
  EXPECT_EQ(lost.exitCode, 1);
  EXPECT_TRUE(Holds(lost.errors, "site.loc, line 1:")) << lost.errors;
  EXPECT_TRUE(Holds(lost.errors, "--off works without it")) << lost.errors;
  EXPECT_EQ(folder.Run("localize site.crd").exitCode, 1);
  EXPECT_EQ(folder.Run("localize site.crd --off --remove 1").exitCode, 1);
  const ProgramResult off = folder.Run("localize site.crd --off");
  EXPECT_EQ(off.exitCode, 0) << off.errors;
  EXPECT_TRUE(Holds(off.output, "does not use a localization")) << off.output;
  EXPECT_EQ(folder.Read("site.loc"), "no longer XML");
  EXPECT_TRUE(Holds(folder.Run(collect + "L2").output, "Point L2: N 523"));
  EXPECT_EQ(folder.Run("localize site.crd --on").exitCode, 1);
}

TEST(LocalizeCommand, NamesWhatIsWrong) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("new plain.crd").exitCode, 0);
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
  struct Case {
    const char* line;
    int exitCode;
    const char* errors;
  };
  const Case cases[] = {
      {"localize plain.crd", 1, "no coordinate system"},
      {"localize none.crd", 1, "There is no job none.crd"},
      {"localize site.crd --wgs84 46.8 9.2 1", 2, "--local N E EL or --known ID"},
      {"localize site.crd --local 1 2 3", 2, "--wgs84 LAT LON HEIGHT or --gnss ID"},
      {"localize site.crd --wgs84 146.8 9.2 1 --local 1 2 3", 2, "latitude"},
      {"localize site.crd --gnss G1 --local 1 2 3", 1, "no GNSS position of point G1"},
      {"localize site.crd --wgs84 46.8 9.2 1 --known X", 1, "no point X"},
      {"localize site.crd --remove 1", 2, "no control point 1; the list holds 0"},
      {"localize site.crd --scale 7", 2, "scale"},
      {"localize site.crd --wgs84 46.8 9.2 1 --local 1 inf 1", 2, "--local takes"},
      {"localize site.crd --wgs84 46.8 9.2 nan --local 1 1 1", 2, "--wgs84 takes"},
      {"localize site.crd --wgs84 46.8 9.2 1 --local 1 1 1 --hrms nan", 2, "--hrms and --vrms"},
      {"localize site.crd --on", 1, "No control point takes part"},
      {"localize site.crd --from other.loc", 1, "other.loc: the file cannot be read"},
      {"localize site.crd --method wild", 2, "--method"},
  };
  for (const Case& c : cases) {
    const ProgramResult result = folder.Run(c.line);
    EXPECT_EQ(result.exitCode, c.exitCode) << c.line << result.output << result.errors;
    EXPECT_TRUE(Holds(result.errors, c.errors)) << c.line << ": " << result.errors;
  }
}

// A site on UTM 32 with two points that fit: 46.8152 9.2674 and 200 m to the north.
class LocalSite : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(folder_.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
    ASSERT_EQ(Add("46.8152 9.2674 1100", "5000 1000 471.2").exitCode, 0);
    ASSERT_EQ(Add("46.8170 9.2674 1100", "5200.068 1000.71 471.2").exitCode, 0);
  }
  ProgramResult Add(const std::string& position, const std::string& local,
                    const std::string& more = "") {
    return folder_.Run("localize site.crd --wgs84 " + position + " --local " + local + ' ' + more);
  }
  std::string Converted() {
    return folder_.Run("convert --job site.crd", "46.8157 9.2678 1099\n").output;
  }

  ProgramFolder folder_;
};

// Each of these would leave no fit to use, or a scale of no site: the localization that worked goes
// on, and nothing on the disk is changed.
TEST_F(LocalSite, APointThatSpoilsTheFitIsRefused) {
  const std::string before = Converted();
  const std::string list = folder_.Read("site.loc");
  const std::string settings = folder_.Read("site.job");
  const std::string raw = folder_.Read("site.rw5");
  struct Case {
    const char* line;
    const char* errors;
  };
  const Case cases[] = {
      {"--wgs84 46.8152 9.2700 1100 --local 1198.5 5000 471.2", "swapped it would fit"},
      {"--wgs84 46.8152 9.2700 1100 --local 16404.2 3932.1 1546", "no site's"},
      {"--remove 2 --wgs84 46.8152 9.2674 1100 --local 5000 1000 471.2", "lie in one place"},
      {"--wgs84 46.8 -170 1100 --local 5000 1000 471.2", "has no grid coordinates: "},
  };
  for (const Case& c : cases) {
    const ProgramResult refused = folder_.Run(std::string("localize site.crd ") + c.line);
    EXPECT_EQ(refused.exitCode, 1) << c.line;
    EXPECT_TRUE(Holds(refused.errors, c.errors)) << refused.errors;
    EXPECT_TRUE(Holds(refused.errors, "Nothing was changed; the job goes on")) << refused.errors;
    EXPECT_TRUE(Holds(refused.errors, "--no-horizontal --no-vertical")) << refused.errors;
    EXPECT_EQ(folder_.Read("site.loc"), list);
    EXPECT_EQ(folder_.Read("site.job"), settings);
    EXPECT_EQ(folder_.Read("site.rw5"), raw);
    EXPECT_EQ(Converted(), before);
  }
  // The word how to keep it all the same.
  EXPECT_EQ(
      Add("46.8152 9.2700 1100", "1198.5 5000 471.2", "--no-horizontal --no-vertical").exitCode, 0);
  EXPECT_EQ(Converted(), before);
  const ProgramResult forced = folder_.Run("localize site.crd --toggle-horizontal 3");
  EXPECT_EQ(forced.exitCode, 1);
  EXPECT_EQ(folder_.Run("localize site.crd --toggle-horizontal 3 --on").exitCode, 0);
  EXPECT_NE(Converted(), before);
}

// A list from elsewhere that cannot be used is kept in a job that had none, and not used.
TEST_F(LocalSite, AListThatCannotBeUsedIsNot) {
  std::string list = folder_.Read("site.loc");
  const std::size_t points = list.find("<record id=\"Point 1\"");
  list.resize(points);
  const char* const corners[2][4] = {{"46.81", "9.0", "5000", "1000"},
                                     {"46.81", "9.001", "5000", "1000"}};
  for (const auto& corner : corners) {
    list += "<record id=\"Point\" >\n";
    const char* const names[] = {"Lat", "Lon", "Local_Y", "Local_X"};
    for (int i = 0; i < 4; ++i) {
      list +=
          std::string("<value name=\"") + names[i] + "\" value=\"" + corner[i] + "\"></value>\n";
    }
    list +=
        "<value name=\"Ellipsoid_Elv\" value=\"1\"></value>\n<value name=\"Local_Z\" "
        "value=\"1\"></value>\n<value name=\"Use_Horizontal\" value=\"Yes\"></value>\n"
        "<value name=\"Use_Vertical\" value=\"Yes\"></value>\n"
        "<value name=\"Description\" value=\"a&#27;[2J\"></value>\n</record>\n";
  }
  list +=
      "<value name=\"Units\" value=\"WGS84, Decimal Degrees, Metric\"></value>\n</record>\n"
      "</table>\n</morwend_xml>\n";
  folder_.Write("other.loc", list);
  EXPECT_EQ(folder_.Run("localize site.crd --from other.loc").exitCode, 1);
  ASSERT_EQ(folder_.Run("new new.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
  const ProgramResult kept = folder_.Run("localize new.crd --from other.loc --list");
  EXPECT_EQ(kept.exitCode, 1);
  EXPECT_TRUE(Holds(kept.errors, "The list is kept, but the job does not use it")) << kept.errors;
  EXPECT_FALSE(Holds(kept.output + kept.errors, "\x1b"));
  EXPECT_FALSE(Holds(kept.output, "large residual")) << kept.output;
  EXPECT_TRUE(Holds(folder_.Read("new.job"), "localization_on=0"));
  const ProgramResult again = folder_.Run("localize new.crd --json");
  EXPECT_EQ(again.exitCode, 0);
  const auto json = JsonReading(again.output);
  EXPECT_EQ(json["usable"], false);
  EXPECT_TRUE(json["points"][0]["residual_north_m"].isNull());
}

TEST_F(LocalSite, NamesAFileThatIsGone) {
  (void)std::remove(folder_.Path("site.loc").c_str());
  for (const char* line : {"", " --json", " --remove 1", " --method rotation"}) {
    const ProgramResult gone = folder_.Run(std::string("localize site.crd") + line);
    EXPECT_EQ(gone.exitCode, 1) << line;
    EXPECT_TRUE(Holds(gone.errors, "site.loc: the file cannot be read")) << gone.errors;
  }
  EXPECT_EQ(Add("46.81 9.26 1", "1 2 3").exitCode, 1);
  EXPECT_EQ(folder_.Run("localize site.crd --off").exitCode, 0);
}

// On the edge of the grid a control point cannot be taken in; the reason is the step's own.
TEST(LocalizeCommand, SaysWhyAPointHasNoGridCoordinates) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("new nl.crd --system NETHERLANDS/Amersfoort/RD2004").exitCode, 0);
  const ProgramResult refused = folder.Run("localize nl.crd --wgs84 52.1 5.4 43 --local 1 2 3");
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_TRUE(Holds(refused.errors, "no grid coordinates: The shift grid is missing"))
      << refused.errors;
  EXPECT_EQ(folder.Read("nl.loc"), "");
}

// Points do not move with a localization: what the raw file tells of them is told.
TEST(LocalizeCommand, SaysWhichStoredPointsLieInOtherCoordinates) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
  const std::string collect = CollectFromStillReceiver(folder);
  ASSERT_EQ(folder.Run(collect + "G1").exitCode, 0);
  ASSERT_EQ(folder.Run("store site.crd BM1 5000 1000 471.2").exitCode, 0);
  const ProgramResult tied = folder.Run("localize site.crd --gnss G1 --known BM1");
  EXPECT_TRUE(Holds(tied.errors,
                    "WARNING: 2 stored points keep their coordinates. By the raw file "
                    "1 of them lies elsewhere than the job would place it now (G1)."))
      << tied.errors;
  ASSERT_EQ(folder.Run(collect + "L1").exitCode, 0);
  const ProgramResult off = folder.Run("localize site.crd --off");
  EXPECT_TRUE(Holds(off.errors,
                    "3 stored points keep their coordinates. By the raw file 1 of them "
                    "lies elsewhere than the job would place it now (L1)."))
      << off.errors;
  EXPECT_TRUE(Holds(off.errors, "where 1 point without a position belongs")) << off.errors;
  const ProgramResult notice = folder.Run("localize site.crd");
  EXPECT_TRUE(Holds(notice.output, "site.loc) is off: coordinates are those of the system's grid."))
      << notice.output;
}

TEST(ConvertCommand, ExplainsItsStepsAndRefusesIncompleteOnes) {
  ProgramFolder folder;
  const std::string dutch = "convert --system NETHERLANDS/Amersfoort/RD2004 ";
  const ProgramResult lenient = folder.Run(dutch + "--explain", "52.1 5.4 43\n52.2 5.4 43\n");
  EXPECT_EQ(lenient.exitCode, 0);
  EXPECT_TRUE(Holds(lenient.output, "X2c.grd does not exist")) << lenient.output;
  EXPECT_TRUE(Holds(lenient.output, "NOT MADE: ")) << lenient.output;
  EXPECT_TRUE(Holds(lenient.errors, "WARNING: line 1: ")) << lenient.errors;
  EXPECT_TRUE(Holds(lenient.errors, "WARNING: 2 lines: ")) << lenient.errors;
  const ProgramResult strict = folder.Run(dutch + "--strict", "52.1 5.4 43\n");
  EXPECT_EQ(strict.exitCode, 1);
  EXPECT_TRUE(Holds(strict.output, "ERROR: line 1: The shift grid is missing")) << strict.output;
  const ProgramResult ed50 =
      folder.Run("convert --system \"UTM/UTM ED50 Zone 32\" --explain", "52 9 0\n");
  EXPECT_TRUE(Holds(ed50.output, "seven parameters: ")) << ed50.output;
  // Houston through the grids that come with the program: 29.76 N to 29.759772 N.
  const ProgramResult texas = folder.Run(
      "convert --system \"USA/NAD27/Texas South Central\" --explain", "29.76 -95.37 0\n45 9 0\n");
  EXPECT_EQ(texas.exitCode, 1);
  EXPECT_TRUE(Holds(texas.output, "29.75977187")) << texas.output;
  EXPECT_TRUE(Holds(texas.output, "ERROR: line 2: ")) << texas.output;
  const ProgramResult geoid =
      folder.Run("convert --system \"UTM/UTM WGS84 Zone 32,GEOID=none.gtx\"", "52 9 0\n");
  EXPECT_EQ(geoid.exitCode, 1);
  EXPECT_TRUE(Holds(geoid.output, "none.gtx does not exist")) << geoid.output;
}

}  // namespace
}  // namespace tarvex
