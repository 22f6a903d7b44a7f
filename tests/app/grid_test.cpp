// Shift grids as a person packs, asks about and uses them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "tests/app/json_reading.h"
#include "tests/app/program_run.h"
#include "tests/support/british_text.h"

namespace tarvex {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

std::string TestFile(const std::string& name) {
  std::ifstream file(std::string(TARVEX_TEST_DATA) + "/" + name, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

constexpr const char* kBritish = "convert --system \"GREAT BRITAIN/OSGB36/National Grid OSTN02\" ";
constexpr const char* kTower = "52.658007833 1.716073973 70\n";

TEST(GridCommand, TheBritishTextBecomesTheGridThatConversionsUse) {
  ProgramFolder folder;
  EXPECT_EQ(folder.Run(kBritish, kTower).exitCode, 1);  // refused without its grid
  folder.Write("OSTN.txt", BritishText());
  const ProgramResult packed = folder.Run("grid pack OSTN.txt");
  EXPECT_EQ(packed.exitCode, 0) << packed.errors;
  EXPECT_THAT(packed.output, HasSubstr("data/ostn02_y.bin: one of the two parts of the British"));
  EXPECT_THAT(packed.output, HasSubstr("easting 0.0 to 700000.0 m every 1000 m"));
  EXPECT_EQ(folder.Read("data/ostn02_x.bin").size(), 1'753'934U);
  // The tower lies at 651307.003 313255.686 on the ETRS89 plane; the four nodes give 102.804 and
  // -78.228.
  EXPECT_EQ(folder.Run(kBritish + std::string("--decimals 3"), kTower).output,
            "313177.458 651409.807 70.000\n");
  const ProgramResult sea = folder.Run(kBritish, "58 -12 0\n");
  EXPECT_EQ(sea.exitCode, 1);
  EXPECT_THAT(sea.output, HasSubstr("ERROR: line 1: "));

  // A text that is cut short leaves the grid alone.
  folder.Write("OSTN.txt", BritishText().substr(0, 20'000'000));
  const ProgramResult cut = folder.Run("grid pack OSTN.txt");
  EXPECT_EQ(cut.exitCode, 1);
  EXPECT_THAT(cut.errors, HasSubstr("OSTN.txt"));
  EXPECT_THAT(cut.errors, HasSubstr("Nothing was written."));
  EXPECT_EQ(folder.Run(kBritish, kTower).exitCode, 0);
}

TEST(GridCommand, TheFrenchTextBecomesTheGridThatConversionsUse) {
  ProgramFolder folder;
  folder.Write("gr3df97a.txt", TestFile("datum/gr3df97a_paris.txt"));
  EXPECT_EQ(folder.Run("grid pack gr3df97a.txt --folder data").exitCode, 1);  // no such folder
  EXPECT_EQ(folder.Run("systems lambert-93").exitCode, 0);                    // makes it
  const ProgramResult packed = folder.Run("grid pack gr3df97a.txt --json");
  ASSERT_EQ(packed.exitCode, 0) << packed.errors;
  const JsonReading told = JsonReading(packed.output)["files"][0];
  EXPECT_EQ(told["kind"], "french");
  EXPECT_EQ(told["chosen_by"], "--datum-shift GR3DF97A (France)");
  EXPECT_EQ(told["grids"][0]["second"]["name"], "latitude");
  // The published check point: RGF93 48 50 40.0050 N 2 25 29.8960 E is NTF 48 50 40.2441 N
  // 2 25 32.4187 E.
  const ProgramResult explained = folder.Run(
      "convert --system \"FRANCE/NTF (Paris)/Lambert zone II\" --datum-shift GR3DF97A --explain "
      "--json",
      "48.8444458333 2.4249711111 0\n");
  ASSERT_EQ(explained.exitCode, 0) << explained.errors;
  const JsonReading steps = JsonReading(explained.output)["steps"];
  ASSERT_EQ(steps.size(), 4U);
  EXPECT_EQ(steps[1]["step"], "datum shift");
  EXPECT_EQ(steps[1]["by"], "geocentric translations of the grid gr3df97a.bin");
  EXPECT_NEAR(steps[1]["latitude"].number(), 48.0 + 50 / 60.0 + 40.2441 / 3600, 3e-8);
  EXPECT_NEAR(steps[1]["longitude"].number(), 2.0 + 25 / 60.0 + 32.4187 / 3600, 3e-8);
}

TEST(GridCommand, InfoTellsWhatAFileIsAndWhatIsWrongWithIt) {
  ProgramFolder folder;
  folder.Write("paris.gsb", TestFile("datum/paris.gsb"));
  folder.Write("X2c.grd", "0\n0\n2000\n1000\n1\n2\n1 2 3 4 5 6\n");
  folder.Write("cut.gtx", TestFile("datum/bavaria.gtx").substr(0, 100));
  folder.Write("agency.txt", "1,0,0,0,0,0,0\n");
  const ProgramResult known = folder.Run("grid info paris.gsb X2c.grd");
  EXPECT_EQ(known.exitCode, 0);
  EXPECT_THAT(known.output, HasSubstr("paris.gsb: NTv2 shift grid over latitude and longitude, "));
  EXPECT_THAT(known.output, HasSubstr("chosen by --datum-shift NADCON (the Netherlands)"));
  EXPECT_THAT(known.output, HasSubstr("3 x 2 nodes"));
  const ProgramResult wrong = folder.Run("grid info --json cut.gtx none.grd agency.txt X2c.grd");
  EXPECT_EQ(wrong.exitCode, 1);
  EXPECT_EQ(JsonReading(wrong.output)["files"].size(), 1U);
  EXPECT_THAT(wrong.errors, HasSubstr("cut.gtx is cut short: 100 of 184"));
  EXPECT_THAT(wrong.errors, HasSubstr("none.grd does not exist"));
  EXPECT_THAT(wrong.errors, HasSubstr("tarvex grid pack"));
  // Of the data folder, by its name alone.
  EXPECT_THAT(folder.Run("grid info NADConv/conus.las").errors, HasSubstr("does not exist"));
  EXPECT_EQ(folder.Run("grid info data/NADConv/conus.las").exitCode, 0);
  EXPECT_EQ(folder.Run("grid info").exitCode, 2);
}

TEST(GridCommand, AFolderThatCannotBeWrittenIsNamed) {
  ProgramFolder folder;
  folder.Write("gr3df97a.txt", TestFile("datum/gr3df97a_paris.txt"));
  folder.Write("file", "in the way");
  const ProgramResult result = folder.Run("grid pack gr3df97a.txt --folder file");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("The grid could not be written to file/"));
  EXPECT_THAT(result.output, IsEmpty());
}

// bavaria.gtx covers 47 to 48 degrees N and 11 to 12 degrees E.
TEST(NewCommand, AGeoidIsCheckedWhenTheJobIsMadeAndNamedWhereItDoesNotReach) {
  ProgramFolder folder;
  folder.Write("bavaria.gtx", TestFile("datum/bavaria.gtx"));
  folder.Write("cut.gtx", TestFile("datum/bavaria.gtx").substr(0, 100));
  folder.Write("paris.gsb", TestFile("datum/paris.gsb"));
  const std::string make = "new a.crd --system \"UTM/UTM WGS84 Zone 32\" ";
  EXPECT_THAT(folder.Run(make + "--geoid none.gtx").errors, HasSubstr("none.gtx does not exist"));
  EXPECT_THAT(folder.Run(make + "--geoid cut.gtx").errors, HasSubstr("is cut short"));
  EXPECT_THAT(folder.Run(make + "--geoid paris.gsb").errors, HasSubstr("is a shift grid"));
  EXPECT_EQ(folder.Run("new a.crd --geoid bavaria.gtx").exitCode, 2);
  // What a system's own name brings is a file of the data folder.
  const ProgramResult byName =
      folder.Run("new a.crd --system \"UTM/UTM WGS84 Zone 32,GEOID=bavaria.gtx\"");
  EXPECT_EQ(byName.exitCode, 1);
  EXPECT_THAT(byName.errors, HasSubstr("bavaria.gtx does not exist"));
  EXPECT_THAT(folder.Run("points a.crd").errors, HasSubstr("There is no job a.crd"));

  const ProgramResult made = folder.Run(make + "--geoid bavaria.gtx");
  EXPECT_EQ(made.exitCode, 0) << made.errors;
  EXPECT_THAT(made.output, HasSubstr("Geoid: "));
  const ProgramResult inside = folder.Run("convert --job a.crd --explain", "47.5 11.5 600\n");
  EXPECT_EQ(inside.exitCode, 0) << inside.output;
  EXPECT_THAT(inside.output, HasSubstr("geoid"));
  // The simulated receiver walks at 9 degrees E.
  const ProgramResult outside = folder.Run("collect a.crd --receiver simulated");
  EXPECT_EQ(outside.exitCode, 1);
  EXPECT_THAT(outside.errors, HasSubstr("The point lies outside of the geoid model. ("));
  EXPECT_THAT(outside.errors, HasSubstr("bavaria.gtx)"));
}

}  // namespace
}  // namespace tarvex
