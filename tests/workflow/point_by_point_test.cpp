// A person who collects point by point: what commands do in every state of the session.
#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <random>

#include "app/workflow/collect_session.h"
#include "app/workflow/job_check.h"
#include "app/workflow/job_codes.h"
#include "app/workflow/point_frames.h"
#include "app/workflow/point_storing.h"
#include "app/workflow/raw_positions.h"
#include "core/coordinates/point_list.h"
#include "core/observations/job_unit.h"
#include "core/observations/next_id.h"
#include "core/raw_data/raw_records.h"
#include "core/text/number_text.h"
#include "tests/workflow/field_site.h"

namespace tarvex {
namespace {

using testing::HasSubstr;
using Ids = std::vector<std::string>;

// An epoch so many metres north of the first place.
std::string EpochAt(int second, double northM, int quality = 4) {
  std::string time = "09";
  AppendInteger(time, 30 + second / 60, 2);
  AppendInteger(time, second % 60, 2);
  time += ".00";
  const std::string latitude = "47" + FixedNumber(17.112 + northM / 1852.2, 8);
  return WithChecksum("GNGST," + time + ",0.9,,,,0.010,0.000,0.020") +
         WithChecksum("GNGGA," + time + "," + latitude + ",N,00915.91200000,E," +
                      std::to_string(quality) + ",12,0.8,499.600,M,48.000,M,1.0,0001");
}

class PointByPoint : public FieldSite {
 protected:
  PointByPoint() {
    plan.receiver = ConnectedReceiver();
    plan.trigger = StoreTrigger::OnCommand;
    plan.count = 0;
    plan.patienceMs = 5000;
  }

  // One epoch a second, `seconds` of them; `at` is called behind each with its number from 1.
  SessionEnd Walk(int seconds, double stepM, const std::function<void(int)>& at) {
    std::string input;
    for (int i = 0; i < seconds; ++i) input += EpochAt(second + i, (second + i) * stepM, quality);
    second += seconds;
    connections = {{.input = input, .lineMs = 500}};
    int seen = 0;
    listener.then = [&](const SessionEvent& event) {
      if (std::holds_alternative<PositionSeen>(event)) at(++seen);
    };
    CollectSession collecting(work, *session, calculator, plan, listener, commands, {}, Ports());
    const SessionEnd end = collecting.Run();
    stored = collecting.stored();
    return end;
  }

  Ids StoredIds() const {
    Ids ids;
    for (const PointStored& what : listener.Of<PointStored>()) ids.push_back(what.point.id.str());
    return ids;
  }
  Ids Answers() const {
    Ids sentences;
    for (const CommandAnswered& what : listener.Of<CommandAnswered>()) {
      sentences.push_back((what.done ? "" : "no: ") + what.sentence);
    }
    return sentences;
  }
  PointList Points() {
    PointList points;
    EXPECT_EQ(LoadAllPoints(session->job(), points), LoadPointsResult::Loaded);
    return points;
  }
  void ExpectWholeJob() {
    const auto check = CheckJob(session->job(), session->settings());
    ASSERT_TRUE(check);
    for (const JobFinding& finding : check->findings) {
      ADD_FAILURE() << static_cast<int>(finding.fault) << " " << finding.pointId << "\n" << Raw();
    }
  }

  CollectPlan plan;
  int second = 0;
  int quality = 4;
  long long stored = 0;
};

TEST_F(PointByPoint, StoresUnderTheDescriptionHeightAndIdOfTheMoment) {
  std::vector<CodeListProblem> problems;
  plan.codes = CodeList::Parse("EP edge\n", problems);
  (void)Walk(20, 1.0, [&](int seen) {
    switch (seen) {
      case 2:
        commands.Send(SetDescription{"EP1 B left"});
        commands.Send(SetAntennaHeight{1.85});
        commands.Send(SetNextId{"a7"});
        return commands.Send(StoreNow{});
      case 6:
        return commands.Send(StoreNow{});
      case 9:
        commands.Send(SetNextId{"A7"});
        commands.Send(SetNextId{" "});
        return commands.Send(SetDescription{"EP1 CL"});
      case 10:
        return commands.Send(StoreNow{});
      default:
        return;
    }
  });
  const auto told = listener.Of<PointStored>();
  ASSERT_EQ(StoredIds(), (Ids{"A7", "A8", "A9"}));
  EXPECT_EQ(told[0].point.description.view(), "EP1 B left");
  EXPECT_EQ(told[1].point.description.view(), "EP1 left");
  EXPECT_EQ(told[2].point.description.view(), "EP1 CL");
  EXPECT_THAT(Raw(), HasSubstr("LS,HR1.8500\nGPS,PNA7,"));
  EXPECT_EQ(Answers(), (Ids{"The next points are \"EP1 B left\".",
                            "The antenna is 1.85 above the next points.", "The next point is A7.",
                            "no: Point A7 exists; the next point stays A9.",
                            "no: The point id is empty.", "The next points are \"EP1 CL\"."}));
  const PositionSeen last = listener.Of<PositionSeen>().back();
  EXPECT_EQ(last.nextId, "A10");
  EXPECT_EQ(last.description, "EP1");
  EXPECT_EQ(last.lastId, "A9");
  ASSERT_TRUE(last.fromLast);
  EXPECT_NEAR(*last.fromLast, 9.0, 0.02);
  ExpectWholeJob();
}

// The next id is one that is free, and one that is taken is not stored over.
TEST_F(PointByPoint, IsLedPastTheIdsThatAreTaken) {
  ASSERT_TRUE(StoreTypedPoint(*session, {.id = "2", .at = {1, 2, 3}, .description = "typed"})
                  .problem.empty());
  session->job().ids.current = "1";
  (void)Walk(12, 1.0, [&](int seen) {
    if (seen == 2) commands.Send(StoreNow{});
    if (seen == 4) session->job().ids.current = "2";
    if (seen == 5 || seen == 8) commands.Send(StoreNow{});
    if (seen == 7) commands.Send(SetNextId{"9"});
  });
  EXPECT_EQ(StoredIds(), (Ids{"1", "9"}));
  EXPECT_EQ(Answers(), (Ids{"no: Point 2 exists; nothing was stored. Choose another id.",
                            "The next point is 9."}));
  EXPECT_EQ(listener.Of<PositionSeen>()[3].nextId, "3");
  EXPECT_EQ(Points()[1].description.view(), "typed");
}

TEST_F(PointByPoint, TellsADescriptionThatWillBeCutBeforeItIsStored) {
  (void)Walk(6, 1.0, [&](int seen) {
    if (seen == 2) commands.Send(SetDescription{std::string(32, 'x')});
    if (seen == 3) {
      EXPECT_THAT(listener.Of<SessionWarning>().back().sentence, HasSubstr("31 bytes"));
    }
  });
  EXPECT_EQ(stored, 0);
}

TEST_F(PointByPoint, TakesStoresBackOneAfterTheOther) {
  (void)Walk(30, 1.0, [&](int seen) {
    if (seen == 2 || seen == 4 || seen == 6) commands.Send(StoreNow{});
    if (seen == 3) commands.Send(SetDescription{"FE B"});
    if (seen >= 10 && seen <= 13) commands.Send(TakeBack{});
    if (seen == 12) commands.Send(StoreNow{});
    if (seen == 15) commands.Send(StoreNow{});
  });
  EXPECT_EQ(StoredIds(), (Ids{"1", "2", "3", "1", "1"}));
  Ids gone;
  for (const PointTakenBack& back : listener.Of<PointTakenBack>()) {
    gone.push_back(back.point.id.str());
    EXPECT_FALSE(back.restored);
  }
  EXPECT_EQ(gone, (Ids{"3", "2", "1", "1"}));
  EXPECT_EQ(stored, 1);
  EXPECT_EQ(Points().size(), 1U);
  EXPECT_THAT(Raw(), HasSubstr("\n--Taken back point:SP,PN3,N "));
  EXPECT_THAT(Raw(), HasSubstr("\nGPS,PN3,"));  // nothing is erased
  EXPECT_THAT(Notes(), testing::Not(HasSubstr("PT_ID:3\n")));
  ExpectWholeJob();
  EXPECT_EQ(NextIdToUse(session->job(), *OpenCoordinateFile(session->job())), "2");
}

TEST_F(PointByPoint, TakesBackWhatIsStillToBeStoredFirst) {
  plan.gate.solution = SolutionType::Fixed;
  (void)Walk(5, 1.0, [&](int seen) {
    if (seen == 2) commands.Send(StoreNow{});
  });
  quality = 5;
  (void)Walk(8, 1.0, [&](int seen) {
    if (seen == 2) commands.Send(StoreNow{});
    if (seen == 3) {
      EXPECT_TRUE(listener.Of<PositionSeen>().back().storeWanted);
    }
    if (seen == 4) commands.Send(TakeBack{});
    if (seen == 6) commands.Send(TakeBack{});
  });
  EXPECT_EQ(Answers(), (Ids{"The point that was still to be stored is given up.",
                            "no: There is no point of this session to take back."}));
  EXPECT_EQ(Points().size(), 1U);  // a point of the session before
}

TEST_F(PointByPoint, PutsBackTheMeasurementThatAStoreHadReplaced) {
  session->setPolicy(ExistingPolicy::Overwrite);
  plan.antennaHeight = 2.0;
  plan.description = "first";
  (void)Walk(5, 1.0, [&](int seen) {
    if (seen == 2) commands.Send(StoreNow{});
  });
  const Point first = Points()[0];
  const std::string notes = Notes();
  std::string raw;
  std::string problem;
  ASSERT_TRUE(ReadRawFile(session->job(), raw, problem));
  const auto position = FindRawPosition(raw, "1", DistanceUnit::Metres);
  session->job().ids.current = "1";
  plan.antennaHeight = 1.0;
  plan.description = "second";
  clock.now.hour = 11;
  (void)Walk(9, 1.0, [&](int seen) {
    if (seen == 2) commands.Send(StoreNow{});
    if (seen == 5) commands.Send(TakeBack{});
  });
  ASSERT_EQ(listener.Of<PointTakenBack>().size(), 1U);
  EXPECT_EQ(listener.Of<PointTakenBack>()[0].restored, first);
  EXPECT_EQ(Points()[0], first);
  EXPECT_EQ(Notes(), notes);
  EXPECT_EQ(session->job().ids.current, "1");
  ASSERT_TRUE(ReadRawFile(session->job(), raw, problem));
  EXPECT_EQ(FindRawPosition(raw, "1", DistanceUnit::Metres)->heightM, position->heightM);
  EXPECT_EQ(AllRawPositions(raw, DistanceUnit::Metres).at("1").latitudeRad, position->latitudeRad);
  EXPECT_THAT(raw, HasSubstr("\n--Taken back point:SP,PN1,"));
  ExpectWholeJob();

  // A typed point comes back with its coordinates, and with no quality of anything.
  ASSERT_TRUE(StoreTypedPoint(*session, {.id = "B1", .at = {1, 2, 3}, .description = "typed"})
                  .problem.empty());
  session->job().ids.current = "B1";
  (void)Walk(9, 1.0, [&](int seen) {
    if (seen == 2) commands.Send(StoreNow{});
    if (seen == 5) commands.Send(TakeBack{});
  });
  EXPECT_EQ(Points()[1].at, (GridPoint{1, 2, 3}));
  EXPECT_EQ(Points()[1].description.view(), "typed");
  EXPECT_THAT(Notes(), testing::Not(HasSubstr("PT_ID:B1\n")));
  ExpectWholeJob();
}

// The point stays what it was, also in the eyes of what reads the raw file.
TEST_F(PointByPoint, PutsBackTheFirstMeasurementBehindTwoStores) {
  session->setPolicy(ExistingPolicy::Overwrite);
  const auto walk = [&](std::initializer_list<int> stores, std::initializer_list<int> takenBack) {
    session->job().ids.current = "1";
    (void)Walk(12, 1.0, [&](int seen) {
      if (std::count(stores.begin(), stores.end(), seen) > 0) commands.Send(StoreNow{});
      if (std::count(takenBack.begin(), takenBack.end(), seen) > 0) commands.Send(TakeBack{});
      commands.Send(SetNextId{"1"});
    });
  };
  const auto position = [&] { return FindRawPosition(Raw(), "1", DistanceUnit::Metres); };
  walk({2, 4}, {6, 8});
  ASSERT_EQ(listener.Of<PointTakenBack>().size(), 2U);
  EXPECT_TRUE(Points().empty());
  EXPECT_FALSE(position());
  EXPECT_TRUE(AllRawPositions(Raw(), DistanceUnit::Metres).empty());
  walk({2}, {});
  const Point first = Points()[0];
  const std::string notes = Notes();
  const double latitude = position()->latitudeRad;
  {
    const auto unit = JobUnit::Begin(session->job());
    ASSERT_TRUE(unit);
    unit->AppendRaw(CommentRecord("Localization: 1 point"));
    ASSERT_EQ(unit->Commit(), ChangeResult::Done);
  }
  walk({2, 4}, {6, 8});
  ASSERT_EQ(listener.Of<PointTakenBack>().size(), 4U);
  EXPECT_EQ(Points()[0], first);
  EXPECT_EQ(Notes(), notes);
  EXPECT_EQ(position()->latitudeRad, latitude);
  EXPECT_TRUE(PointsOfEarlierFrames(Raw(), true).contains(PointId("1")));
  ExpectWholeJob();
}

TEST_F(PointByPoint, LeavesAPointThatSomebodyElseChanged) {
  (void)Walk(9, 1.0, [&](int seen) {
    if (seen == 2) commands.Send(StoreNow{});
    if (seen != 5) return;
    JobSession other(work, kSitePath);
    ASSERT_TRUE(other.Load());
    other.setPolicy(ExistingPolicy::Overwrite);
    ASSERT_TRUE(StoreTypedPoint(other, {.id = "1", .at = {1, 2, 3}, .description = "typed"})
                    .problem.empty());
    commands.Send(TakeBack{});
  });
  EXPECT_EQ(Answers(), (Ids{"no: Point 1 was changed after it was stored; it stays."}));
  EXPECT_EQ(Points()[0].at, (GridPoint{1, 2, 3}));
}

// Whatever a person presses in whatever order: the job is whole, and has what the events told.
TEST_F(PointByPoint, KeepsTheJobAndItsEventsTogether) {
  const unsigned seed = std::random_device()();
  std::mt19937 chance(seed);
  session->setPolicy(ExistingPolicy::Overwrite);
  const auto pick = [&](unsigned below) { return chance() % below; };
  std::map<std::string, Point> expected;
  const auto press = [&](int) {
    switch (pick(10)) {
      case 0:
        return commands.Send(SetNextId{std::string("A") + char('1' + pick(4))});
      case 1:
        return commands.Send(SetAverage{1 + pick(3)});
      case 2:
        return commands.Send(SetDescription{"EP1 B"});
      case 3:
        return commands.Send(pick(2) == 0 ? SessionCommand(PauseStoring{}) : ResumeStoring{});
      case 4:
      case 5:
        return commands.Send(TakeBack{});
      default:
        return commands.Send(StoreNow{});
    }
  };
  for (int walk = 0; walk < 3; ++walk) (void)Walk(150, 0.7, press);
  for (const SessionEvent& event : listener.events) {
    if (const auto* what = std::get_if<PointStored>(&event)) {
      expected[what->point.id.str()] = what->point;
    } else if (const auto* back = std::get_if<PointTakenBack>(&event)) {
      expected.erase(back->point.id.str());
      if (back->restored) expected[back->point.id.str()] = *back->restored;
    }
  }
  std::map<std::string, Point> found;
  for (const Point& point : Points()) found[point.id.str()] = point;
  EXPECT_EQ(found, expected) << seed;
  EXPECT_GT(listener.Of<PointTakenBack>().size(), 20U) << seed;
  ExpectWholeJob();
  EXPECT_FALSE(HasFailure()) << seed;
}

// Whatever step fails while a store is taken back, the job is whole: with the point or without it.
TEST_F(PointByPoint, TakesBackAllOfAPointOrNothing) {
  for (const bool replaces : {false, true}) {
    for (int step = 1; step < 40; ++step) {
      memory = MemoryFiles();
      memory.Put("/jobs/site.job", "units=metres\n");
      session.emplace(work, kSitePath);
      ASSERT_TRUE(session->Load());
      ASSERT_NE(OpenCoordinateFile(session->job(), true), nullptr);
      session->job().ids.current = "1";
      session->setPolicy(ExistingPolicy::Overwrite);
      for (int pass = replaces ? 0 : 1; pass < 2; ++pass) {
        session->job().ids.current = "1";
        (void)Walk(6, 1.0, [&](int seen) {
          if (seen == 2) commands.Send(StoreNow{});
          if (pass == 0 || seen != 4) return;
          commands.Send(TakeBack{});
          memory.Expect(Mishap::DiskFull, step);
        });
      }
      memory.Expect(Mishap::None, 0);
      session.emplace(work, kSitePath);
      ASSERT_TRUE(session->LoadExisting());
      ExpectWholeJob();
      if (HasFailure()) FAIL() << step;
    }
  }
}

TEST_F(PointByPoint, StoresTheMeanOfSoManyEpochs) {
  (void)Walk(40, 0.0, [&](int seen) {
    if (seen == 2) commands.Send(SetAverage{5});
    if (seen == 3) commands.Send(StoreNow{});
    if (seen == 5) commands.Send(PauseStoring{});
    if (seen == 20) commands.Send(ResumeStoring{});
    if (seen == 30) commands.Send(SetAverage{1});
    if (seen == 31) commands.Send(StoreNow{});
  });
  const auto told = listener.Of<PointStored>();
  ASSERT_EQ(told.size(), 2U);
  ASSERT_TRUE(told[0].mean);
  EXPECT_EQ(told[0].mean->epochs, 5U);
  EXPECT_FALSE(told[1].mean);
  // The epochs before the pause are not in it: the pole may have moved.
  const auto first = std::find_if(listener.events.begin(), listener.events.end(), [](auto& event) {
    return std::holds_alternative<PointStored>(event);
  });
  EXPECT_EQ(std::count_if(listener.events.begin(), first,
                          [](auto& event) { return std::holds_alternative<PositionSeen>(event); }),
            25);
}

// Ten minutes without FIXED: told once when it begins and once when it ends, and the session lives.
TEST_F(PointByPoint, WaitsForTenMinutesUntilTheLimitsAreKept) {
  plan.gate.solution = SolutionType::Fixed;
  std::string input;
  for (int i = 0; i < 602; ++i) input += EpochAt(i, 0.0, i > 0 && i < 601 ? 5 : 4);
  connections = {{.input = input, .lineMs = 500}};
  std::int64_t longest = 0;
  int seen = 0;
  listener.then = [&](const SessionEvent& event) {
    const auto* position = std::get_if<PositionSeen>(&event);
    if (position == nullptr) return;
    longest = std::max(longest, position->refusedForMs);
    if (++seen == 10) commands.Send(StoreNow{});
  };
  CollectSession collecting(work, *session, calculator, plan, listener, commands, {}, Ports());
  EXPECT_EQ(collecting.Run(), SessionEnd::NoPosition);
  EXPECT_EQ(StoredIds(), (Ids{"1"}));
  EXPECT_EQ(listener.Of<PointStored>()[0].state.solutionType, SolutionType::Fixed);
  EXPECT_EQ(listener.Of<LimitRefuses>().size(), 2U);
  EXPECT_NEAR(static_cast<double>(longest), 599'000, 1500);
}

TEST_F(PointByPoint, TakesCommandsWhileTheReceiverIsLost) {
  connections = {{EpochAt(1, 0.0) + EpochAt(2, 0.0), true}};
  listener.then = [&](const SessionEvent& event) {
    if (std::holds_alternative<PositionSeen>(event)) return commands.Send(StoreNow{});
    if (!std::holds_alternative<ReceiverLost>(event)) return;
    commands.Send(TakeBack{});  // a store that waits
    commands.Send(TakeBack{});
    commands.Send(RetryCorrections{});
    commands.Send(EndSession{});
  };
  CollectSession collecting(work, *session, calculator, plan, listener, commands, {}, Ports());
  (void)collecting.Run();
  EXPECT_EQ(StoredIds(), (Ids{"1"}));
  EXPECT_EQ(listener.Of<PointTakenBack>().size(), 1U);
  EXPECT_TRUE(Points().empty());
}

TEST_F(PointByPoint, HasTheCodesOfItsJob) {
  EXPECT_TRUE(LoadJobCodes(*session).empty());
  EXPECT_TRUE(observer.warnings.empty());
  memory.Put("/jobs/site.codes", "TREE  Tree\nTREE again\n");
  EXPECT_EQ(LoadJobCodes(*session).codes().size(), 1U);
  EXPECT_EQ(observer.warnings,
            (Ids{"/jobs/site.codes, line 2: the code \"TREE\" is there before; this line is not "
                 "used."}));
  session->settings().Set("codes", "office.txt");
  EXPECT_TRUE(LoadJobCodes(*session).empty());
  EXPECT_THAT(observer.warnings.back(), HasSubstr("The list of codes /jobs/office.txt cannot be"));
}

class ByRule : public PointByPoint {
 protected:
  std::vector<std::string> StoredTimes() const {
    std::vector<std::string> times;
    for (const PointStored& what : listener.Of<PointStored>()) {
      times.push_back(std::to_string(what.state.epochMs / 1000 % 3600 - 1800));
    }
    return times;
  }
};

TEST_F(ByRule, StoresEverySoManySeconds) {
  plan.trigger = StoreTrigger::ByTime;
  plan.everyMs = 5000;
  (void)Walk(22, 1.0, [&](int seen) {
    if (seen == 8) commands.Send(StoreNow{});  // of one's own; the interval begins anew
    if (seen == 14) commands.Send(TakeBack{});
  });
  EXPECT_EQ(StoredTimes(), (Ids{"0", "5", "8", "13", "18"}));
  EXPECT_EQ(stored, 4);
}

// The receiver finds its time (hours ahead, then back), and the machine's date is set: neither
// brings a point early or late.
TEST_F(ByRule, KeepsItsIntervalWhenAClockJumps) {
  plan.trigger = StoreTrigger::ByTime;
  plan.everyMs = 10'000;
  std::string input;
  for (int i = 0; i < 40; ++i) input += EpochAt(i >= 13 && i < 27 ? i + 1500 : i, 0.0);
  connections = {{.input = input, .lineMs = 500}};
  std::vector<int> at;
  int seen = 0;
  listener.then = [&](const SessionEvent& event) {
    if (std::holds_alternative<PositionSeen>(event) && ++seen == 5) clock.now.hour = 3;
    if (std::holds_alternative<PointStored>(event)) at.push_back(seen);
  };
  CollectSession collecting(work, *session, calculator, plan, listener, commands, {}, Ports());
  (void)collecting.Run();
  EXPECT_EQ(at, (std::vector<int>{1, 11, 21, 31}));
}

TEST_F(ByRule, CountsTheSecondsOfARecordingByItsEpochs) {
  plan.trigger = StoreTrigger::ByTime;
  plan.everyMs = 5000;
  plan.receiver.address.kind = PortKind::File;
  std::string input;
  for (int i = 0; i < 12; ++i) input += EpochAt(i, 0.0);
  connections = {{.input = input, .recording = true}};
  CollectSession collecting(work, *session, calculator, plan, listener, commands, {}, Ports());
  EXPECT_EQ(collecting.Run(), SessionEnd::Complete);
  EXPECT_EQ(StoredTimes(), (Ids{"0", "5", "10"}));
}

TEST_F(ByRule, StoresWhereItIsFarEnoughFromTheLastPoint) {
  plan.trigger = StoreTrigger::ByDistance;
  plan.distance = 4.9;
  plan.gate.solution = SolutionType::Fixed;
  (void)Walk(12, 1.0, [&](int seen) {
    if (seen == 8) commands.Send(TakeBack{});  // and not at once the same place again
  });
  EXPECT_EQ(StoredTimes(), (Ids{"0", "5", "10"}));
  quality = 5;  // farther, but not as good as it should be
  (void)Walk(12, 1.0, [](int) {});
  EXPECT_EQ(StoredTimes(), (Ids{"0", "5", "10"}));
  quality = 4;
  (void)Walk(12, 0.0, [](int) {});  // standing
  EXPECT_EQ(StoredTimes().size(), 4U);
}

}  // namespace
}  // namespace tarvex
