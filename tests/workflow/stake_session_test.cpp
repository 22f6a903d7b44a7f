// Staking, without a process and without waiting.
#include "app/workflow/stake_session.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "tests/workflow/field_site.h"

namespace tarvex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// Keeps the events of both kinds, and may act on each position shown.
class StakeEvents final : public StakeListener {
 public:
  void On(const SessionEvent& event) override { session.On(event); }
  void OnStake(const StakeEvent& event) override {
    events.push_back(event);
    if (const auto* seen = std::get_if<StakeSeen>(&event); seen != nullptr && then) {
      then(Of<StakeSeen>().size());
    }
  }
  template <typename Event>
  std::vector<Event> Of() const {
    std::vector<Event> found;
    for (const StakeEvent& event : events) {
      if (const auto* of = std::get_if<Event>(&event)) found.push_back(*of);
    }
    return found;
  }
  std::vector<PointStored> Stored() const { return session.Of<PointStored>(); }

  RememberingListener session;
  std::vector<StakeEvent> events;
  std::function<void(std::size_t shown)> then;
};

class Staking : public FieldSite {
 protected:
  Staking() {
    plan.receiver = ConnectedReceiver();
    plan.store = plan.mustStore = true;
    session->job().ids.current = "S1";
    GnssPositionState site;
    site.latitude = 47.0 + 17.112 / 60.0;
    site.longitude = 9.0 + 15.912 / 60.0;
    site.height = 547.6;
    rover = PlaceOnGrid(site, calculator, 0.0, DistanceUnit::Metres).at;
  }

  /// A point so far north and east of the rover, and so far below it.
  void AddTarget(const std::string& name, double north, double east,
                 std::optional<double> below = 0.0) {
    StakeDesign design{.name = name,
                       .northing = rover.northing + north,
                       .easting = rover.easting + east,
                       .elevation = {}};
    if (below) design.elevation = rover.elevation - *below;
    targets.Add(std::make_unique<PointTarget>(design));
  }

  SessionEnd Run() {
    StakeSession staking(
        work, *session, calculator, plan, targets, listener, commands, [this] { return stop; },
        Ports());
    return staking.Run();
  }

  std::string Epochs(int from, int count, int quality = 4) {
    std::string text;
    for (int second = from; second < from + count; ++second) text += Epoch(second, quality);
    return text;
  }

  std::vector<std::string> NamesTaken() const {
    std::vector<std::string> names;
    for (const TargetTaken& target : listener.Of<TargetTaken>()) names.push_back(target.name);
    return names;
  }

  StakePlan plan;
  GridPoint rover;
  StakeList targets;
  StakeEvents listener;
  bool stop = false;
};

TEST_F(Staking, StoresOnTheWordWithTheRecordsOfACollectedPoint) {
  AddTarget("12", -0.003, 0.004, 0.006);
  connections = {{Epochs(0, 20)}};
  listener.then = [&](std::size_t shown) {
    if (shown == 5) commands.Send(StoreNow{});
  };
  EXPECT_EQ(Run(), SessionEnd::Complete);
  const auto stakes = listener.Of<StakeStored>();
  ASSERT_EQ(stakes.size(), 1U);
  EXPECT_EQ(stakes[0].point, listener.Stored().at(0).point);
  EXPECT_EQ(stakes[0].point.description.view(), "12 C 0.01");
  EXPECT_TRUE(stakes[0].record.withinTolerance);
  EXPECT_TRUE(listener.Of<StakeSeen>().back().onStake);
  EXPECT_THAT(Raw(), HasSubstr("\nGPS,PNS1,"));
  EXPECT_THAT(Raw(), HasSubstr("\n--HRMS:0.010, VRMS:0.020, STATUS:FIXED"));
  EXPECT_TRUE(
      Raw().ends_with("\n--Stake difference:N 0.0030,E -0.0040,EL0.0060,HD0.0050,HT0.0200,"
                      "VT0.0100,--within tolerance"));
  EXPECT_THAT(Notes(), HasSubstr("PT_ID:S1\nHRMS,0.010\n"));
}

// Design, found and difference are those of the mean that is stored, not of its last epoch: the
// mean of two places 1.85 m apart is on the stake between them.
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
  AddTarget("12", 0.9265, 0.0);
  connections = {{input}};
  listener.then = [&](std::size_t shown) {
    if (shown == 5) commands.Send(StoreNow{});
  };
  EXPECT_EQ(Run(), SessionEnd::Complete);
  ASSERT_EQ(listener.Stored().size(), 1U);
  const GridPoint at = listener.Stored()[0].point.at;
  const StakeStored stake = listener.Of<StakeStored>().at(0);
  EXPECT_EQ(stake.record.foundAt, at);
  EXPECT_TRUE(stake.record.withinTolerance);
  EXPECT_GT(listener.Of<StakeSeen>().back().relation.deltas.distance, 0.9);
  EXPECT_TRUE(listener.Of<StakeDoubted>().empty());
}

TEST_F(Staking, TakesTheDescriptionThatAPersonTyped) {
  AddTarget("12", 0.0, 0.0);
  connections = {{Epochs(0, 20)}};
  listener.then = [&](std::size_t shown) {
    if (shown != 5) return;
    commands.Send(SetDescription{"tree"});
    commands.Send(StoreNow{});
  };
  EXPECT_EQ(Run(), SessionEnd::Complete);
  ASSERT_EQ(listener.Stored().size(), 1U);
  EXPECT_EQ(listener.Stored()[0].point.description.view(), "tree");
}

TEST_F(Staking, StoresNothingWhenItEndsOrTheLinkIsLost) {
  AddTarget("12", 0.0, 0.0);
  connections = {{Epochs(0, 5), true}};
  plan.patienceMs = 5000;
  EXPECT_EQ(Run(), SessionEnd::NoPosition);
  connections = {{Epochs(10, 5)}};
  listener.then = [&](std::size_t shown) { stop = shown > 6; };
  EXPECT_EQ(Run(), SessionEnd::Asked);
  EXPECT_TRUE(listener.Stored().empty());
  EXPECT_EQ(memory.Bytes(kSitePath).size(), 104U);
}

// What is off the stake is told, and is stored when the person asks once more, soon and there.
TEST_F(Staking, WantsASecondWordForAPositionOffTheStake) {
  AddTarget("12", 3.0, -4.0);
  connections = {{Epochs(0, 30)}};
  listener.then = [&](std::size_t shown) {
    if (shown == 3 || shown == 8 || shown == 12) commands.Send(StoreNow{});
    if (shown == 5) clock.SleepMilliseconds(kDoubtMs + 1000);
  };
  EXPECT_EQ(Run(), SessionEnd::Complete);
  const auto doubts = listener.Of<StakeDoubted>();
  ASSERT_EQ(doubts.size(), 2U);  // the second word came too late to mean the first place
  EXPECT_NEAR(doubts[0].distance, 5.0, 1e-6);
  EXPECT_TRUE(doubts[0].fixed);
  ASSERT_EQ(listener.Stored().size(), 1U);
  EXPECT_FALSE(listener.Of<StakeStored>()[0].record.withinTolerance);
  EXPECT_TRUE(Raw().ends_with(",--not within tolerance"));
}

TEST_F(Staking, SaysAtOnceThatTheFixIsLostAndCountsNothingAsOnTheStake) {
  AddTarget("12", 0.0, 0.0);
  connections = {{Epochs(0, 5) + Epochs(5, 5, 5) + Epochs(10, 5)}};
  listener.then = [&](std::size_t shown) {
    if (shown == 8) commands.Send(StoreNow{});
    stop = shown == 14;
  };
  EXPECT_EQ(Run(), SessionEnd::Asked);
  const auto fixes = listener.Of<FixChanged>();
  ASSERT_EQ(fixes.size(), 2U);
  EXPECT_EQ(fixes[0].solution, SolutionType::Float);
  EXPECT_EQ(fixes[1].solution, SolutionType::Fixed);
  for (const StakeSeen& seen : listener.Of<StakeSeen>()) {
    EXPECT_EQ(seen.onStake, seen.from == "FIXED");
  }
  ASSERT_EQ(listener.Of<StakeDoubted>().size(), 1U);
  EXPECT_FALSE(listener.Of<StakeDoubted>()[0].fixed);
  EXPECT_TRUE(listener.Stored().empty());
}

TEST_F(Staking, KeepsTheLimitsAndTheToleranceForTheWord) {
  AddTarget("12", 0.0, 0.0);
  plan.gate.solution = SolutionType::Fixed;
  plan.storeOnStake = true;
  connections = {{Epochs(0, 8, 2) + Epochs(8, 8)}};
  EXPECT_EQ(Run(), SessionEnd::Complete);
  EXPECT_EQ(listener.Of<StakeSeen>().size(), 9U);  // eight DGPS positions are not stored
  EXPECT_EQ(listener.Stored().size(), 1U);
}

// The epochs have an HRMS of 0.010; that of the first also holds while no other comes.
TEST_F(Staking, SaysWhyAFixedPositionIsNotOnTheStake) {
  AddTarget("12", 0.0, 0.0);
  plan.tolerance.horizontal = 0.018;
  plan.storeOnStake = true;
  std::string positionsAlone = Epoch(10);
  for (int second = 11; second < 18; ++second) {
    const std::string epoch = Epoch(second);
    positionsAlone += epoch.substr(epoch.find("$GNGGA"));
  }
  for (const std::string& input : {Epochs(0, 8), positionsAlone}) {
    connections = {{input, true}};
    plan.patienceMs = 5000;
    listener.session.events.clear();
    listener.events.clear();
    EXPECT_EQ(Run(), SessionEnd::NoPosition);
    EXPECT_TRUE(listener.Stored().empty());
    const auto seen = listener.Of<StakeSeen>();
    EXPECT_GT(seen.size(), 5U);
    EXPECT_TRUE(std::none_of(seen.begin(), seen.end(), [](const auto& of) { return of.onStake; }));
    const auto warnings = listener.session.Of<SessionWarning>();
    EXPECT_EQ(std::count_if(warnings.begin(), warnings.end(),
                            [](const SessionWarning& warning) {
                              return warning.sentence.starts_with("The HRMS is above 0.009");
                            }),
              1);
  }
}

// From the nearest to the nearest; what is passed over comes up again, what is left out does not,
// and a word that was given for one target stores nothing at the next.
TEST_F(Staking, GoesThroughAListFromTheNearestOn) {
  AddTarget("20", 20.0, 0.0);
  AddTarget("0", 0.0, 0.0);
  AddTarget("10", 10.0, 0.0);
  AddTarget("30", 30.0, 0.0, std::nullopt);
  connections = {{Epochs(0, 50)}};
  listener.then = [&](std::size_t shown) {
    if (shown == 3) commands.Send(StoreNow{});     // "0" is staked, on to "10"
    if (shown == 6) commands.Send(StoreNow{});     // doubted there
    if (shown == 8) commands.Send(NextTarget{});   // "10" later, on to "20"
    if (shown == 10) commands.Send(StoreNow{});    // doubted anew
    if (shown == 12) commands.Send(SkipTarget{});  // "20" never, on to "30"
    if (shown == 14) commands.Send(NextTarget{});  // "30" later: "10" again
    if (shown == 16) commands.Send(ChooseTarget{"99"});
    if (shown == 18) commands.Send(ChooseTarget{"0"});  // once more, though it is staked
    if (shown == 20) commands.Send(StoreNow{});
    if (shown == 22) commands.Send(TakeBack{});
    if (shown == 24) stop = true;
  };
  EXPECT_EQ(Run(), SessionEnd::Asked);
  EXPECT_THAT(NamesTaken(), ElementsAre("0", "10", "20", "30", "10", "0", "10", "0"));
  ASSERT_EQ(listener.Of<NoSuchTarget>().size(), 1U);
  EXPECT_EQ(listener.Of<NoSuchTarget>()[0].name, "99");
  EXPECT_EQ(listener.Of<StakeDoubted>().size(), 2U);
  ASSERT_EQ(listener.Stored().size(), 2U);
  EXPECT_EQ(listener.Stored()[1].point.id.view(), "S2");
  EXPECT_EQ(targets.open(), 3U);  // the second stake of "0" was taken back, so it is open again
}

}  // namespace
}  // namespace tarvex
