// Localization and explained conversions, as a person types them.
#include <gtest/gtest.h>

#include <cstdio>
#include <nlohmann/json.hpp>

#include "tests/app/program_run.h"

namespace tarvex {
namespace {

bool Holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

// Four control points whose local coordinates are the grid's less 5,184,000 and 520,000, except for
// a few millimetres, and 50 m lower.
TEST(LocalizeCommand, TiesAJobToItsControl) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exit_code, 0);
  const ProgramResult none = folder.Run("localize site.crd");
  EXPECT_EQ(none.exit_code, 0);
  EXPECT_TRUE(Holds(none.output, "no control points")) << none.output;

  // The grid places of the control, from the program itself without a localization.
  const ProgramResult grid = folder.Run("convert --job site.crd",
                                        "46.8152 9.2674 1100\n46.8172 9.2694 1102\n"
                                        "46.8142 9.2704 1095\n46.8162 9.2664 1101\n");
  ASSERT_EQ(grid.exit_code, 0) << grid.errors;
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
    ASSERT_EQ(added.exit_code, 0) << added.errors;
    EXPECT_TRUE(Holds(added.output, "The job uses the localization.")) << added.output;
  }

  const auto report = nlohmann::json::parse(folder.Run("localize site.crd --json").output);
  EXPECT_TRUE(report["on"]);
  EXPECT_EQ(report["horizontal"]["redundancy"], 4);
  EXPECT_NEAR(report["horizontal"]["scale"].get<double>(), 1.0, 3e-5);
  EXPECT_NEAR(report["vertical"]["shift_m"].get<double>(), -50.0, 1e-3);
  EXPECT_EQ(report["points"].size(), 4U);
  EXPECT_NEAR(report["points"][2]["left_out"]["miss_north_m"].get<double>(), 0.004, 0.0005);
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
  EXPECT_TRUE(Holds(folder.Run("localize site.crd --off").output, "does not use it"));
  const ProgramResult off = folder.Run("convert --job site.crd", "46.8152 9.2674 1100\n");
  EXPECT_TRUE(Holds(off.output, " 1100.0000")) << off.output;
}

TEST(LocalizeCommand, CollectedPointsComeOutInLocalCoordinates) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exit_code, 0);
  ASSERT_EQ(folder.Run("store site.crd BM1 5000 1000 471.2").exit_code, 0);
  // A receiver that stands still.
  folder.Write("still.log",
               "$GPGST,123519.00,,,,,0.03,0.04,0.06\r\n"
               "$GPGGA,123519.00,4717.11399,N,00833.91590,E,4,12,0.9,499.6,M,48.0,M,1.0,0001\r\n");
  const std::string collect =
      "collect site.crd --receiver file:still.log --make nmea --antenna-height 2 --first ";
  ASSERT_EQ(folder.Run(collect + "G1").exit_code, 0);
  const ProgramResult tied = folder.Run("localize site.crd --gnss g1 --known BM1");
  EXPECT_EQ(tied.exit_code, 0) << tied.errors;
  EXPECT_TRUE(Holds(tied.output, "translation, 1 points")) << tied.output;
  const ProgramResult collected = folder.Run(collect + "L1");
  EXPECT_TRUE(Holds(collected.output, "Point L1: N 5000.0000  E 1000.0000  EL 471.2000"))
      << collected.output;
  // A job whose localization is lost does not go on without it.
  folder.Write("site.loc", "no longer XML");
  const ProgramResult lost = folder.Run("collect site.crd --receiver simulated");
  EXPECT_EQ(lost.exit_code, 1);
  EXPECT_TRUE(Holds(lost.errors, "site.loc, line 1:")) << lost.errors;
  EXPECT_TRUE(Holds(lost.errors, "--off works without it")) << lost.errors;
  EXPECT_EQ(folder.Run("localize site.crd").exit_code, 1);
  EXPECT_EQ(folder.Run("localize site.crd --off --remove 1").exit_code, 1);
  const ProgramResult off = folder.Run("localize site.crd --off");
  EXPECT_EQ(off.exit_code, 0) << off.errors;
  EXPECT_TRUE(Holds(off.output, "does not use a localization")) << off.output;
  EXPECT_EQ(folder.Read("site.loc"), "no longer XML");
  EXPECT_TRUE(Holds(folder.Run(collect + "L2").output, "Point L2: N 523"));
  EXPECT_EQ(folder.Run("localize site.crd --on").exit_code, 1);
}

TEST(LocalizeCommand, NamesWhatIsWrong) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("new plain.crd").exit_code, 0);
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exit_code, 0);
  struct Case {
    const char* line;
    int exit_code;
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
      {"localize site.crd --from other.loc", 1, "other.loc: the file cannot be read"},
      {"localize site.crd --method wild", 2, "--method"},
  };
  for (const Case& c : cases) {
    const ProgramResult result = folder.Run(c.line);
    EXPECT_EQ(result.exit_code, c.exit_code) << c.line << result.output << result.errors;
    EXPECT_TRUE(Holds(result.errors, c.errors)) << c.line << ": " << result.errors;
  }
  // Feet given for metres: kept, told, but not used.
  (void)folder.Run("localize site.crd --wgs84 46.8152 9.2674 1100 --local 1000 1000 100");
  const ProgramResult feet =
      folder.Run("localize site.crd --wgs84 46.8172 9.2674 1100 --local 1729.6 1000 100");
  EXPECT_TRUE(Holds(feet.output, "The job does not use it: the scale is no site's."))
      << feet.output;
  EXPECT_TRUE(Holds(folder.Read("site.job"), "localization_on=0"));
}

TEST(ConvertCommand, ExplainsItsStepsAndRefusesIncompleteOnes) {
  ProgramFolder folder;
  const std::string dutch = "convert --system NETHERLANDS/Amersfoort/RD2004 ";
  const ProgramResult lenient = folder.Run(dutch + "--explain", "52.1 5.4 43\n52.2 5.4 43\n");
  EXPECT_EQ(lenient.exit_code, 0);
  EXPECT_TRUE(Holds(lenient.output, "X2c.grd does not exist")) << lenient.output;
  EXPECT_TRUE(Holds(lenient.output, "NOT MADE: ")) << lenient.output;
  EXPECT_TRUE(Holds(lenient.errors, "WARNING: line 1: ")) << lenient.errors;
  EXPECT_TRUE(Holds(lenient.errors, "WARNING: 2 lines: ")) << lenient.errors;
  const ProgramResult strict = folder.Run(dutch + "--strict", "52.1 5.4 43\n");
  EXPECT_EQ(strict.exit_code, 1);
  EXPECT_TRUE(Holds(strict.output, "ERROR: line 1: The shift grid is missing")) << strict.output;
  const ProgramResult ed50 =
      folder.Run("convert --system \"UTM/UTM ED50 Zone 32\" --explain", "52 9 0\n");
  EXPECT_TRUE(Holds(ed50.output, "seven parameters: ")) << ed50.output;
  // Houston through the grids that come with the program: 29.76 N to 29.759772 N.
  const ProgramResult texas = folder.Run(
      "convert --system \"USA/NAD27/Texas South Central\" --explain", "29.76 -95.37 0\n45 9 0\n");
  EXPECT_EQ(texas.exit_code, 1);
  EXPECT_TRUE(Holds(texas.output, "29.75977187")) << texas.output;
  EXPECT_TRUE(Holds(texas.output, "ERROR: line 2: ")) << texas.output;
  const ProgramResult geoid =
      folder.Run("convert --system \"UTM/UTM WGS84 Zone 32,GEOID=none.gtx\"", "52 9 0\n");
  EXPECT_EQ(geoid.exit_code, 1);
  EXPECT_TRUE(Holds(geoid.output, "none.gtx does not exist")) << geoid.output;
}

}  // namespace
}  // namespace tarvex
