// Setting out points and lines, as a person does it at the terminal.
#include <gmock/gmock.h>

#include <filesystem>
#include <utility>

#include "tests/app/json_reading.h"
#include "tests/app/program_run.h"

namespace tarvex {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

// The rover of docs/roads/rover.nmea walks 8 m to the northeast, to 5184687.81 520489.54 1101.593.
class StakeCommand : public testing::Test {
 protected:
  StakeCommand() {
    std::filesystem::copy_file(std::string(TARVEX_TEST_DATA) + "/../../docs/roads/rover.nmea",
                               folder_.Path("rover.nmea"));
    folder_.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"");
    folder_.Write("plan.csv",
                  "1,5184687.806,520489.540,1101.59,nail\n"
                  "2,5184680.0,520480.0,1101,x\n"
                  "3,5184690,520500,0,y\n");
    folder_.Run("import site.crd plan.csv");
  }

  ProgramResult Stake(const std::string& words) {
    return folder_.Run("stake site.crd " + words + " --receiver file:rover.nmea");
  }

  ProgramFolder folder_;
};

TEST_F(StakeCommand, StakesAPointAndReportsIt) {
  const ProgramResult shown = Stake("1");
  EXPECT_EQ(shown.exitCode, 0) << shown.errors;
  EXPECT_THAT(shown.output,
              HasSubstr("FIXED: to 1  N 6.202  E 8.097  distance 10.199 at 52°32'57\"  C 0.648\n"
                        "FIXED: to 1  forward 3.879  left 0.087  N 2.402  E 3.047  "));
  EXPECT_EQ(folder_.Run("stake report site.crd").output, "Nothing was staked in this job.\n");

  const ProgramResult stored = Stake("1 --store-on-stake --first S1");
  EXPECT_EQ(stored.exitCode, 0) << stored.errors;
  EXPECT_THAT(stored.output, EndsWith("ON THE STAKE\nStored point S1 for 1: N 0.004, E -0.001, EL "
                                      "0.003, distance 0.004, within the tolerance.\n"));
  EXPECT_EQ(folder_.Run("check site.crd").exitCode, 0);

  const ProgramResult report = folder_.Run("stake report site.crd stakes.csv --csv");
  EXPECT_EQ(report.errors, "Wrote stakes.csv.\n");
  EXPECT_THAT(folder_.Read("stakes.csv"),
              HasSubstr("\r\nS1,1,5184687.8060,520489.5400,1101.5900,,5184687.8101,520489.5392,"
                        "1101.5930,0.0041,-0.0008,0.0030,0.0042,0.0200,0.0100,yes,FIXED,"));
  EXPECT_EQ(folder_.Run("stake report site.crd stakes.csv --csv").exitCode, 1);  // it exists
  const JsonReading json(folder_.Run("stake report site.crd --json").output);
  EXPECT_EQ(json["horizontal"]["largest"], 0.0042);
}

// What was staked comes up no more in a list, and all of it is told.
TEST_F(StakeCommand, SkipsWhatWasStakedBefore) {
  ASSERT_EQ(Stake("1 --store-on-stake --first S1").exitCode, 0);
  folder_.Write("gate.txt", "1\n");
  EXPECT_THAT(Stake("1..2").errors, HasSubstr("1 of 2 are staked already and come up no more.\n"));
  folder_.Write("both.txt", "1\n1\n");
  const ProgramResult all = Stake("--list both.txt");
  EXPECT_EQ(all.exitCode, 1);
  EXPECT_THAT(all.errors, HasSubstr("2 of 2 are staked already. (--again stakes them once more.)"));
  EXPECT_EQ(Stake("--list both.txt --again").exitCode, 0);
}

TEST_F(StakeCommand, SetsOutLinesAndArcs) {
  EXPECT_THAT(Stake("--line 2 1").output,
              HasSubstr("FIXED: at 12.329 0.004 L (after the end)  back 0.002  right 0.004  "));
  const std::string events =
      Stake("--arc 1 2 --radius 20 --station 3 --offset 1 --count 1 --json").output;
  const std::size_t stake = events.find("{\"event\":\"stake\"");
  ASSERT_NE(stake, std::string::npos) << events;
  const JsonReading arc(events.substr(stake, events.find('\n', stake) - stake));
  EXPECT_EQ(arc["target"], "1-2 3.000 1.000 R");
  EXPECT_EQ(arc["forward_from"], "alignment");
  // The plan's third point has no elevation, so the line has none either.
  const ProgramResult flat = Stake("--line 2 3 --interval 5 --in-order --count 1");
  EXPECT_EQ(flat.output.find("  C "), std::string::npos);
  EXPECT_THAT(flat.errors, HasSubstr("Now 2-3 0.000 0.000: N 5184680.0000  E 520480.0000  "
                                     "(no elevation)  (6 of 6 open)"));
}

// The tolerances are of the ground: a fix of 8 mm is as good in a job in feet, staked by its points
// or by a road.
TEST_F(StakeCommand, IsOnTheStakeInFeetAsInMetres) {
  folder_.Run("new feet.crd --units us-feet --system \"UTM/UTM WGS84 Zone 32\"");
  folder_.Run("store feet.crd 1 17010096.577 1707639.432 3614.133");
  const ProgramResult stored =
      folder_.Run("stake feet.crd 1 --receiver file:rover.nmea --store-on-stake --first S1");
  EXPECT_EQ(stored.exitCode, 0) << stored.errors;
  EXPECT_THAT(stored.output, HasSubstr(", within the tolerance.\n"));
  EXPECT_THAT(folder_.Read("feet.rw5"), HasSubstr(",HT0.0656,VT0.0328,--within tolerance"));
  EXPECT_EQ(folder_
                .Run("stake feet.crd 1 --receiver file:rover.nmea --store-on-stake --again "
                     "--tolerance 0.02")
                .exitCode,
            1);
}

TEST_F(StakeCommand, SaysWhatIsWrong) {
  const std::pair<const char*, const char*> uses[] = {
      {"", "Say what is to be staked"},
      {"1 --line 1 2", "one of them at a time"},
      {"77", "There is no point 77 in the job."},
      {"8..9", "There are no points from 8 to 9"},
      {"1 --station 5", "--station, --offset and --interval are places along a --line"},
      {"--line 1 2 --station 5 --interval 1", "not both"},
      {"--line 1 2 --interval 0", "--interval is a distance above 0"},
      {"--line 1 1", "are one place"},
      {"--line 1 2 --store-on-stake", "needs a place on the line"},
      {"--arc 1 2", "needs --radius"},
      {"--arc 1 2 --radius 1", "too short to reach from 1 to 2"},
      {"--arc 1 2 3", "the two radii differ by"},
      {"1 --radius 5", "--radius belongs to --arc"},
      {"1 --toward 99", "There is no point 99"},
      {"1 --from-north --toward 2", "do not go together"},
      {"1 --first TOOLONG --tolerance 0", "not above"},
      {"--list none.txt", "none.txt: It cannot be read"},
      {"1 --elevation nan", "--elevation: \"nan\""}};
  for (const auto& [words, problem] : uses) {
    const ProgramResult result = Stake(words);
    EXPECT_NE(result.exitCode, 0) << words;
    EXPECT_THAT(result.errors, HasSubstr(problem)) << words;
    EXPECT_EQ(result.output, "") << words;
  }
  EXPECT_EQ(folder_.Run("stake").exitCode, 2);
  EXPECT_EQ(folder_.Run("stake report").exitCode, 2);
}

}  // namespace
}  // namespace tarvex
