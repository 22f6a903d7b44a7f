// Choosing and converting by coordinate systems, as a person types it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/app/program_run.h"

namespace tarvex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// A datum whose way to WGS84 nobody knows gives no coordinates until one is named.
TEST(Systems, AnUnknownDatumShiftMustBeNamed) {
  ProgramFolder folder;
  const std::string system = "CHINA/Xian 1980/3-degree Gauss-Kruger CM 102E";
  const std::string at = "30 103 0\n";
  EXPECT_THAT(folder.Run("systems xian 102E").output,
              HasSubstr(system + "  [needs --datum-shift]\n"));
  EXPECT_THAT(folder.Run("systems EPSG:32633").output, Not(HasSubstr("[")));
  const ProgramResult refused = folder.Run("convert --system \"" + system + "\"", at);
  EXPECT_EQ(refused.exit_code, 1);
  EXPECT_EQ(refused.output, "");
  EXPECT_THAT(refused.errors, HasSubstr("TOWGS84=dX,dY,dZ"));
  EXPECT_EQ(folder.Run("new site.crd --system \"" + system + "\"").exit_code, 1);
  EXPECT_EQ(folder.Run("new site.crd --datum-shift NONE").exit_code, 2);

  const std::string none = " --system \"" + system + "\" --datum-shift NONE";
  // By PROJ 9.1.1: the projection alone, and with +towgs84=10,20,30.
  EXPECT_EQ(folder.Run("convert --strict" + none, at).output, "3320535.9838 596488.7935 0.0000\n");
  const ProgramResult made = folder.Run("new site.crd" + none);
  EXPECT_EQ(made.exit_code, 0);
  EXPECT_THAT(made.errors, HasSubstr("hundreds of metres off"));
  EXPECT_THAT(folder.Run("raw site.crd").output, HasSubstr(system + ", datum shift NONE"));
  EXPECT_THAT(folder.Run("new alaska.crd --system \"USA/NAD27/Alaska zone 4\"").output,
              HasSubstr("Datum shift: NAD27 by the NADCON grids conus in "));
  EXPECT_EQ(folder.Run("convert --job site.crd", at).output, "3320535.9838 596488.7935 0.0000\n");
  EXPECT_EQ(folder.Run("convert --system \"" + system + "\" --datum-shift TOWGS84=10,20,30", at)
                .output.substr(0, 26),
            "3320518.7674 596503.1887 -");
  const ProgramResult wrong = folder.Run("new b.crd --system \"" + system + "\" --datum-shift X");
  EXPECT_EQ(wrong.exit_code, 1);
  EXPECT_THAT(wrong.errors, HasSubstr("There is no datum shift \"X\""));
}

// Another catalogue's systems, with a bad one and one that is there already.
TEST(Systems, TakesTheSystemsOfAnotherCatalogue) {
  ProgramFolder folder;
  EXPECT_EQ(folder.Run("systems --own").exit_code, 1);
  const std::string all = folder.Run("systems --json \"UTM WGS84 Zone 32\"").output;
  const std::string definition = nlohmann::json::parse(all)["systems"][0]["definition"];
  folder.Write("office.sys", "# of the office\nSITE/North\t" + definition + "\nSITE/South\t" +
                                 definition + "\nSITE/Bad\tPROJCS[\"x\"]\nOTHER/One\t" +
                                 definition + "\n");
  const ProgramResult taken = folder.Run("systems --import office.sys site");
  EXPECT_EQ(taken.exit_code, 1);
  EXPECT_THAT(taken.output, HasSubstr("Took 2 of 3 systems into your catalogue"));
  EXPECT_THAT(taken.errors, HasSubstr("SITE/Bad: The definition names no datum"));
  EXPECT_EQ(folder.Run("systems --own").output, "SITE/North\nSITE/South\n");
  const ProgramResult again = folder.Run("systems --import office.sys");
  EXPECT_THAT(again.errors, HasSubstr("SITE/North: The catalogue already holds"));
  EXPECT_THAT(again.output, HasSubstr("Took 1 of 4"));
  EXPECT_EQ(folder.Run("convert --system \"site/south\"", "46.8 9.3\n").exit_code, 0);
  EXPECT_EQ(folder.Run("systems --import none.csl").exit_code, 1);
  EXPECT_EQ(folder.Run("systems --import office.sys nothing").exit_code, 1);
}

// One object a line, so that lines of any number can be read as they come.
TEST(Convert, JsonGivesTheSameStepsToAnotherProgram) {
  ProgramFolder folder;
  const std::string dutch = "convert --system NETHERLANDS/Amersfoort/RD2004 --json";
  const ProgramResult result = folder.Run(dutch + " --explain", "52.1 5.4 43\n\nx 1\n52.2 5.4\n");
  EXPECT_EQ(result.exit_code, 1);
  std::istringstream lines(result.output);
  std::vector<nlohmann::json> read;
  for (std::string line; std::getline(lines, line);) read.push_back(nlohmann::json::parse(line));
  ASSERT_EQ(read.size(), 3U);
  EXPECT_EQ(read[0]["line"], 1);
  EXPECT_NEAR(read[0]["northing"].get<double>(), 456861.6177, 1e-4);
  EXPECT_THAT(read[0]["left_undone"].get<std::string>(), HasSubstr("X2c.grd"));
  std::vector<std::string> steps;
  std::vector<std::string> states;
  for (const auto& step : read[0]["steps"]) {
    steps.push_back(step["step"]);
    states.push_back(step["status"]);
  }
  EXPECT_THAT(steps, ElementsAre("WGS84", "datum shift", "projection", "grid correction", "job"));
  EXPECT_THAT(states, ElementsAre("done", "done", "done", "left undone", "done"));
  EXPECT_EQ(read[0]["steps"][0]["latitude"], 52.1);
  EXPECT_EQ(read[1],
            nlohmann::json({{"line", 3},
                            {"error", "\"x\" is not a number (angles are decimal degrees)"},
                            {"steps", nlohmann::json::array()}}));
  EXPECT_FALSE(read[2].contains("elevation"));

  const ProgramResult strict = folder.Run(dutch + " --strict", "52.1 5.4 43\n");
  EXPECT_EQ(strict.exit_code, 1);
  EXPECT_FALSE(nlohmann::json::parse(strict.output).contains("northing"));
  // A step that is refused has no value.
  const auto refused = nlohmann::json::parse(
      folder
          .Run("convert --system \"UTM/UTM WGS84 Zone 32,GEOID=none.gtx\" --explain --json",
               "52 9 0\n")
          .output);
  EXPECT_EQ(refused["steps"][1]["status"], "refused");
  EXPECT_FALSE(refused["steps"][1].contains("undulation"));
  // The way back, full numbers.
  const auto back = nlohmann::json::parse(
      folder.Run("convert --inverse --json --system \"UTM/UTM WGS84 Zone 32\"", "5e6 5e5 1\n")
          .output);
  EXPECT_NEAR(back["latitude"].get<double>(), 45.1534771834, 1e-9);
  EXPECT_EQ(back["longitude"], 9.0);
  EXPECT_EQ(back["height"], 1.0);
}

}  // namespace
}  // namespace tarvex
