// A unit of work on a job's three files, interrupted at every step in every way: afterwards all
// three hold it or none does, and what was reported as done is there.
#include "core/observations/job_unit.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "core/coordinates/point_bulk.h"
#include "core/coordinates/point_store.h"
#include "core/journal/change_entry.h"
#include "core/raw_data/raw_file.h"
#include "tests/support/test_host.h"

namespace tarvex {
namespace {

constexpr const char* kRawPath = "/jobs/site.rw5";
constexpr const char* kNotesPath = "/jobs/site.not";
constexpr const char* kJournalPath = "/jobs/site.crd.redo";

NoteEdit Quality(const std::string& id) {
  return {.kind = NoteEdit::Kind::SetQuality,
          .note = {.pointId = id, .lines = {}, .qualityLines = "HRMS,0.010\nSTATUS,FIXED\n"}};
}

bool Measure(Job& job, const std::string& id, double northing, Settling settling = Settling::Now) {
  const auto unit = JobUnit::Begin(job);
  if (!unit) return false;
  job.ids.current = id;
  if (StorePoint(job, {.northing = northing}, "d", false, &unit->coordinates()) !=
      StorePointResult::Stored) {
    return false;
  }
  unit->AppendRaw("\nGPS,PN" + id);
  unit->AppendRaw("\n--GS,PN" + id);
  unit->EditNote(id, Quality(id));
  return unit->Commit(settling) == ChangeResult::Done;
}

// A typed point over a measured one.
bool Overtype(Job& job, const std::string& id) {
  const auto unit = JobUnit::Begin(job);
  if (!unit) return false;
  job.ids.current = id;
  if (StorePoint(job, {.northing = 7.0}, "typed", false, &unit->coordinates()) !=
      StorePointResult::Stored) {
    return false;
  }
  unit->AppendRaw("\nSP,PN" + id);
  unit->EditNote(id, {.kind = NoteEdit::Kind::DropQuality, .note = {}});
  return unit->Commit() == ChangeResult::Done;
}

bool Delete(Job& job, const std::string& id) {
  const auto unit = JobUnit::Begin(job);
  if (!unit) return false;
  if (DeletePoint(job, id, &unit->coordinates()) != DeletePointResult::Deleted) return false;
  unit->AppendRaw("\n--Deleted point:" + id);
  unit->EditNote(id, {.kind = NoteEdit::Kind::Remove, .note = {}});
  return unit->Commit() == ChangeResult::Done;
}

bool Import(Job& job) {
  const auto unit = JobUnit::Begin(job);
  if (!unit) return false;
  std::vector<Point> batch(6000);
  for (std::size_t i = 0; i < batch.size(); ++i) {
    batch[i] = {
        .at = {.northing = 100.0}, .description = {}, .id = PointId(std::to_string(3 + 4 * i))};
    unit->AppendRaw("\nSP,PN" + batch[i].id.str());
  }
  if (StorePoints(job, batch, unit->coordinates()) != StorePointsResult::Stored) return false;
  return unit->Commit() == ChangeResult::Done;
}

struct Operation {
  const char* name;
  bool alphanumeric;
  std::function<bool(Job&)> run;  // true when it reported success
};

const Operation kOperations[] = {
    {"measure behind the last", true, [](Job& job) { return Measure(job, "50", 5.0); }},
    {"measure in between", true, [](Job& job) { return Measure(job, "25", 5.0); }},
    {"measure again", true, [](Job& job) { return Measure(job, "20", 5.0); }},
    {"type over", true, [](Job& job) { return Overtype(job, "20"); }},
    {"delete", true, [](Job& job) { return Delete(job, "20"); }},
    {"delete the last", true, [](Job& job) { return Delete(job, "40"); }},
    {"import", true, Import},
    {"measure behind the last", false, [](Job& job) { return Measure(job, "41", 5.0); }},
    {"measure behind a gap", false, [](Job& job) { return Measure(job, "60", 5.0); }},
    {"type over", false, [](Job& job) { return Overtype(job, "20"); }},
    {"delete", false, [](Job& job) { return Delete(job, "20"); }},
};

void Prepare(TestHost& host, bool alphanumeric) {
  Job job = MakeJob(host, alphanumeric);
  for (const char* id : {"10", "20", "30", "40"}) ASSERT_TRUE(Measure(job, id, 1.0));
  ASSERT_TRUE(WriteNote(
      job, {.pointId = "20", .lines = {"a tree"}, .qualityLines = "HRMS,0.010\nSTATUS,FIXED\n"}));
  ASSERT_TRUE(CloseJob(job).ok());
  host.memory.Restart(0);
}

std::string State(const TestHost& host) {
  return host.memory.Bytes(kJobPath) + "\n=\n" + host.memory.Bytes(kRawPath) + "\n=\n" +
         host.memory.Bytes(kNotesPath);
}

std::string StateAfter(const Operation& operation, bool run) {
  TestHost host;
  Prepare(host, operation.alphanumeric);
  Job job = MakeJob(host, operation.alphanumeric);
  if (run) {
    EXPECT_TRUE(operation.run(job)) << operation.name;
  }
  return State(host);
}

// Runs the operation with the mishap at `step`; false when it was over before that step.
bool Interrupt(const Operation& operation, Mishap mishap, int step, unsigned seed,
               const std::string& before, const std::string& after) {
  TestHost host;
  Prepare(host, operation.alphanumeric);
  Job job = MakeJob(host, operation.alphanumeric);
  host.memory.Expect(mishap, step);
  const bool reported = operation.run(job);
  const bool happened = host.memory.happened();
  host.memory.Restart(seed);
  Job again = MakeJob(host, operation.alphanumeric);
  EXPECT_NE(OpenCoordinateFile(again), nullptr);
  const std::string state = State(host);
  EXPECT_TRUE(state == after || (!reported && state == before))
      << operation.name << (operation.alphanumeric ? " by name" : " by number") << ", mishap "
      << int(mishap) << " at step " << step << " seed " << seed
      << (reported ? ", reported as done" : "") << "\nholds " << state.substr(0, 3000);
  EXPECT_FALSE(HasInterruptedChange(host.memory, kJobPath));
  EXPECT_TRUE(Measure(again, "99", 9.0));  // and work goes on
  return happened;
}

TEST(JobUnit, IsInAllThreeFilesOrInNone) {
  for (const Operation& operation : kOperations) {
    const std::string before = StateAfter(operation, false);
    const std::string after = StateAfter(operation, true);
    ASSERT_NE(before, after);
    for (const Mishap mishap :
         {Mishap::Fails, Mishap::DiskFull, Mishap::Killed, Mishap::PowerLoss}) {
      const unsigned seeds = mishap != Mishap::PowerLoss ? 1 : before.size() > 5000 ? 5 : 40;
      for (unsigned seed = 0; seed < seeds; ++seed) {
        for (int step = 1; Interrupt(operation, mishap, step, seed, before, after); ++step) {
        }
      }
    }
  }
}

// Once a person was told that nothing was changed, a loss of power brings no part of it back.
TEST(JobUnit, KeepsItsWordThatNothingWasChanged) {
  int refusals = 0;
  for (const Operation& operation : kOperations) {
    const std::string before = StateAfter(operation, false);
    for (const Mishap mishap : {Mishap::Fails, Mishap::DiskFull}) {
      bool happened = true;
      for (int step = 1; happened; ++step) {
        for (unsigned seed = 0; seed < 6; ++seed) {
          TestHost host;
          Prepare(host, operation.alphanumeric);
          Job job = MakeJob(host, operation.alphanumeric);
          host.memory.Expect(mishap, step);
          const bool reported = operation.run(job);
          happened = host.memory.happened();
          if (reported || host.messages.empty() ||
              host.messages.back().find("was not changed") == std::string::npos) {
            continue;
          }
          ++refusals;
          host.memory.Expect(Mishap::PowerLoss, 1);
          host.memory.Restart(seed);
          Job again = MakeJob(host, operation.alphanumeric);
          EXPECT_NE(OpenCoordinateFile(again), nullptr);
          EXPECT_TRUE(State(host) == before)
              << operation.name << ", mishap " << int(mishap) << " at step " << step << " seed "
              << seed << "\nholds " << host.memory.Bytes(kRawPath);
        }
      }
    }
  }
  EXPECT_GT(refusals, 100);
}

// Many points settled later: whatever is interrupted, every reported one is in all three files, and
// at most one more.
TEST(JobUnit, KeepsEveryReportedPointThatSettlesLater) {
  constexpr int kPoints = 5;
  std::vector<std::string> states;
  const auto measure = [](Job& job, int number) {
    return Measure(job, std::to_string(50 + number), number, Settling::Later);
  };
  {
    TestHost host;
    Prepare(host, true);
    Job job = MakeJob(host, true);
    states.push_back(State(host));
    for (int i = 0; i < kPoints; ++i) {
      ASSERT_TRUE(measure(job, i));
      states.push_back(State(host));
    }
  }
  for (const Mishap mishap : {Mishap::Fails, Mishap::Killed, Mishap::PowerLoss}) {
    const unsigned seeds = mishap == Mishap::PowerLoss ? 60 : 1;
    for (unsigned seed = 0; seed < seeds; ++seed) {
      bool happened = true;
      for (int step = 1; happened; ++step) {
        TestHost host;
        Prepare(host, true);
        Job job = MakeJob(host, true);
        host.memory.Expect(mishap, step);
        std::size_t reported = 0;
        while (reported < kPoints && measure(job, static_cast<int>(reported))) ++reported;
        if (reported == kPoints && step % 2 == 0) (void)CloseJob(job);
        happened = host.memory.happened();
        host.memory.Restart(seed);
        Job again = MakeJob(host, true);
        ASSERT_NE(OpenCoordinateFile(again), nullptr);
        const std::string state = State(host);
        const bool next = reported < kPoints && state == states[reported + 1];
        EXPECT_TRUE(state == states[reported] || next)
            << "mishap " << int(mishap) << " step " << step << " seed " << seed << ", reported "
            << reported << "\nholds " << state;
      }
    }
  }
}

// A long recording: what waits in the journal stays within bounds, and none of it is lost with the
// power.
TEST(JobUnit, SettlesByItselfBeforeTheJournalGrows) {
  TestHost host;
  Prepare(host, true);
  Job job = MakeJob(host, true);
  constexpr int kPoints = 1000;
  for (int i = 0; i < kPoints; ++i) {
    ASSERT_TRUE(Measure(job, std::to_string(1000 + i), 1.0, Settling::Later));
  }
  EXPECT_LT(host.memory.Bytes(kJournalPath).size(), std::size_t{256} << 10U);
  host.memory.Expect(Mishap::PowerLoss, 1);
  EXPECT_FALSE(Measure(job, "5000", 1.0, Settling::Later));
  host.memory.Restart(7);
  Job again = MakeJob(host, true);
  ASSERT_NE(OpenCoordinateFile(again), nullptr);
  EXPECT_EQ(again.store.lastPointId, std::to_string(1000 + kPoints - 1));
  const std::string raw = host.memory.Bytes(kRawPath);
  for (int i = 0; i < kPoints; ++i) {
    EXPECT_NE(raw.find("\n--GS,PN" + std::to_string(1000 + i)), std::string::npos);
  }
}

// Another program opens the job while units wait in the journal: it sees them all, and both go on.
TEST(JobUnit, OfTwoProgramsFollowOneAnother) {
  TestHost host;
  Prepare(host, true);
  Job first = MakeJob(host, true);
  Job second = MakeJob(host, true);
  for (int round = 0; round < 4; ++round) {
    ASSERT_TRUE(Measure(first, "A" + std::to_string(round), 1.0, Settling::Later));
    ASSERT_TRUE(Measure(first, "B" + std::to_string(round), 1.0, Settling::Later));
    ASSERT_TRUE(Measure(second, "C" + std::to_string(round), 1.0, Settling::Later));
  }
  ASSERT_TRUE(CloseJob(second).ok());
  ASSERT_TRUE(CloseJob(first).ok());
  const std::string notes = host.memory.Bytes(kNotesPath);
  for (int round = 0; round < 4; ++round) {
    for (const char* letter : {"A", "B", "C"}) {
      const std::string id = letter + std::to_string(round);
      const std::size_t at = notes.find("PT_ID:" + id + "\n");
      EXPECT_NE(at, std::string::npos);
      EXPECT_EQ(notes.find("PT_ID:" + id + "\n", at + 1), std::string::npos);
      EXPECT_NE(host.memory.Bytes(kRawPath).find("\nGPS,PN" + id), std::string::npos);
    }
  }
  EXPECT_FALSE(host.memory.Exists(kJournalPath));
}

// What one program left unsettled, another settles; the first one's next entries must be found
// again.
TEST(JobUnit, IsDurableAfterAnotherProgramSettled) {
  for (unsigned seed = 0; seed < 30; ++seed) {
    TestHost host;
    Prepare(host, true);
    Job first = MakeJob(host, true);
    ASSERT_TRUE(Measure(first, "A1", 1.0, Settling::Later));
    ASSERT_TRUE(Measure(first, "A2", 1.0, Settling::Later));
    {
      Job second = MakeJob(host, true);
      ASSERT_NE(OpenCoordinateFile(second), nullptr);
      if (seed % 2 == 0) {
        ASSERT_TRUE(Measure(second, "B1", 1.0));
      }
      ASSERT_TRUE(CloseJob(second).ok());
    }
    ASSERT_TRUE(Measure(first, "A3", 1.0, Settling::Later));
    host.memory.Expect(Mishap::PowerLoss, 1);
    EXPECT_FALSE(Measure(first, "A4", 1.0, Settling::Later));
    host.memory.Restart(seed);
    Job again = MakeJob(host, true);
    ASSERT_NE(OpenCoordinateFile(again), nullptr);
    for (const char* id : {"A1", "A2", "A3"}) {
      Point point;
      const auto stream = OpenForReading(again);
      EXPECT_EQ(ReadPoint(again, id, stream.get(), point), ReadPointResult::Found) << id << seed;
      EXPECT_NE(host.memory.Bytes(kRawPath).find("\nGPS,PN" + std::string(id)), std::string::npos);
      EXPECT_NE(host.memory.Bytes(kNotesPath).find("PT_ID:" + std::string(id)), std::string::npos);
    }
  }
}

// A program that settles or closes leaves what another one has in the journal meanwhile.
TEST(JobUnit, LeavesTheEntriesOfAnotherProgram) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    TestHost host;
    Prepare(host, true);
    Job first = MakeJob(host, true);
    Job second = MakeJob(host, true);
    ASSERT_TRUE(Measure(first, "A1", 1.0, Settling::Later));
    ASSERT_TRUE(Measure(second, "B1", 1.0, Settling::Later));
    ASSERT_TRUE((seed % 2 == 0 ? SettleJob(first) : CloseJob(first)).ok());
    host.memory.Expect(Mishap::PowerLoss, 1);
    EXPECT_FALSE(Measure(second, "B2", 1.0, Settling::Later));
    host.memory.Restart(seed);
    Job again = MakeJob(host, true);
    const auto stream = OpenForReading(again);
    for (const char* id : {"A1", "B1"}) {
      Point point;
      EXPECT_EQ(ReadPoint(again, id, stream.get(), point), ReadPointResult::Found) << id << seed;
      EXPECT_NE(host.memory.Bytes(kRawPath).find("\nGPS,PN" + std::string(id)), std::string::npos);
    }
  }
}

// Somebody edited the text files between the interruption and the next start: what the unit says
// still comes, once, behind what was added.
TEST(JobUnit, IsFinishedBehindWhatSomebodyAdded) {
  const std::string records = "\nGPS,PN50\n--GS,PN50";
  const std::string block = "PT_ID:50\nHRMS,0.010\nSTATUS,FIXED\n";
  TestHost host;
  Prepare(host, true);
  const std::string raw = host.memory.Bytes(kRawPath);
  const std::string notes = host.memory.Bytes(kNotesPath);
  Job job = MakeJob(host, true);
  ASSERT_TRUE(Measure(job, "50", 5.0, Settling::Later));
  const std::string journal = host.memory.Bytes(kJournalPath);
  ASSERT_TRUE(CloseJob(job).ok());
  ASSERT_EQ(host.memory.Bytes(kRawPath), raw + records);
  ASSERT_EQ(host.memory.Bytes(kNotesPath), notes + block);
  const struct {
    std::string raw;
    std::string finishedRaw;
    std::string notes;
    std::string finishedNotes;
  } cases[] = {
      {raw, raw + records, notes, notes + block},
      {raw + records.substr(0, 5), raw + records, notes + block.substr(0, 9), notes + block},
      {raw + std::string(7, '\0'), raw + records, notes, notes + block},  // lost with the power
      {raw + records + "\n--later", raw + records + "\n--later", notes + block + "PT_ID:7\n",
       notes + block + "PT_ID:7\n"},
      {raw + "\n--a", raw + "\n--a" + records, notes + "PT_ID:7", notes + "PT_ID:7\n" + block},
      {raw + "\n--a long remark of somebody", raw + "\n--a long remark of somebody" + records,
       notes + "PT_ID:7\nNOTE1,a long remark of somebody\n",
       notes + "PT_ID:7\nNOTE1,a long remark of somebody\n" + block}};
  for (const auto& c : cases) {
    host.memory.Put(kJournalPath, journal);
    host.memory.Put(kRawPath, c.raw);
    host.memory.Put(kNotesPath, c.notes);
    Job again = MakeJob(host, true);
    ASSERT_NE(OpenCoordinateFile(again), nullptr);
    EXPECT_EQ(host.memory.Bytes(kRawPath), c.finishedRaw);
    EXPECT_EQ(host.memory.Bytes(kNotesPath), c.finishedNotes);
  }
}

// A journal comes with the job's files from elsewhere, and may be anything.
TEST(ChangeEntry, WritesWithinTheFileOnly) {
  const auto isRead = [](const FileWrite& write) {
    const std::string bytes =
        EncodeEntry({.change = {{.oldSize = 16, .newSize = 24, .writes = {write}}}});
    std::string_view rest = bytes;
    return TakeEntry(rest).has_value();
  };
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  EXPECT_TRUE(isRead({.offset = 16, .bytes = "0123", .repeat = 2}));
  EXPECT_FALSE(isRead({.offset = 16, .bytes = "0123", .repeat = 3}));
  EXPECT_FALSE(isRead({.offset = 0, .bytes = "0123", .repeat = kMost}));
  EXPECT_FALSE(isRead({.offset = kMost - 1, .bytes = "0123"}));
  EXPECT_FALSE(isRead({.offset = 25, .bytes = "0123"}));
}

using Change = std::function<void(Job&, JobUnit&)>;

Change Storing(const char* id, double northing) {
  return [id, northing](Job& job, JobUnit& unit) {
    job.ids.current = id;
    EXPECT_EQ(StorePoint(job, {.northing = northing}, "d", false, &unit.coordinates()),
              StorePointResult::Stored);
  };
}

Change Deleting(const char* id) {
  return [id](Job& job, JobUnit& unit) {
    EXPECT_EQ(DeletePoint(job, id, &unit.coordinates()), DeletePointResult::Deleted);
  };
}

// So many that the file is replaced.
void ImportMany(Job& job, JobUnit& unit) {
  std::vector<Point> batch(6000);
  for (std::size_t i = 0; i < batch.size(); ++i) {
    batch[i] = {.at = {.northing = 3.0}, .description = {}, .id = PointId(std::to_string(100 + i))};
  }
  EXPECT_EQ(StorePoints(job, batch, unit.coordinates()), StorePointsResult::Stored);
}

// What the coordinate file holds after the changes, each in a unit of its own.
std::string BytesAfterEach(const std::vector<Change>& changes, bool alphanumeric) {
  TestHost host;
  Prepare(host, alphanumeric);
  Job job = MakeJob(host, alphanumeric);
  for (const Change& change : changes) {
    const auto unit = JobUnit::Begin(job);
    change(job, *unit);
    EXPECT_EQ(unit->Commit(), ChangeResult::Done);
  }
  return host.memory.Bytes(kJobPath);
}

// The same in one unit; false when it was killed at `step` and left the file as before.
bool HoldsAfterAll(const std::vector<Change>& changes, bool alphanumeric, int step,
                   const std::string& expected) {
  TestHost host;
  Prepare(host, alphanumeric);
  Job job = MakeJob(host, alphanumeric);
  const std::string before = host.memory.Bytes(kJobPath);
  auto unit = JobUnit::Begin(job);
  for (const Change& change : changes) change(job, *unit);
  if (step > 0) host.memory.Expect(Mishap::Killed, step);
  const bool done = unit->Commit() == ChangeResult::Done;
  unit.reset();
  host.memory.Restart(0);
  Job again = MakeJob(host, alphanumeric);
  EXPECT_NE(OpenCoordinateFile(again), nullptr);
  if (host.memory.Bytes(kJobPath) == expected) return true;
  EXPECT_TRUE(!done && host.memory.Bytes(kJobPath) == before)
      << (alphanumeric ? "by name" : "by number") << ", killed at " << step << ": "
      << host.memory.Bytes(kJobPath).size() << " bytes for " << expected.size();
  return false;
}

// Whatever each of them comes to: a record behind the others, one in between, a file that is
// replaced.
TEST(JobUnit, HoldsEveryOneOfItsChanges) {
  const std::vector<Change> units[] = {
      {Storing("50", 5.0), Deleting("50")},
      {Storing("50", 5.0), Deleting("50"), Storing("50", 5.0)},
      {Deleting("10"), Storing("50", 5.0), Storing("15", 6.0), Deleting("50")},
      {ImportMany, Storing("50", 5.0), Storing("9000", 7.0)},
      {Storing("50", 5.0), ImportMany, Deleting("10")},
      {ImportMany, Deleting("10"), Storing("15", 6.0)}};
  for (const bool alphanumeric : {true, false}) {
    for (const std::vector<Change>& changes : units) {
      const std::string expected = BytesAfterEach(changes, alphanumeric);
      for (int step = 1; !HoldsAfterAll(changes, alphanumeric, step, expected); ++step) {
      }
      EXPECT_TRUE(HoldsAfterAll(changes, alphanumeric, 0, expected));
    }
  }
}

// A disk that could not write something forgets it, and says so once: the next time it reports
// success. What the journal holds must be carried out again.
TEST(JobUnit, WritesAgainWhatCouldNotBeMadeDurable) {
  for (const Settling settling : {Settling::Now, Settling::Later}) {
    TestHost host;
    Prepare(host, true);
    Job job = MakeJob(host, true);
    if (settling == Settling::Later) {
      ASSERT_TRUE(Measure(job, "A1", 1.0, Settling::Later));
      ASSERT_TRUE(Measure(job, "A2", 1.0, Settling::Later));
    }
    host.memory.LoseAtSync(kRawPath);
    EXPECT_FALSE(settling == Settling::Now ? Measure(job, "A2", 1.0) : SettleJob(job).ok());
    ASSERT_TRUE(Measure(job, "A3", 1.0));
    (void)CloseJob(job);
    host.memory.Expect(Mishap::PowerLoss, 1);
    EXPECT_FALSE(Measure(job, "A4", 1.0));
    host.memory.Restart(0);
    Job again = MakeJob(host, true);
    ASSERT_NE(OpenCoordinateFile(again), nullptr);
    for (const char* id : {"A2", "A3"}) {
      EXPECT_NE(host.memory.Bytes(kRawPath).find("\nGPS,PN" + std::string(id)), std::string::npos)
          << id;
    }
  }
}

TEST(JobUnit, SaysWhichFileRefuses) {
  const std::pair<const char*, const char*> files[] = {
      {kRawPath, "/jobs/site.crd was not changed: /jobs/site.rw5: Permission denied."},
      {kNotesPath, "/jobs/site.crd was not changed: /jobs/site.not: Permission denied."},
      {kJournalPath, "/jobs/site.crd was not changed: /jobs/site.crd.redo: Permission denied."}};
  for (const auto& [path, message] : files) {
    TestHost host;
    Prepare(host, true);
    const std::string before = State(host);
    if (path == kJournalPath) host.memory.Put(kJournalPath, std::string(16, '\0'));
    host.memory.MakeReadOnly(path);
    Job job = MakeJob(host, true);
    EXPECT_FALSE(Measure(job, "50", 5.0));
    EXPECT_EQ(host.messages, std::vector<std::string>{message});
    EXPECT_EQ(State(host), before);
  }
}

TEST(JobUnit, SaysWhichFileKeepsItFromBeingFinished) {
  TestHost host;
  Prepare(host, true);
  Job job = MakeJob(host, true);
  ASSERT_TRUE(Measure(job, "50", 5.0, Settling::Later));
  host.memory.MakeReadOnly(kRawPath);
  Job again = MakeJob(host, true);
  EXPECT_EQ(OpenCoordinateFile(again), nullptr);
  ASSERT_EQ(host.messages.size(), 1U);
  EXPECT_NE(host.messages[0].find("cannot be completed: /jobs/site.rw5: Permission denied."),
            std::string::npos);
  host.memory.MakeReadOnly("");
  EXPECT_NE(OpenCoordinateFile(again), nullptr);
}

TEST(JobUnit, LeavesTheJobAsItWasWhenItIsGivenUp) {
  TestHost host;
  Prepare(host, true);
  const std::string before = State(host);
  Job job = MakeJob(host, true);
  ASSERT_NE(OpenCoordinateFile(job), nullptr);
  {
    const auto unit = JobUnit::Begin(job);
    job.ids.current = "77";
    ASSERT_EQ(StorePoint(job, {.northing = 1.0}, "", false, &unit->coordinates()),
              StorePointResult::Stored);
    Point point;
    EXPECT_EQ(ReadPoint(job, "77", &unit->coordinates(), point), ReadPointResult::Found);
    EXPECT_EQ(job.store.lastPointId, "77");
  }
  EXPECT_EQ(job.store.lastPointId, "40");
  EXPECT_EQ(State(host), before);
}

// Root at work on a surveyor's job must not shut the surveyor out of it.
TEST(JobUnit, GivesFilesItMakesTheRightsOfTheCoordinateFile) {
  TestHost host;
  Job job = MakeJob(host, true);
  ASSERT_TRUE(Measure(job, "1", 1.0, Settling::Later));
  const std::map<std::string, std::string> expected = {
      {kRawPath, kJobPath}, {kNotesPath, kJobPath}, {kJournalPath, kJobPath}};
  EXPECT_EQ(host.memory.rightsLike, expected);
}

}  // namespace
}  // namespace tarvex
