// Choosing and converting by coordinate systems, as a person types it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "tests/app/json_reading.h"
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
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_EQ(refused.output, "");
  EXPECT_THAT(refused.errors, HasSubstr("TOWGS84=dX,dY,dZ"));
  EXPECT_EQ(folder.Run("new site.crd --system \"" + system + "\"").exitCode, 1);
  EXPECT_EQ(folder.Run("new site.crd --datum-shift NONE").exitCode, 2);

  const std::string none = " --system \"" + system + "\" --datum-shift NONE";
  // By PROJ 9.1.1: the projection alone, and with +towgs84=10,20,30.
  EXPECT_EQ(folder.Run("convert --strict" + none, at).output, "3320535.9838 596488.7935 0.0000\n");
  const ProgramResult made = folder.Run("new site.crd" + none);
  EXPECT_EQ(made.exitCode, 0);
  EXPECT_THAT(made.errors, HasSubstr("hundreds of metres off"));
  EXPECT_THAT(folder.Run("raw site.crd").output, HasSubstr(system + ", datum shift NONE"));
  EXPECT_THAT(folder.Run("new alaska.crd --system \"USA/NAD27/Alaska zone 4\"").output,
              HasSubstr("Datum shift: NAD27 by the NADCON grids conus in "));
  EXPECT_EQ(folder.Run("convert --job site.crd", at).output, "3320535.9838 596488.7935 0.0000\n");
  EXPECT_EQ(folder.Run("convert --system \"" + system + "\" --datum-shift TOWGS84=10,20,30", at)
                .output.substr(0, 26),
            "3320518.7674 596503.1887 -");
  const ProgramResult wrong = folder.Run("new b.crd --system \"" + system + "\" --datum-shift X");
  EXPECT_EQ(wrong.exitCode, 1);
  EXPECT_THAT(wrong.errors, HasSubstr("There is no datum shift \"X\""));
}

// A code, a country and a name in any letter case lead to the same system; the job keeps its name.
TEST(Systems, AreFoundByCodeAndByCountry) {
  ProgramFolder folder;
  const std::string swiss = "EUROPE/CH1903+/LV95\n";
  EXPECT_THAT(folder.Run("systems switzerland").output, HasSubstr(swiss));
  EXPECT_THAT(folder.Run("systems switzerland --json").output, HasSubstr("Liechtenstein and Swi"));
  EXPECT_EQ(folder.Run("systems 2056").output, swiss);
  EXPECT_EQ(folder.Run("systems EPSG:2056").output, swiss);
  EXPECT_THAT(folder.Run("systems 999999").errors, HasSubstr("EPSG code"));
  const ProgramResult made = folder.Run("new site.crd --system epsg:25832");
  EXPECT_EQ(made.exitCode, 0) << made.errors;
  EXPECT_THAT(folder.Read("site.job"), HasSubstr("system=UTM/UTM ETRS89 Zone 32\n"));
  EXPECT_EQ(folder.Run("convert --job site.crd", "50 9\n").output,
            folder.Run("convert --system EPSG:25832", "50 9\n").output);
  EXPECT_EQ(folder.Run("new none.crd --system EPSG:1").exitCode, 1);
  EXPECT_THAT(folder.Run("new feet.crd --system \"USA/NAD83(HARN)/Texas Central (ftUS)\"").errors,
              HasSubstr("--units us-feet"));
}

// What the catalogue calls a job's system later is not what the job is on.
TEST(Systems, NoEditOfTheCatalogueMovesAJob) {
  ProgramFolder folder;
  const std::string zone = "UTM/UTM WGS84 Zone 33";
  const std::string at = "50 15.2 0\n";
  ASSERT_EQ(folder.Run("new site.crd --system \"" + zone + "\"").exitCode, 0);
  const std::string before = folder.Run("convert --job site.crd", at).output;
  EXPECT_EQ(before, "5538649.8667 514333.4100 0.0000\n");
  const std::string job = folder.Read("site.job");
  const std::string key = "\ndefinition=";
  ASSERT_NE(job.find(key), std::string::npos);
  std::string other = job.substr(job.find(key) + key.size());
  other = other.substr(0, other.find('\n'));
  other.replace(other.find("central_meridian\",15"), 20, "central_meridian\",12");
  folder.Write("other.wkt", other);
  ASSERT_EQ(folder.Run("systems --add \"utm/utm wgs84 zone 33\" --definition other.wkt").exitCode,
            0);
  EXPECT_EQ(folder.Run("convert --job site.crd", at).output, before);
  ASSERT_EQ(folder.Run("new own.crd --system \"" + zone + "\"").exitCode, 0);
  const std::string own = folder.Run("convert --job own.crd", at).output;
  EXPECT_NE(own, before);
  ASSERT_EQ(folder.Run("systems --rename \"" + zone + "\" SITE/Mine").exitCode, 0);
  ASSERT_EQ(folder.Run("systems --remove SITE/Mine").exitCode, 0);
  EXPECT_EQ(folder.Run("convert --job own.crd", at).output, own);
  // A job of before, with the name alone, asks the catalogue.
  folder.Write("site.job", "system=" + zone + "\n");
  EXPECT_EQ(folder.Run("convert --job site.crd", at).output, before);
}

// The user's catalogue is a text that anyone may edit: what it says is checked when it is used.
TEST(Systems, ADefinitionOfTheCatalogueIsCheckedWhenItIsUsed) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("systems zone 33").exitCode, 0);
  const std::string good = folder.Run("systems --json \"UTM WGS84 Zone 33\"").output;
  const std::string definition = JsonReading(good)["systems"][0]["definition"].text();
  const auto changed = [&](const std::string& from, const std::string& to) {
    std::string text = definition;
    EXPECT_NE(text.find(from), std::string::npos) << from;
    return text.replace(text.find(from), from.size(), to);
  };
  folder.Write("data/tarvex.csl",
               "A\t" + changed("UNIT[\"metre\",1]", "UNIT[\"US survey foot\",0.3048006]") +
                   "\nB\t" + changed("PRIMEM[\"Greenwich\",0]", "PRIMEM[\"Paris\",2.33722917]") +
                   "\nC\t" + changed("PARAMETER[\"false_easting\",500000],", "") + "\nE\x1b[2J\t" +
                   definition + "\nD\t" + definition + "\n");
  for (const char* name : {"A", "B", "C"}) {
    const ProgramResult result = folder.Run(std::string("convert --system ") + name, "50 15.2\n");
    EXPECT_EQ(result.exitCode, 1) << name;
    EXPECT_EQ(result.output, "") << name;
    EXPECT_EQ(folder.Run(std::string("new x.crd --system ") + name).exitCode, 1) << name;
    folder.Write("old.crd", "");
    folder.Write("old.job", std::string("system=") + name + "\n");
    EXPECT_EQ(folder.Run("convert --job old.crd", "50 15.2\n").exitCode, 1) << name;
  }
  EXPECT_EQ(folder.Run("convert --system D", "50 15.2\n").output, "5538649.8667 514333.4100\n");
  EXPECT_THAT(folder.Run("systems --own").output, Not(HasSubstr("\x1b")));
}

// A first start on a full disk, and a catalogue that was cut short once: the next start mends both.
TEST(Systems, TheDataFolderIsFilledWholeOrNotAtAll) {
  ProgramFolder folder;
  const std::string program = TARVEX_PROGRAM;
  folder.UseProgram("/bin/sh");
  const ProgramResult full =
      folder.Run("-c \"trap '' XFSZ; ulimit -f 1000; exec " + program + " systems zone 33\"");
  EXPECT_THAT(full.errors, HasSubstr("could not be filled"));
  folder.UseProgram(program);
  EXPECT_FALSE(std::filesystem::exists(folder.Path("data/Predef1.csl")));
  EXPECT_FALSE(std::filesystem::exists(folder.Path("data/Predef1.csl.tmp")));
  EXPECT_EQ(folder.Run("systems EPSG:2056").exitCode, 0);
  EXPECT_TRUE(std::filesystem::exists(folder.Path("data/NADConv/conus.las")));

  const std::string whole = folder.Read("data/Predef1.csl");
  const std::string cutIn = "PARAMETER[\"false_easting\",5";
  for (const std::size_t size : {whole.find(cutIn) + cutIn.size(), whole.size() - 1,
                                 whole.rfind("\n", whole.size() - 10) + 1, std::size_t{0}}) {
    folder.Write("data/Predef1.csl", whole.substr(0, size));
    EXPECT_EQ(folder.Run("convert --system \"UTM/UTM WGS84 Zone 33\"", "50 15.2\n").output,
              "5538649.8667 514333.4100\n");
    EXPECT_EQ(folder.Read("data/Predef1.csl"), whole) << size;
  }
}

TEST(Systems, EditsOfManyProgramsAreAllKept) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("systems zone 33").exitCode, 0);
  folder.Write(
      "one.wkt",
      JsonReading(folder.Run("systems --json EPSG:2056").output)["systems"][0]["definition"]
          .text());
  folder.UseProgram("/bin/sh");
  const std::string program = TARVEX_PROGRAM;
  ASSERT_EQ(folder
                .Run("-c \"for i in 1 2 3 4 5 6 7 8; do " + program +
                     " systems --add S$i --definition one.wkt & done; wait\"")
                .exitCode,
            0);
  folder.UseProgram(program);
  EXPECT_EQ(folder.Run("systems --own").output.size(), 8 * 3U);
  EXPECT_EQ(folder.Run("systems --add \"\" --definition one.wkt").exitCode, 1);
  EXPECT_EQ(folder.Run("systems --remove \"\"").exitCode, 1);
  EXPECT_EQ(folder.Run("systems --add A --definition one.wkt --remove S1").exitCode, 2);
  std::filesystem::remove(folder.Path("data/tarvex.csl"));
  std::filesystem::create_directory(folder.Path("data/tarvex.csl"));
  EXPECT_THAT(folder.Run("systems --own").errors, HasSubstr("cannot be read"));
}

// Another catalogue's systems, with a bad one and one that is there already.
TEST(Systems, TakesTheSystemsOfAnotherCatalogue) {
  ProgramFolder folder;
  EXPECT_EQ(folder.Run("systems --own").exitCode, 1);
  const std::string all = folder.Run("systems --json \"UTM WGS84 Zone 32\"").output;
  const std::string definition = JsonReading(all)["systems"][0]["definition"].text();
  folder.Write("office.sys", "# of the office\nSITE/North\t" + definition + "\nSITE/South\t" +
                                 definition + "\nSITE/Bad\tPROJCS[\"x\"]\nOTHER/One\t" +
                                 definition + "\n");
  const ProgramResult taken = folder.Run("systems --import office.sys site");
  EXPECT_EQ(taken.exitCode, 1);
  EXPECT_THAT(taken.output, HasSubstr("Took 2 of 3 systems into your catalogue"));
  EXPECT_THAT(taken.errors, HasSubstr("SITE/Bad: The definition names no datum"));
  EXPECT_EQ(folder.Run("systems --own").output, "SITE/North\nSITE/South\n");
  const ProgramResult again = folder.Run("systems --import office.sys");
  EXPECT_THAT(again.errors, HasSubstr("SITE/North: The catalogue already holds"));
  EXPECT_THAT(again.output, HasSubstr("Took 1 of 4"));
  EXPECT_EQ(folder.Run("convert --system \"site/south\"", "46.8 9.3\n").exitCode, 0);
  EXPECT_EQ(folder.Run("systems --import none.csl").exitCode, 1);
  EXPECT_EQ(folder.Run("systems --import office.sys nothing").exitCode, 1);
}

// Angles as people write them; anything that could be read in two ways is refused.
TEST(Convert, TakesDegreesMinutesAndSeconds) {
  ProgramFolder folder;
  const std::string utm = "convert --system \"UTM/UTM WGS84 Zone 32\" --decimals 3";
  const std::string expected = folder.Run(utm, "46.504305556 9.341805556 1100\n").output;
  const char* const same[] = {
      "46°30'15.5\"N 9°20'30.5\"E 1100", "9°20'30.5\"E, 46°30'15.5\"N, 1100",
      "N46 30 15.5 E9 20 30.5 1100",     "46:30:15.5 9:20:30.5 1100",
      "46 30 15.5 9 20 30.5 1100",       "46d30'15.5\" 9d20'30.5\" 1100",
      "46° 30′ 15.5″ 9° 20′ 30.5″ 1100", "46°30'15.5''n 9°20'30.5''e 1100",
      "46 30 15.5N 9 20 30.5E 1100",     "46-30-15.5 9-20-30.5 1100",
      "46-30-15.5N 9-20-30.5E 1100",
  };
  std::string input;
  std::string output;
  for (const char* const line : same) {
    input += std::string(line) + "\n";
    output += expected;
  }
  EXPECT_EQ(folder.Run(utm, input).output, output);
  // West and south, minutes with decimals, no height.
  EXPECT_EQ(
      folder.Run(utm, "0 30 0 S 9 30 0 E\n-0:30 9:30\n0°30.0'S 9°30.0'E\n-0-30 9-30\n").output,
      folder.Run(utm, "-0.5 9.5\n-0.5 9.5\n-0.5 9.5\n-0.5 9.5\n").output);
  for (const char* const line :
       {"1 2 3 4", "46 30 9 20", "46°30' 9.5", "46°30'15\"N 9°20'30\"N", "46°61' 9°20'",
        "46 30.5 15 9 2 3", "46:30:15", "46°30' x", "46-30- 9-20-1", "46.5-30 9",
        "46:30:15 9:20:30 5 6", "-46°30'N 9°20'E"}) {
    const ProgramResult result = folder.Run(utm, std::string(line) + "\n");
    EXPECT_EQ(result.exitCode, 1) << line;
    EXPECT_THAT(result.output, HasSubstr("ERROR: line 1: ")) << line;
  }
  EXPECT_THAT(folder.Run(utm, "120.5 46.8\n").output, HasSubstr("swapped"));
  EXPECT_THAT(folder.Run(utm, "97 30 15N 8 45 0E\n").output, Not(HasSubstr("swapped")));
  EXPECT_THAT(folder.Run(utm + " --inverse", "1 2 3 4\n").output, HasSubstr("more than three"));
}

// A file and the standard input, in blocks: lines of every length across their borders, the last
// without its end, one longer than a block, and each in its place.
TEST(Convert, BlocksGiveWhatLinesGive) {
  ProgramFolder folder;
  const std::string utm = "convert --system \"UTM/UTM WGS84 Zone 32\"";
  std::string input;
  std::string expected;
  std::vector<std::string> lines = {
      "46.8 9.3 1100", "46.8 9.3", "", "x", "46.8,9.3,5", "0 99", "46.8   9.30000000000000001 -3"};
  std::vector<std::string> answers;
  for (const std::string& line : lines) {
    std::string answer = folder.Run(utm + " --explain", line + "\n").output;
    answers.push_back(answer.substr(0, answer.find('\n')));
  }
  for (int i = 1; i <= 40000; ++i) {
    const std::size_t which = static_cast<std::size_t>(i * 7919 / 3) % lines.size();
    input += lines[which] + (i % 5 == 0 ? "\r\n" : "\n");
    std::string answer = answers[which];
    if (answer.starts_with("ERROR: line 1:")) answer.replace(12, 1, std::to_string(i));
    expected += answer + "\n";
  }
  input += std::string(600000, '7') + "\n" + lines[0];
  const ProgramResult piped = folder.Run(utm, input);
  EXPECT_EQ(piped.exitCode, 1);
  ASSERT_GT(piped.output.size(), expected.size());
  EXPECT_EQ(piped.output.substr(0, expected.size()), expected);
  EXPECT_TRUE(piped.output.ends_with("\n" + answers[0] + "\n"));
  folder.Write("in.txt", input);
  EXPECT_EQ(folder.Run(utm + " in.txt").output, piped.output);
  EXPECT_THAT(folder.Run(utm + " none.txt").errors, HasSubstr("none.txt cannot be read"));
}

// One object a line, so that lines of any number can be read as they come.
TEST(Convert, JsonGivesTheSameStepsToAnotherProgram) {
  ProgramFolder folder;
  const std::string dutch = "convert --system NETHERLANDS/Amersfoort/RD2004 --json";
  const ProgramResult result = folder.Run(dutch + " --explain", "52.1 5.4 43\n\nx 1\n52.2 5.4\n");
  EXPECT_EQ(result.exitCode, 1);
  std::istringstream lines(result.output);
  std::vector<JsonReading> read;
  for (std::string line; std::getline(lines, line);) read.emplace_back(line);
  ASSERT_EQ(read.size(), 3U);
  EXPECT_EQ(read[0]["line"], 1);
  EXPECT_NEAR(read[0]["northing"].number(), 456861.6177, 1e-4);
  EXPECT_THAT(read[0]["left_undone"].text(), HasSubstr("X2c.grd"));
  std::vector<std::string> steps;
  std::vector<std::string> states;
  for (const auto& step : read[0]["steps"].values()) {
    steps.push_back(step["step"].text());
    states.push_back(step["status"].text());
  }
  EXPECT_THAT(steps, ElementsAre("WGS84", "datum shift", "projection", "grid correction", "job"));
  EXPECT_THAT(states, ElementsAre("done", "done", "done", "left undone", "done"));
  EXPECT_EQ(read[0]["steps"][0]["latitude"], 52.1);
  EXPECT_EQ(read[1],
            JsonReading(R"({"line":3,"error":"\"x\" is not a number or an angle","steps":[]})"));
  EXPECT_FALSE(read[2].Has("elevation"));

  const ProgramResult strict = folder.Run(dutch + " --strict", "52.1 5.4 43\n");
  EXPECT_EQ(strict.exitCode, 1);
  EXPECT_FALSE(JsonReading(strict.output).Has("northing"));
  // A step that is refused has no value.
  const auto refused = JsonReading(
      folder
          .Run("convert --system \"UTM/UTM WGS84 Zone 32,GEOID=none.gtx\" --explain --json",
               "52 9 0\n")
          .output);
  EXPECT_EQ(refused["steps"][1]["status"], "refused");
  EXPECT_FALSE(refused["steps"][1].Has("undulation"));
  // The way back, full numbers.
  const auto back = JsonReading(
      folder.Run("convert --inverse --json --system \"UTM/UTM WGS84 Zone 32\"", "5e6 5e5 1\n")
          .output);
  EXPECT_NEAR(back["latitude"].number(), 45.1534771834, 1e-9);
  EXPECT_EQ(back["longitude"], 9.0);
  EXPECT_EQ(back["height"], 1.0);
}

}  // namespace
}  // namespace tarvex
