// Every operation that changes a job's files, interrupted at every step in every way: afterwards
// the job opens and holds the old state or the new one, and what was reported as stored is there.
#include <gtest/gtest.h>

#include <functional>

#include "core/coordinates/coordinate_layout.h"
#include "core/coordinates/point_bulk.h"
#include "core/coordinates/point_list.h"
#include "core/coordinates/point_store.h"
#include "core/journal/change_entry.h"
#include "core/journal/change_journal.h"
#include "core/journal/file_rewrite.h"
#include "core/raw_data/raw_file.h"
#include "tests/support/test_host.h"

namespace tarvex {
namespace {

struct Operation {
  const char* name;
  bool alphanumeric;
  std::function<bool(Job&)> run;  // true when it reported success
};

bool Store(Job& job, const std::string& id, double northing) {
  const auto stream = OpenCoordinateFile(job);
  job.ids.current = id;
  return StorePoint(job, {.northing = northing}, "d", false, stream.get()) ==
         StorePointResult::Stored;
}

bool Delete(Job& job, const std::string& id) {
  const auto stream = OpenCoordinateFile(job);
  return DeletePoint(job, id, stream.get()) == DeletePointResult::Deleted;
}

bool StoreBatch(Job& job) {
  std::vector<Point> batch(3);
  for (std::size_t i = 0; i < batch.size(); ++i) {
    batch[i] = {
        .at = {.northing = 100.0}, .description = {}, .id = PointId(std::to_string(3 + 4 * i))};
  }
  return StorePoints(job, batch) == StorePointsResult::Stored;
}

const Operation kOperations[] = {
    {"append", true, [](Job& job) { return Store(job, "50", 5.0); }},
    {"insert in front", true, [](Job& job) { return Store(job, "1", 5.0); }},
    {"insert", true, [](Job& job) { return Store(job, "25", 5.0); }},
    {"overwrite", true, [](Job& job) { return Store(job, "20", 5.0); }},
    {"delete", true, [](Job& job) { return Delete(job, "20"); }},
    {"delete the last", true, [](Job& job) { return Delete(job, "40"); }},
    {"bulk", true, StoreBatch},
    {"append", false, [](Job& job) { return Store(job, "41", 5.0); }},
    {"append behind a gap", false, [](Job& job) { return Store(job, "60", 5.0); }},
    {"overwrite", false, [](Job& job) { return Store(job, "20", 5.0); }},
    {"delete", false, [](Job& job) { return Delete(job, "20"); }},
    {"bulk", false, StoreBatch},
};

std::string State(Job& job) {
  PointList points;
  if (LoadAllPoints(job, points) != LoadPointsResult::Loaded) return "cannot be loaded";
  std::string text;
  for (const Point& point : points)
    text += point.id.str() + "=" + std::to_string(point.at.northing) + " ";
  return text;
}

void Prepare(TestHost& host, bool alphanumeric) {
  Job job = MakeJob(host, alphanumeric);
  for (const char* id : {"10", "20", "30", "40"}) ASSERT_TRUE(Store(job, id, 1.0));
}

std::string StateAfter(const Operation& operation, bool run) {
  TestHost host;
  Prepare(host, operation.alphanumeric);
  Job job = MakeJob(host, operation.alphanumeric);
  if (run) {
    EXPECT_TRUE(operation.run(job));
  }
  return State(job);
}

// What the person was told must be so: the last message of a machine that goes on working.
void ExpectToldTheTruth(const TestHost& host, bool reported, const std::string& state,
                        const std::string& before, const std::string& after) {
  const std::string told = host.messages.empty() ? "" : host.messages.back();
  const bool made = reported || told.find("could not be made durable") != std::string::npos ||
                    told.find("is completed when the job is opened") != std::string::npos;
  EXPECT_EQ(state, made ? after : before) << told;
}

struct Interruption {
  Mishap mishap = Mishap::None;
  int step = 0;
  unsigned seed = 0;
  bool irreplaceable = false;  // the file belongs to somebody else: changed in place
};

// Runs the operation with the mishap at a step; false when it was over before that step.
bool Interrupt(const Operation& operation, const Interruption& interruption,
               const std::string& before, const std::string& after) {
  const auto [mishap, step, seed, irreplaceable] = interruption;
  TestHost host;
  Prepare(host, operation.alphanumeric);
  Job job = MakeJob(host, operation.alphanumeric);
  host.memory.Restart(0);
  if (irreplaceable) host.memory.MakeIrreplaceable(kJobPath);
  host.memory.Expect(mishap, step);
  const bool reported = operation.run(job);
  const bool happened = host.memory.happened();
  host.memory.Restart(seed);
  Job again = MakeJob(host, operation.alphanumeric);
  EXPECT_NE(OpenCoordinateFile(again), nullptr);
  const std::string state = State(again);
  const bool asReported = reported ? state == after : state == before || state == after;
  EXPECT_TRUE(asReported) << operation.name << (operation.alphanumeric ? " by name" : " by number")
                          << ", mishap " << int(mishap) << " at step " << step << " seed " << seed
                          << (reported ? ", reported as done" : "") << "\nholds " << state;
  if (mishap == Mishap::Fails || mishap == Mishap::DiskFull) {
    ExpectToldTheTruth(host, reported, state, before, after);
  }
  EXPECT_TRUE(Store(again, "99", 9.0));  // and work goes on
  EXPECT_EQ(State(again), state + "99=9.000000 ")
      << operation.name << ", mishap " << int(mishap) << " at step " << step << " seed " << seed
      << (irreplaceable ? ", in place" : "");
  return happened;
}

TEST(Interruption, LeavesTheOldStateOrTheNewOne) {
  for (const Operation& operation : kOperations) {
    const std::string before = StateAfter(operation, false);
    const std::string after = StateAfter(operation, true);
    ASSERT_NE(before, after);
    for (const Mishap mishap :
         {Mishap::Fails, Mishap::DiskFull, Mishap::Killed, Mishap::PowerLoss}) {
      const unsigned seeds = mishap == Mishap::PowerLoss ? 40 : 1;
      int steps = 0;
      for (unsigned seed = 0; seed < seeds; ++seed) {
        for (const bool irreplaceable : {false, true}) {
          Interruption at{
              .mishap = mishap, .step = 1, .seed = seed, .irreplaceable = irreplaceable};
          for (; Interrupt(operation, at, before, after); ++at.step) steps = at.step;
        }
      }
      EXPECT_GE(steps, 2) << operation.name;
    }
  }
}

// Small files are replaced as a whole; large ones are changed through the journal.
TEST(Interruption, OfAJournaledChangeLeavesTheOldBytesOrTheNew) {
  const std::string oldBytes = "0123456789abcdef";
  const FileChange changes[] = {
      {.oldSize = 16, .newSize = 16, .writes = {{.offset = 4, .bytes = "WXYZ"}}},
      {.oldSize = 16,
       .newSize = 24,
       .writes = {{.offset = 0, .bytes = "N"}, {.offset = 10, .bytes = "FILLED.", .repeat = 2}}},
      {.oldSize = 16, .newSize = 12, .writes = {{.offset = 6, .bytes = "abcdef"}}},
  };
  const std::string newBytes[] = {"0123WXYZ89abcdef", "N123456789FILLED.FILLED.", "012345abcdef"};
  for (std::size_t i = 0; i < std::size(changes); ++i) {
    for (const Mishap mishap :
         {Mishap::None, Mishap::Fails, Mishap::DiskFull, Mishap::Killed, Mishap::PowerLoss}) {
      bool happened = true;
      for (int step = 1; happened; ++step) {
        for (unsigned seed = 0; seed < 40; ++seed) {
          MemoryFiles files;
          files.Put(kJobPath, oldBytes);
          files.Expect(mishap, step);
          std::unique_ptr<File> file;
          ASSERT_TRUE(files.Open(kJobPath, FileAccess::ReadWrite, file).ok());
          const bool done = ChangeFile(files, kJobPath, *file, changes[i]).ok();
          happened = files.happened();
          files.Restart(seed);
          ASSERT_TRUE(files.Open(kJobPath, FileAccess::ReadWrite, file).ok());
          ASSERT_TRUE(FinishInterruptedChange(files, kJobPath, *file).ok());
          const std::string bytes = files.Bytes(kJobPath);
          EXPECT_TRUE(bytes == newBytes[i] || (!done && bytes == oldBytes))
              << "change " << i << " mishap " << int(mishap) << " step " << step << ": " << bytes;
          EXPECT_FALSE(HasInterruptedChange(files, kJobPath));
        }
      }
    }
  }
}

// Behind the entries of a journal that was begun anew stand those of the series before.
TEST(Interruption, LeavesTheEntriesOfAnEarlierSeries) {
  const auto entry = [](std::uint64_t series, std::uint64_t number, const char* bytes) {
    const FileWrite write{.offset = 0, .bytes = bytes};
    return EncodeEntry({.series = series,
                        .number = number,
                        .change = {{.oldSize = 8, .newSize = 8, .writes = {write}}}});
  };
  const struct {
    std::string second;
    const char* expected;
  } cases[] = {{entry(5, 1, "bb"), "bb345678"},
               {entry(9, 1, "bb"), "aa345678"},
               {entry(5, 2, "bb"), "aa345678"}};
  for (const auto& c : cases) {
    MemoryFiles files;
    files.Put(kJobPath, "12345678");
    files.Put(PathWithExtension(kJobPath, "crd.redo"), entry(5, 0, "aa") + c.second);
    std::unique_ptr<File> file;
    ASSERT_TRUE(files.Open(kJobPath, FileAccess::ReadWrite, file).ok());
    ASSERT_TRUE(FinishInterruptedChange(files, kJobPath, *file).ok());
    EXPECT_EQ(files.Bytes(kJobPath), c.expected);
  }
}

TEST(Interruption, OfCreationAndConversionLosesNothing) {
  TestHost model;
  Prepare(model, true);
  std::string older = model.memory.Bytes(kJobPath);
  older[86] = '\0';
  for (const bool convert : {false, true}) {
    for (const Mishap mishap : {Mishap::DiskFull, Mishap::Killed, Mishap::PowerLoss}) {
      bool happened = true;
      for (int step = 1; happened; ++step) {
        TestHost host;
        if (convert) host.memory.Put(kJobPath, older);
        host.memory.Expect(mishap, step);
        Job job = MakeJob(host, true);
        (void)OpenCoordinateFile(job);
        happened = host.memory.happened();
        host.memory.Restart(static_cast<unsigned>(step));
        Job again = MakeJob(host, true);
        ASSERT_NE(OpenCoordinateFile(again), nullptr) << step;
        EXPECT_TRUE(again.store.alphanumeric);
        EXPECT_EQ(State(again).empty(), !convert);
      }
    }
  }
}

// Of a file that may not be replaced, as the notes or settings of somebody else.
TEST(Interruption, OfARewriteInPlaceLeavesTheOldBytesOrTheNew) {
  for (const Mishap mishap : {Mishap::Fails, Mishap::DiskFull, Mishap::Killed, Mishap::PowerLoss}) {
    bool happened = true;
    for (int step = 1; happened; ++step) {
      for (unsigned seed = 0; seed < 40; ++seed) {
        MemoryFiles files;
        files.Put("/jobs/site.job", "units=metres\n");
        files.MakeIrreplaceable("/jobs/site.job");
        files.Expect(mishap, step);
        const bool done = RewriteWholeFile(files, "/jobs/site.job", "units=us-feet\nname=x\n").ok();
        happened = files.happened();
        files.Restart(seed);
        ASSERT_TRUE(FinishRewrite(files, "/jobs/site.job").ok());
        const std::string bytes = files.Bytes("/jobs/site.job");
        EXPECT_TRUE(bytes == "units=us-feet\nname=x\n" || (!done && bytes == "units=metres\n"))
            << int(mishap) << " step " << step << ": " << bytes;
        EXPECT_FALSE(HasInterruptedChange(files, "/jobs/site.job"));
      }
    }
  }
}

TEST(Interruption, NeverTearsTheRawFile) {
  for (const Mishap mishap : {Mishap::Fails, Mishap::DiskFull}) {
    for (int step = 1; step < 6; ++step) {
      TestHost host;
      Job job = MakeJob(host, true);
      ASSERT_EQ(AppendRawRecord(job, "\n--first"), RawFileResult::Written);
      const std::string raw = host.memory.Bytes("/jobs/site.rw5");
      host.memory.Expect(mishap, step);
      const bool written = AppendRawRecord(job, "\n--second") == RawFileResult::Written;
      host.memory.Restart(0);
      EXPECT_EQ(host.memory.Bytes("/jobs/site.rw5"), written ? raw + "\n--second" : raw) << step;
    }
  }
}

}  // namespace
}  // namespace tarvex
