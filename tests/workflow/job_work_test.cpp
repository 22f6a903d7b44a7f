// Work on a job without a receiver: typed points, imports, deletions, interrupted at every step.
#include <gmock/gmock.h>

#include "app/workflow/point_deletion.h"
#include "app/workflow/point_import.h"
#include "app/workflow/point_storing.h"
#include "core/coordinates/point_list.h"
#include "core/observations/job_unit.h"
#include "tests/workflow/field_site.h"

namespace tarvex {
namespace {

using testing::HasSubstr;
using testing::Not;

class JobWork : public FieldSite {
 protected:
  StoringResult Store(const std::string& id, double northing) {
    return StoreTypedPoint(*session, {.id = id, .at = {.northing = northing}, .description = "x"})
        .stored.result;
  }

  void Measure(const std::string& id) {
    const auto unit = JobUnit::Begin(session->job());
    unit->EditNote(id, {.kind = NoteEdit::Kind::SetQuality,
                        .note = {.pointId = id,
                                 .lines = {"seen from north"},
                                 .qualityLines = "HRMS,0.010\nSTATUS,FIXED\n"}});
    ASSERT_EQ(unit->Commit(), ChangeResult::Done);
  }
};

TEST_F(JobWork, TypedOverMeasuredIsNoLongerMeasured) {
  ASSERT_EQ(Store("A", 1.0), StoringResult::Stored);
  Measure("A");
  session->setPolicy(ExistingPolicy::Overwrite);
  EXPECT_EQ(Store("A", 2.0), StoringResult::Stored);
  EXPECT_EQ(Notes(), "PT_ID:A\nNOTE1,seen from north\n");
  EXPECT_THAT(Raw(), HasSubstr("\n--Replaced point:SP,PNA,N 1.0000,"));
}

TEST_F(JobWork, ADeletedPointTakesItsNoteAlong) {
  for (const char* id : {"A", "B"}) ASSERT_EQ(Store(id, 1.0), StoringResult::Stored);
  for (const char* id : {"A", "B"}) Measure(id);
  Point deleted;
  EXPECT_EQ(DeleteJobPoint(*session, "A", deleted), DeletionResult::Deleted);
  EXPECT_EQ(deleted.at.northing, 1.0);
  EXPECT_EQ(Notes(), "PT_ID:B\nNOTE1,seen from north\nHRMS,0.010\nSTATUS,FIXED\n");
  EXPECT_THAT(Raw(), HasSubstr("\n--Deleted point:SP,PNA,N 1.0000,"));
  PointList left;
  ASSERT_EQ(LoadAllPoints(session->job(), left), LoadPointsResult::Loaded);
  ASSERT_EQ(left.size(), 1U);
  EXPECT_EQ(DeleteJobPoint(*session, "A", deleted), DeletionResult::NotFound);
}

TEST_F(JobWork, TheRawFileIsStampedOnceASession) {
  ASSERT_EQ(Store("A", 1.0), StoringResult::Stored);
  const auto stamps = [this] {
    std::size_t count = 0;
    const std::string raw = Raw();
    for (std::size_t at = raw.find("\n--DT"); at != std::string::npos;
         at = raw.find("\n--DT", at + 1)) {
      ++count;
    }
    return count;
  };
  EXPECT_EQ(stamps(), 0U);  // the header of a new file has its own date
  session.emplace(work, kSitePath);
  ASSERT_TRUE(session->Load());
  ASSERT_EQ(Store("B", 1.0), StoringResult::Stored);
  ASSERT_EQ(Store("C", 1.0), StoringResult::Stored);
  EXPECT_EQ(stamps(), 1U);
}

TEST_F(JobWork, APersonIsAskedWithBothPlacesAndWithoutALock) {
  ASSERT_EQ(Store("A", 1.0), StoringResult::Stored);
  session->setPolicy(ExistingPolicy::Ask);
  observer.answer.choice = ExistingPointAnswer::Choice::Cancel;
  EXPECT_EQ(Store("A", 2.0), StoringResult::Exists);
  ASSERT_EQ(observer.asked.size(), 1U);
  EXPECT_EQ(observer.asked[0].existing.at.northing, 1.0);
  EXPECT_EQ(observer.asked[0].wanted->northing, 2.0);
}

TEST_F(JobWork, AnImportTellsWhatItMeetsAndCanLeaveIt) {
  ASSERT_EQ(Store("2", 1.0), StoringResult::Stored);
  Measure("2");
  const PointImport import =
      ParsePointImport(session->job(), "1,10,20,30,a\n2,11,21,31,b\n# remark\n3,12,22,32\nbad,1\n");
  ASSERT_EQ(import.points.size(), 3U);
  ASSERT_EQ(import.badLines.size(), 1U);
  EXPECT_EQ(import.badLines[0].number, 5U);
  const auto conflicts = FindImportConflicts(*session, import);
  ASSERT_TRUE(conflicts);
  EXPECT_EQ(conflicts->existing, 1U);
  EXPECT_EQ(conflicts->measured, 1U);
  EXPECT_LT(conflicts->awayM, 100.0);
  const PointImport swapped = ParsePointImport(session->job(), "9,5184000,520000,30\n");
  EXPECT_GT(FindImportConflicts(*session, swapped)->awayM, 5e6);
  const ImportResult left = StorePointImport(*session, import, ImportExisting::Skip, "office.csv");
  EXPECT_TRUE(left.done);
  EXPECT_EQ(left.stored, 2U);
  EXPECT_EQ(left.skipped, 1U);
  EXPECT_THAT(Notes(), HasSubstr("HRMS,0.010"));
  const ImportResult over =
      StorePointImport(*session, import, ImportExisting::Overwrite, "office.csv");
  EXPECT_EQ(over.replaced, 3U);
  EXPECT_THAT(Notes(), Not(HasSubstr("HRMS")));
  EXPECT_THAT(Raw(), HasSubstr("\n--Replaced point:SP,PN2,N 1.0000,"));
}

TEST_F(JobWork, AnImportTakesTheColumnsThatItIsTold) {
  struct Case {
    const char* text;
    ImportColumns columns;
    std::vector<std::string> descriptions;
  };
  const Case cases[] = {
      {"1,1,2,3,\"nail, in \"\"kerb\"\"\"\n2,1,2,3, 3\" "
       "pipe\n3,1,2,3,\"\"\n4,1,2,3,\"\n5,1,2,3,a,b\n",
       {},
       {"nail, in \"kerb\"", "3\" pipe", "", "\"", "a,b"}},
      {"# remark\nPoint,North,East,Height\n\"7\",\"1\",2,3\n", {}, {""}},
      {"7;x;2;1;3;tree\n8; ;2;1;3;\n", {"P-ENZD", ';'}, {"tree", ""}},
      {"kerb\t7\t2\t1\t3\n\t8\t2\t1\t3\n", {"DPENZ", '\t'}, {"kerb", ""}},
      {"  7   1 \t 2  3   old tree \n", {"PNEZD", ' '}, {"old tree"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const PointImport import = ParsePointImport(session->job(), c.text, c.columns);
    for (const BadLine& bad : import.badLines) ADD_FAILURE() << bad.number << bad.problem;
    EXPECT_EQ(import.descriptions, c.descriptions);
    for (const Point& point : import.points) {
      EXPECT_EQ(point.at.northing, 1.0);
      EXPECT_EQ(point.at.easting, 2.0);
      EXPECT_EQ(point.at.elevation, 3.0);
    }
  }
  EXPECT_EQ(ParsePointImport(session->job(), "1,1,2,3\nA,B,C,D\n").badLines.size(), 1U);
  EXPECT_EQ(ParsePointImport(session->job(), "1 1 2\n", {"PNEZD", ' '}).badLines.size(), 1U);
  for (const char* order : {"PNE", "PNEZZ", "PNEZX", "PNEZDD", ""}) {
    EXPECT_FALSE(IsColumnOrder(order)) << order;
  }
}

// Everything or nothing, in all three files, and nothing is told as done that is not.
TEST_F(JobWork, InterruptedAnywhereIsDoneOrNot) {
  const auto operations = std::vector<std::function<bool()>>{
      [this] { return Store("5", 5.0) == StoringResult::Stored; },
      [this] {
        Point deleted;
        return DeleteJobPoint(*session, "2", deleted) == DeletionResult::Deleted;
      },
      [this] {
        const PointImport import = ParsePointImport(session->job(), "7,1,2,3\n2,4,5,6\n");
        return StorePointImport(*session, import, ImportExisting::Overwrite, "x.csv").done;
      }};
  const auto prepare = [this] {
    memory = MemoryFiles();
    memory.Put("/jobs/site.job", "units=metres\n");
    session.emplace(work, kSitePath);
    ASSERT_TRUE(session->Load());
    ASSERT_NE(OpenCoordinateFile(session->job(), true), nullptr);
    session->setPolicy(ExistingPolicy::Overwrite);
    for (const char* id : {"1", "2", "3"}) ASSERT_EQ(Store(id, 1.0), StoringResult::Stored);
    Measure("2");
    ASSERT_TRUE(CloseJob(session->job()).ok());
    memory.Restart(0);
  };
  const auto state = [this] { return memory.Bytes(kSitePath) + "=" + Raw() + "=" + Notes(); };
  for (const auto& operation : operations) {
    prepare();
    const std::string before = state();
    ASSERT_TRUE(operation());
    const std::string after = state();
    for (const Mishap mishap :
         {Mishap::Fails, Mishap::DiskFull, Mishap::Killed, Mishap::PowerLoss}) {
      bool happened = true;
      for (int step = 1; happened; ++step) {
        for (unsigned seed = 0; seed < (mishap == Mishap::PowerLoss ? 12U : 1U); ++seed) {
          prepare();
          memory.Expect(mishap, step);
          const bool done = operation();
          happened = memory.happened();
          session.reset();
          memory.Restart(seed);
          session.emplace(work, kSitePath);
          ASSERT_NE(OpenCoordinateFile(session->job()), nullptr);
          const std::string now = state();
          EXPECT_TRUE(now == after || (!done && now == before))
              << "mishap " << int(mishap) << " step " << step << " done " << done << "\n"
              << now;
        }
      }
    }
  }
}

}  // namespace
}  // namespace tarvex
