// What was staked, read back from the raw file, and what is chosen to be staked.
#include "app/workflow/stake_report.h"

#include <gmock/gmock.h>

#include <cmath>

#include "app/workflow/stake_selection.h"
#include "core/raw_data/raw_records.h"

namespace tarvex {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

StakeRecord Stake(const std::string& design, double dN, double dE, std::optional<double> dEl) {
  StakeRecord stake = MakeStakeRecord(design, {100.0, 200.0, dEl ? 50.0 : 0.0}, dEl.has_value(),
                                      {100.0 + dN, 200.0 + dE, 50.0 + dEl.value_or(0.0)});
  stake.horizontalTolerance = 0.02;
  stake.verticalTolerance = 0.01;
  stake.withinTolerance = stake.distance <= 0.02;
  return stake;
}

// As a session writes it behind an observation.
std::string Unit(const std::string& id, const StakeRecord& stake, const std::string& time,
                 const std::string& solution = "FIXED") {
  const Point point{.at = stake.foundAt, .description = {}, .id = PointId(id)};
  return "\n--DT11-21-2026\n--TM" + time + "\nGPS,PN" + id +
         ",LA46.485461987423,LN9.160270887632,EL1101.398114,--" + GnssGridRecord(point, "") +
         "\n--HRMS:0.010, VRMS:0.016, STATUS:" + solution + ", SATS:12" + StakeComments(stake);
}

std::vector<std::string> IdsOf(const StakeReport& report) {
  std::vector<std::string> ids;
  for (const StakedPoint& staked : report.stakes) ids.push_back(staked.id.str());
  return ids;
}

TEST(StakeReport, ReadsBackWhatWasWritten) {
  const StakeRecord odd = Stake("a, \"b\" <i>", -0.003, 0.004, std::nullopt);
  const std::string raw =
      "JB,NMsite" + Unit("S1", Stake("12", 0.006, -0.008, -0.0125), "06:51:40") +
      Unit("S2", odd, "07:00:00", "FLOAT") + Unit("S3", Stake("13", 0.0, 0.03, 0.005), "07:10:00");
  const StakeReport report = MakeStakeReport(raw, true);
  EXPECT_TRUE(report.broken.empty());
  ASSERT_THAT(IdsOf(report), ElementsAre("S1", "S2", "S3"));
  const StakedPoint& first = report.stakes[0];
  EXPECT_EQ(first.stake.design, "12");
  EXPECT_EQ(first.stake.foundAt, (GridPoint{100.006, 199.992, 49.9875}));
  EXPECT_EQ(first.stake.difference.elevation, -0.0125);
  EXPECT_EQ(first.stake.distance, 0.01);
  EXPECT_EQ(first.time, "06:51:40");
  EXPECT_EQ(report.stakes[1].solution, "FLOAT");
  EXPECT_EQ(report.stakes[1].stake.design, odd.design);
  EXPECT_FALSE(report.stakes[1].stake.designHasElevation);
  EXPECT_EQ(report.within, 2U);
  EXPECT_EQ(report.horizontal.worst, 0.03);
  EXPECT_EQ(report.horizontal.worstOf, "13");
  EXPECT_NEAR(report.horizontal.rms, std::sqrt((1e-4 + 0.25e-4 + 9e-4) / 3.0), 1e-12);
  EXPECT_EQ(report.vertical.count, 2U);
  EXPECT_NEAR(report.vertical.rms, std::sqrt((0.0125 * 0.0125 + 0.005 * 0.005) / 2.0), 1e-12);

  const std::string csv = StakeReportCsv(report);
  EXPECT_THAT(csv, HasSubstr("\r\nS2,\"a, \"\"b\"\" <i>\",100.0000,200.0000,,,99.9970,200.0040,"
                             "50.0000,-0.0030,0.0040,,0.0050,0.0200,,yes,FLOAT,11-21-2026,07:00:00"
                             "\r\n"));
  EXPECT_EQ(csv, StakeReportCsv(MakeStakeReport(raw, true)));
  const std::string html = StakeReportHtml(report);
  EXPECT_THAT(html, HasSubstr("<td>a, &quot;b&quot; &lt;i&gt;</td>"));
  EXPECT_EQ(html.find("<i>"), std::string::npos);
  EXPECT_THAT(html, HasSubstr("<tr class=\"off\"><td>S3</td>"));
}

// A stake counts as long as the point is where it was staked.
TEST(StakeReport, LeavesOutWhatIsNoLongerThere) {
  const StakeRecord stake = Stake("12", 0.006, -0.008, 0.0);
  const StakeRecord again = Stake("12", 0.001, 0.0, 0.0);
  const Point point{.at = stake.foundAt, .description = {}, .id = PointId("S1")};
  const std::string once = "JB,NMsite" + Unit("S1", stake, "06:51:40");
  EXPECT_EQ(MakeStakeReport(once, true).stakes.size(), 1U);
  EXPECT_TRUE(MakeStakeReport(once + DeletedPointRecord(point), true).stakes.empty());
  EXPECT_TRUE(MakeStakeReport(once + TakenBackPointRecord(point), true).stakes.empty());
  const Point typed{.at = {1.0, 2.0, 3.0}, .description = {}, .id = PointId("S1")};
  EXPECT_TRUE(MakeStakeReport(once + StoredPointRecord(typed, ""), true).stakes.empty());
  const auto restaked = MakeStakeReport(once + Unit("S1", again, "08:00:00"), true).stakes;
  ASSERT_EQ(restaked.size(), 1U);
  EXPECT_EQ(restaked[0].time, "08:00:00");
}

TEST(StakeReport, NamesWhatIsNoWholeStake) {
  std::string raw = "JB,NMsite" + Unit("S1", Stake("12", 0.0, 0.0, 0.0), "06:51:40");
  raw.replace(raw.find("HD0.0000"), 8, "HDx.0000");
  const StakeReport report = MakeStakeReport(raw, true);
  EXPECT_TRUE(report.stakes.empty());
  ASSERT_EQ(report.broken.size(), 1U);
  EXPECT_EQ(report.broken[0].line, 9U);
}

class Selecting : public testing::Test {
 protected:
  Selecting() {
    for (const char* id : {"1", "2", "9", "10", "11", "A5", "S1"}) {
      job.points.push_back({.at = {100.0, 200.0, 50.0}, .description = {}, .id = PointId(id)});
    }
    job.points[1].at.elevation = 0.0;
    raw = "JB,NMsite" + Unit("10", Stake("2", 0.0, 0.0, std::nullopt), "06:51:40");
    job.staked = MakeStakeReport(raw, true);
  }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const StakeDesign& design : designs) names.push_back(design.name);
    return names;
  }

  StakeableJob job;
  std::string raw;
  std::vector<StakeDesign> designs;
  std::string problem;
};

// Ranges go by the order of ids, not of text, and hold no stake; an elevation of 0 is none.
TEST_F(Selecting, TakesPointsAndRanges) {
  const std::vector<std::string> words = {"a5", "2..11"};
  ASSERT_TRUE(SelectPoints(job, words, designs, problem)) << problem;
  EXPECT_THAT(Names(), ElementsAre("A5", "2", "9", "11"));
  EXPECT_FALSE(designs[1].elevation);
  EXPECT_EQ(designs[2].elevation, 50.0);
  EXPECT_TRUE(WasStaked(job, designs[1]));
  EXPECT_FALSE(WasStaked(job, designs[2]));
  EXPECT_FALSE(SelectPoints(job, std::vector<std::string>{"77"}, designs, problem));
  EXPECT_EQ(problem, "There is no point 77 in the job.");
  EXPECT_FALSE(SelectPoints(job, std::vector<std::string>{"50..60"}, designs, problem));
}

TEST_F(Selecting, TakesAListOfPointsAndCoordinates) {
  ASSERT_TRUE(
      SelectFromList(job, "# gate\n\n9\nP1, 10.5,20.5\nP2,1,2,3,post\r\n", designs, problem))
      << problem;
  EXPECT_THAT(Names(), ElementsAre("9", "P1", "P2"));
  EXPECT_EQ(designs[1].easting, 20.5);
  EXPECT_FALSE(designs[1].elevation);
  EXPECT_EQ(designs[2].elevation, 3.0);
  EXPECT_FALSE(SelectFromList(job, "9\nP1,10.5,east\n", designs, problem));
  EXPECT_THAT(problem, HasSubstr("Line 2: "));
  EXPECT_FALSE(SelectFromList(job, "8\n", designs, problem));
  EXPECT_THAT(problem, EndsWith("There is no point 8 in the job."));
}

}  // namespace
}  // namespace tarvex
