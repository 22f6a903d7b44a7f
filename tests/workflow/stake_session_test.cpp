// Staking, without a process and without waiting.
#include "app/workflow/stake_session.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "tests/workflow/field_site.h"

namespace tarvex {
namespace {

using testing::HasSubstr;

// A stake at a point of the grid, on it within 5 cm.
class PlainGuide final : public StakeGuide {
 public:
  StakeView Show(const StakePosition& at, bool good, const std::string&) override {
    ++shown;
    last = at;
    goodShown += good ? 1 : 0;
    return good && shown >= onStakeFrom ? StakeView::OnTheStake : StakeView::Shown;
  }
  double PreciseHrms() const override { return preciseHrms; }
  void TakeStored(const StakePosition& at) override { stored = at; }
  std::string Description() const override { return "stake " + std::to_string(shown); }
  std::vector<std::string> Records() const override { return {"\n--Stake: design here"}; }

  int shown = 0;
  int goodShown = 0;
  int onStakeFrom = 1000;
  double preciseHrms = 0.015;
  StakePosition last;
  StakePosition stored;
};

class Staking : public FieldSite {
 protected:
  Staking() {
    plan.receiver = ConnectedReceiver();
    plan.store = true;
    session->job().ids.current = "S1";
  }

  SessionEnd Run() {
    StakeSession staking(
        work, *session, calculator, plan, guide, listener, commands, [this] { return stop; },
        Ports());
    return staking.Run();
  }

  std::string Epochs(int from, int count, int quality = 4) {
    std::string text;
    for (int second = from; second < from + count; ++second) text += Epoch(second, quality);
    return text;
  }

  StakePlan plan;
  PlainGuide guide;
  bool stop = false;
};

TEST_F(Staking, StoresOnTheWordWithTheRecordsOfACollectedPoint) {
  connections = {{Epochs(0, 20)}};
  listener.then = [&](const SessionEvent&) {
    if (guide.shown == 5) commands.Send(StoreNow{});
  };
  EXPECT_EQ(Run(), SessionEnd::Complete);
  ASSERT_EQ(listener.Of<PointStored>().size(), 1U);
  EXPECT_EQ(listener.Of<PointStored>()[0].point.description.view(),
            "stake " + std::to_string(guide.shown));
  EXPECT_THAT(Raw(), HasSubstr("\nGPS,PNS1,"));
  EXPECT_THAT(Raw(), HasSubstr("\n--HRMS:0.010, VRMS:0.020, STATUS:FIXED"));
  EXPECT_TRUE(Raw().ends_with("\n--Stake: design here"));
  EXPECT_THAT(Notes(), HasSubstr("PT_ID:S1\nHRMS,0.010\n"));
}

// Design, found and difference are those of the mean that is stored, not of its last epoch.
TEST_F(Staking, SaysOfTheStoredMeanHowFarOffItIs) {
  plan.average = 2;
  std::string input;
  for (int second = 0; second < 20; ++second) {
    std::string epoch = Epoch(second);
    const std::size_t gga = epoch.find("$GNGGA");
    std::string body = epoch.substr(gga + 1, epoch.find('*', gga) - gga - 1);
    body.replace(body.find("4717.112"), 8, second % 2 == 0 ? "4717.112" : "4717.113");
    input += epoch.substr(0, gga) + WithChecksum(body);
  }
  connections = {{input}};
  listener.then = [&](const SessionEvent&) {
    if (guide.shown == 5) commands.Send(StoreNow{});
  };
  EXPECT_EQ(Run(), SessionEnd::Complete);
  ASSERT_EQ(listener.Of<PointStored>().size(), 1U);
  const GridPoint at = listener.Of<PointStored>()[0].point.at;
  EXPECT_EQ(guide.stored.northing, at.northing);
  EXPECT_EQ(guide.stored.elevation, at.elevation);
  EXPECT_GT(std::abs(guide.last.northing - at.northing), 0.5);
}

TEST_F(Staking, TakesTheDescriptionThatAPersonTyped) {
  connections = {{Epochs(0, 20)}};
  listener.then = [&](const SessionEvent&) {
    if (guide.shown != 5) return;
    commands.Send(SetDescription{"tree"});
    commands.Send(StoreNow{});
  };
  EXPECT_EQ(Run(), SessionEnd::Complete);
  ASSERT_EQ(listener.Of<PointStored>().size(), 1U);
  EXPECT_EQ(listener.Of<PointStored>()[0].point.description.view(), "tree");
}

TEST_F(Staking, StoresNothingWhenItEndsOrTheLinkIsLost) {
  connections = {{Epochs(0, 5), true}};
  plan.patienceMs = 5000;
  EXPECT_EQ(Run(), SessionEnd::NoPosition);
  connections = {{Epochs(10, 5)}};
  listener.then = [&](const SessionEvent& event) {
    if (std::holds_alternative<PositionSeen>(event)) stop = guide.shown > 6;
  };
  EXPECT_EQ(Run(), SessionEnd::Asked);
  EXPECT_TRUE(listener.Of<PointStored>().empty());
  EXPECT_EQ(memory.Bytes(kSitePath).size(), 104U);
}

TEST_F(Staking, KeepsTheLimitsAndTheToleranceForTheWord) {
  plan.gate.solution = SolutionType::Fixed;
  guide.onStakeFrom = 3;
  plan.storeOnStake = true;
  connections = {{Epochs(0, 8, 2) + Epochs(8, 8)}};
  EXPECT_EQ(Run(), SessionEnd::Complete);
  EXPECT_EQ(guide.shown, 9);  // eight DGPS positions are shown and not stored
  EXPECT_EQ(guide.goodShown, 1);
  EXPECT_EQ(listener.Of<PointStored>().size(), 1U);
}

// The epochs have an HRMS of 0.010; that of the first also holds while no other comes.
TEST_F(Staking, SaysWhyAFixedPositionIsNotOnTheStake) {
  guide.onStakeFrom = 1;
  guide.preciseHrms = 0.009;
  plan.storeOnStake = true;
  std::string positionsAlone = Epoch(10);
  for (int second = 11; second < 18; ++second) {
    const std::string epoch = Epoch(second);
    positionsAlone += epoch.substr(epoch.find("$GNGGA"));
  }
  for (const std::string& input : {Epochs(0, 8), positionsAlone}) {
    connections = {{input, true}};
    plan.patienceMs = 5000;
    listener.events.clear();
    EXPECT_EQ(Run(), SessionEnd::NoPosition);
    EXPECT_TRUE(listener.Of<PointStored>().empty());
    EXPECT_GT(guide.shown, 5);
    EXPECT_EQ(guide.goodShown, 0);
    const auto warnings = listener.Of<SessionWarning>();
    EXPECT_EQ(std::count_if(warnings.begin(), warnings.end(),
                            [](const SessionWarning& warning) {
                              return warning.sentence.starts_with("The HRMS is above 0.009");
                            }),
              1);
  }
}

}  // namespace
}  // namespace tarvex
