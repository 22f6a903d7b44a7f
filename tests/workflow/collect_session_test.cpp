// Collecting, without a process and without waiting.
#include "app/workflow/collect_session.h"

#include <gmock/gmock.h>

#include "core/coordinates/point_list.h"
#include "tests/workflow/field_site.h"

namespace tarvex {
namespace {

using testing::HasSubstr;

class Collecting : public FieldSite {
 protected:
  Collecting() { plan.receiver = ConnectedReceiver(); }

  SessionEnd Run() {
    CollectSession collecting(
        work, *session, calculator, plan, listener, commands, [this] { return stop; }, Ports());
    const SessionEnd end = collecting.Run();
    lost = collecting.receiverLost();
    return end;
  }

  std::vector<std::string> StoredIds() const {
    std::vector<std::string> ids;
    for (const PointStored& stored : listener.Of<PointStored>()) {
      ids.push_back(stored.point.id.str());
    }
    return ids;
  }

  CollectPlan plan;
  bool stop = false;
  bool lost = false;
};

using Ids = std::vector<std::string>;

TEST_F(Collecting, TellsAPointWhenAllThreeFilesHoldIt) {
  plan.count = 2;
  plan.description = "edge";
  plan.antennaHeight = 2.0;
  connections = {{Epoch(1) + Epoch(2) + Epoch(3)}};
  std::vector<bool> whole;
  listener.then = [&](const SessionEvent& event) {
    const auto* stored = std::get_if<PointStored>(&event);
    if (stored == nullptr) return;
    const std::string id = stored->point.id.str();
    whole.push_back(Raw().find("\nGPS,PN" + id + ",") != std::string::npos &&
                    Notes().find("PT_ID:" + id + "\n") != std::string::npos &&
                    memory.Bytes(kSitePath).size() == 104 + 66 * listener.Of<PointStored>().size());
  };
  EXPECT_EQ(Run(), SessionEnd::Complete);
  EXPECT_EQ(StoredIds(), (Ids{"1", "2"}));
  EXPECT_EQ(whole, (std::vector<bool>{true, true}));
  EXPECT_THAT(Raw(), HasSubstr("\nLS,HR2.0000\nGPS,PN1,"));
  EXPECT_THAT(Raw(), HasSubstr("\n--Receiver: any-nmea\n"));
  EXPECT_TRUE(observer.errors.empty());
}

TEST_F(Collecting, GoesOnWhenALostReceiverIsBack) {
  plan.count = 0;
  connections = {{Epoch(1), true}, {"", false, true}, {Epoch(20) + Epoch(21), true}};
  plan.patienceMs = 20'000;
  EXPECT_EQ(Run(), SessionEnd::NoPosition);  // it does not return a second time
  EXPECT_TRUE(lost);
  EXPECT_EQ(StoredIds(), (Ids{"1", "2", "3"}));
  ASSERT_EQ(listener.Of<ReceiverLost>().size(), 2U);
  EXPECT_EQ(listener.Of<ReceiverBack>().size(), 1U);
  EXPECT_EQ(listener.Of<ReceiverLost>()[0].nextTryMs, 1000);
}

// What the receiver told before it was lost says nothing of the positions after.
TEST_F(Collecting, HoldsAReturnedReceiverAgainstItsOwnPrecision) {
  const auto behind = [](int second, const std::string& hrms) {
    const std::string epoch = Epoch(second, 4, hrms);
    const std::size_t position = epoch.find("$GNGGA");
    return epoch.substr(position) + epoch.substr(0, position);
  };
  const std::string without = Epoch(40).substr(Epoch(40).find("$GNGGA"));
  plan.count = 0;
  plan.gate.hrms = 0.02;
  connections = {{behind(1, "0.010"), true},
                 {behind(20, "0.300"), true},
                 {behind(30, "0.015"), true},
                 {without, true}};
  plan.patienceMs = 20'000;
  EXPECT_EQ(Run(), SessionEnd::NoPosition);
  EXPECT_EQ(listener.Of<ReceiverBack>().size(), 3U);
  std::vector<double> stored;
  for (const PointStored& point : listener.Of<PointStored>()) stored.push_back(point.state.hrms);
  EXPECT_EQ(stored, (std::vector<double>{0.010, 0.015}));
}

TEST_F(Collecting, EndsWhenItIsToldToWhileTheReceiverIsLost) {
  plan.count = 0;
  connections = {{Epoch(1), true}};
  listener.then = [&](const SessionEvent& event) {
    if (std::holds_alternative<ReceiverLost>(event)) commands.Send(EndSession{});
  };
  const std::int64_t before = clock.milliseconds;
  EXPECT_EQ(Run(), SessionEnd::Asked);
  EXPECT_TRUE(lost);
  EXPECT_LT(clock.milliseconds - before, 1000);
}

// Positions that a limit refuses do not end a session; a receiver that sends none does, on time.
TEST_F(Collecting, WaitsForPositionsAndNotForLimits) {
  plan.gate.solution = SolutionType::Fixed;
  plan.patienceMs = 3000;
  std::string minute;
  for (int second = 0; second < 40; ++second) minute += Epoch(second, 2);
  connections = {{minute + Epoch(50)}};
  listener.then = [&](const SessionEvent& event) {
    if (std::holds_alternative<PositionSeen>(event)) clock.milliseconds += 1000;
  };
  EXPECT_EQ(Run(), SessionEnd::Complete);
  EXPECT_EQ(listener.Of<LimitRefuses>().size(), 2U);  // once refused, once kept again
  EXPECT_EQ(listener.Of<PositionSeen>().size(), 41U);

  listener.events.clear();
  plan.gate = {};
  connections = {{""}};
  const std::int64_t before = clock.milliseconds;
  EXPECT_EQ(Run(), SessionEnd::NoPosition);
  EXPECT_LT(clock.milliseconds - before, 3000 + 1500);
}

TEST_F(Collecting, TakesCommandsBetweenTwoPositions) {
  plan.trigger = StoreTrigger::OnCommand;
  plan.count = 2;
  std::string input;
  for (int second = 0; second < 30; ++second) input += Epoch(second);
  connections = {{input}};
  int seen = 0;
  listener.then = [&](const SessionEvent& event) {
    if (!std::holds_alternative<PositionSeen>(event)) return;
    switch (++seen) {
      case 3:
        commands.Send(SetDescription{"tree"});
        commands.Send(SetAntennaHeight{1.5});
        return commands.Send(StoreNow{});
      case 8:
        commands.Send(PauseStoring{});
        return commands.Send(StoreNow{});
      case 12:
        return commands.Send(ResumeStoring{});
      default:
        return;
    }
  };
  EXPECT_EQ(Run(), SessionEnd::Complete);
  EXPECT_EQ(StoredIds(), (Ids{"1", "2"}));
  EXPECT_THAT(Raw(), HasSubstr("\n--TM09:30:15\nLS,HR1.5000\nGPS,PN1,"));
  EXPECT_EQ(listener.Of<PointStored>()[0].point.description.view(), "tree");
  EXPECT_EQ(seen, 13);
}

// A receiver that sends GST behind its position: the first epoch is held until one was seen whole.
TEST_F(Collecting, StoresNothingBeforeThePrecisionCouldBeKnown) {
  const auto behind = [](int second) {
    const std::string epoch = Epoch(second);
    const std::size_t gga = epoch.find("$GNGGA");
    return epoch.substr(gga) + epoch.substr(0, gga);
  };
  connections = {{behind(1) + behind(2) + behind(3)}};
  EXPECT_EQ(Run(), SessionEnd::Complete);
  ASSERT_EQ(listener.Of<PointStored>().size(), 1U);
  EXPECT_TRUE(listener.Of<PointStored>()[0].state.precisionKnown);
  EXPECT_THAT(Notes(), HasSubstr("HRMS,0.010\n"));
}

// The last epoch of a recording whose precision never came is stored without one.
TEST_F(Collecting, StoresTheEpochThatStillWaitedWhenTheRecordingEnded) {
  plan.receiver.address.kind = PortKind::File;
  const std::string epoch = Epoch(1);
  connections = {{.input = epoch.substr(epoch.find("$GNGGA")), .recording = true}};
  EXPECT_EQ(Run(), SessionEnd::Complete);
  ASSERT_EQ(listener.Of<PointStored>().size(), 1U);
  EXPECT_FALSE(listener.Of<PointStored>()[0].state.precisionKnown);
}

// A sentence whose vertical part is empty leaves a number of the horizontal one; a receiver that is
// known to send none is warned of on no screen. The files say it of both points.
TEST_F(Collecting, WritesAnUnknownPrecisionAsNone) {
  for (const bool knownToSendNone : {false, true}) {
    const std::string half = WithChecksum("GNGST,093000.00,0.9,,,,0.010,0.000,");
    connections.push_back({.input = half + Epoch(0).substr(Epoch(0).find("$GNGGA"))});
    plan.receiver.settings.noRms = knownToSendNone;
    plan.count = 1;
    listener.events.clear();
    EXPECT_EQ(Run(), SessionEnd::Complete);
    const auto warnings = listener.Of<SessionWarning>();
    EXPECT_EQ(std::none_of(warnings.begin(), warnings.end(),
                           [](const SessionWarning& warning) {
                             return warning.sentence.find("no precision") != std::string::npos;
                           }),
              knownToSendNone);
    const std::string id = StoredIds().at(0);
    EXPECT_THAT(Notes(), HasSubstr("PT_ID:" + id + "\nHRMS,0.000\nVRMS,0.000\nSTATUS,FIXED\n"));
    const std::string raw = Raw();
    const std::string point = raw.substr(raw.find("\nGPS,PN" + id + ","));
    EXPECT_THAT(point, HasSubstr("\n--HRMS:0.000, VRMS:0.000, STATUS:FIXED"));
    EXPECT_THAT(point, HasSubstr("\n--Warning: The receiver sends no precision; "));
  }
}

// A position that cannot be placed leaves nothing to the point that is stored behind it.
TEST_F(Collecting, SaysOfAPointOnlyWhichLimitItDidNotKeepItself) {
  plan.receiver.address.kind = PortKind::File;
  plan.gate.solution = SolutionType::Fixed;
  plan.overrideGate = true;
  std::string nowhere = Epoch(1, 2);  // where the projection ends
  const std::size_t gga = nowhere.find("$GNGGA");
  nowhere = nowhere.substr(0, gga) +
            WithChecksum(
                "GNGGA,093001.00,0000.00000000,N,09900.00000000,E,2,12,0.8,9.600,M,48.000,"
                "M,1.0,0001");
  connections = {{nowhere + Epoch(2) + Epoch(3)}};
  EXPECT_EQ(Run(), SessionEnd::Failed);  // told as a warning
  ASSERT_EQ(listener.Of<PointStored>().size(), 1U);
  EXPECT_EQ(listener.Of<PointStored>()[0].overridden, "");
  EXPECT_THAT(Raw(), testing::Not(HasSubstr("Stored against the limits")));
}

TEST_F(Collecting, AsksNobodyAboutAPointThatExistsAndReplacesNone) {
  plan.count = 1;
  connections = {{Epoch(1) + Epoch(2)}};
  EXPECT_EQ(Run(), SessionEnd::Complete);
  session->job().ids.current = "1";
  connections = {{Epoch(3) + Epoch(4)}};
  EXPECT_EQ(Run(), SessionEnd::Failed);
  ASSERT_EQ(listener.Of<PointExists>().size(), 1U);
  EXPECT_EQ(listener.Of<PointExists>()[0].id, "1");

  session->job().ids.current = "1";
  session->setPolicy(ExistingPolicy::Overwrite);
  connections = {{Epoch(5) + Epoch(6)}};
  EXPECT_EQ(Run(), SessionEnd::Complete);
  ASSERT_TRUE(listener.Of<PointStored>().back().replaced);
  EXPECT_THAT(Raw(), HasSubstr("\n--Replaced point:SP,PN1,"));
}

TEST_F(Collecting, WarnsOfAPlaceWhereTheJobCannotBe) {
  connections = {{Epoch(1) + Epoch(2)}};
  EXPECT_EQ(Run(), SessionEnd::Complete);
  std::string told;
  for (const SessionWarning& warning : listener.Of<SessionWarning>()) told += warning.sentence;
  EXPECT_THAT(told, HasSubstr("no geoid"));
  EXPECT_THAT(told, testing::Not(HasSubstr("zone")));

  // The same place seen from a zone 90 degrees away, in a job with a point.
  std::string far(kUtm32);
  far.replace(far.find("\"central_meridian\",9"), 20, "\"central_meridian\",69");
  calculator.ParseDefinition(far, nullptr);
  listener.events.clear();
  connections = {{Epoch(3) + Epoch(4)}};
  EXPECT_EQ(Run(), SessionEnd::Complete);
  told.clear();
  for (const SessionWarning& warning : listener.Of<SessionWarning>()) told += warning.sentence;
  EXPECT_THAT(told, HasSubstr("far outside the zone"));
  EXPECT_THAT(told, HasSubstr("km from point 1 of the job"));
}

// Its coordinates look like any others: the scale is 0.2 % off.
TEST_F(Collecting, WarnsOfTheNeighbouringZone) {
  std::string beside(kUtm32);
  beside.replace(beside.find("\"central_meridian\",9"), 20, "\"central_meridian\",15");
  calculator.ParseDefinition(beside, nullptr);
  connections = {{Epoch(1) + Epoch(2)}};
  EXPECT_EQ(Run(), SessionEnd::Complete);
  std::string told;
  for (const SessionWarning& warning : listener.Of<SessionWarning>()) told += warning.sentence;
  EXPECT_THAT(told, HasSubstr("degrees of longitude from the middle of the zone"));
}

// Each step that changed the height is called by its name.
TEST_F(Collecting, TellsHowTheHeightBecameTheElevation) {
  class HeightShift final : public DatumShift {
    StepOutcome ToSystem(Geodetic& position) const override {
      position.heightM -= 40.0;
      return {};
    }
    StepOutcome ToWgs84(Geodetic& position) const override {
      position.heightM += 40.0;
      return {};
    }
    std::string Describe() const override { return "40 m"; }
  };
  class SiteShift final : public SiteLocalization {
    StepOutcome ToLocal(GridMetres& point) const override {
      point.elevationM += 0.25;
      return {};
    }
    StepOutcome ToGrid(GridMetres& point) const override {
      point.elevationM -= 0.25;
      return {};
    }
    std::string Describe() const override { return "0.25 m"; }
  };
  calculator.SetSteps({.datumShift = std::make_shared<HeightShift>(),
                       .localization = std::make_shared<SiteShift>()});
  plan.antennaHeight = 2.0;
  connections = {{Epoch(1) + Epoch(2)}};
  EXPECT_EQ(Run(), SessionEnd::Complete);
  EXPECT_THAT(Raw(), HasSubstr("\n--Epoch: 09:30:01 UTC, corrections 1.0 s old\n"));
  EXPECT_THAT(Raw(), HasSubstr("\n--Heights: ellipsoid 547.6000, antenna 2.0000, datum shift "
                               "-40.0000, geoid 0.0000, localization 0.2500, elevation 505.8500"));
  for (const SessionWarning& warning : listener.Of<SessionWarning>()) {
    EXPECT_THAT(warning.sentence, testing::Not(HasSubstr("no geoid")));
  }
}

// Whatever step of the files fails, a point that was told is in all three of them.
TEST_F(Collecting, NeverTellsAPointThatAFullDiskRefused) {
  plan.count = 3;
  for (int step = 1; step < 60; ++step) {
    memory = MemoryFiles();
    memory.Put("/jobs/site.job", "units=metres\n");
    session.emplace(work, kSitePath);
    ASSERT_TRUE(session->Load());
    ASSERT_NE(OpenCoordinateFile(session->job(), true), nullptr);
    session->job().ids.current = "1";
    listener.events.clear();
    connections = {{Epoch(1) + Epoch(2) + Epoch(3) + Epoch(4)}};
    memory.Expect(Mishap::DiskFull, step);
    (void)Run();
    memory.Expect(Mishap::None, 0);
    session.emplace(work, kSitePath);
    PointList points;
    ASSERT_EQ(LoadAllPoints(session->job(), points), LoadPointsResult::Loaded);
    EXPECT_EQ(points.size(), StoredIds().size()) << step;
    for (const Point& point : points) {
      const std::string id = point.id.str();
      EXPECT_THAT(Raw(), HasSubstr("\n--GS,PN" + id + ",")) << step;
      EXPECT_THAT(Notes(), HasSubstr("PT_ID:" + id + "\n")) << step;
    }
  }
}

TEST_F(Collecting, SaysWhatAReceiverThatSendsNoPositionLacks) {
  std::string input;
  for (int line = 0; line < 100; ++line) {
    input += WithChecksum("GNRMC,093000.00,A,4717.112,N,00915.912,E,0.0,0.0,211126,,,A");
  }
  connections.push_back({.input = input, .lineMs = 200});
  plan.patienceMs = 12'000;
  EXPECT_EQ(Run(), SessionEnd::NoPosition);
  const std::vector<NoPosition> told = listener.Of<NoPosition>();
  ASSERT_GE(told.size(), 3U);  // every 3 s
  EXPECT_EQ(told.front().result, GnssReadResult::NoPositionSentence);
}

std::string Damaged(std::string epoch) {
  for (std::size_t at = epoch.find('*'); at != std::string::npos; at = epoch.find('*', at + 1)) {
    epoch[at - 1] ^= 1;
  }
  return epoch;
}

// Two lines a second: a single damaged sentence is nobody's business, a line that damages most is
// told once, and again when it has been well in between.
TEST_F(Collecting, SaysThatManySentencesComeDamaged) {
  std::string input;
  int second = 0;
  const auto send = [&](int seconds, bool damaged) {
    for (const int end = second + seconds; second < end; ++second) {
      input += damaged ? Damaged(Epoch(second)) : Epoch(second);
    }
  };
  send(5, false);
  send(1, true);
  send(9, false);
  send(20, true);
  send(22, false);
  send(12, true);
  connections.push_back({.input = input, .lineMs = 500});
  plan.count = 0;
  plan.patienceMs = 25'000;
  EXPECT_EQ(Run(), SessionEnd::NoPosition);
  const std::vector<SentencesDamaged> told = listener.Of<SentencesDamaged>();
  ASSERT_EQ(told.size(), 2U);
  EXPECT_GE(told.front().count, 10U);
  EXPECT_GE(told.front().inMs, 10'000);
  EXPECT_EQ(StoredIds().size(), 36U);  // every whole epoch
  const std::vector<NoPosition> none = listener.Of<NoPosition>();
  ASSERT_FALSE(none.empty());
  EXPECT_THAT(none.front().sentence, HasSubstr("damaged"));
}

TEST_F(Collecting, CallsASilentReceiverSilent) {
  connections.push_back({.input = Epoch(1)});
  plan.count = 2;
  plan.patienceMs = 8'500;
  EXPECT_EQ(Run(), SessionEnd::NoPosition);
  const std::vector<NoPosition> told = listener.Of<NoPosition>();
  ASSERT_FALSE(told.empty());
  for (const NoPosition& none : told) EXPECT_EQ(none.result, GnssReadResult::PortReadFailed);
}

}  // namespace
}  // namespace tarvex
