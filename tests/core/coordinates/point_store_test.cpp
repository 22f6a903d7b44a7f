// Storing, reading, deleting, one at a time and in bulk.
#include "core/coordinates/point_store.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "core/coordinates/coordinate_layout.h"
#include "core/coordinates/point_bulk.h"
#include "core/coordinates/point_list.h"
#include "core/points/point_id.h"
#include "tests/support/random_numbers.h"
#include "tests/support/test_host.h"

namespace tarvex {
namespace {

StorePointResult Store(Job& job, const std::string& id, const GridPoint& at,
                       const std::string& description = "", bool check = false) {
  const auto stream = OpenCoordinateFile(job);
  job.ids.current = id;
  return StorePoint(job, at, description, check, stream.get());
}

ReadPointResult Read(Job& job, const std::string& id, Point& point) {
  const auto stream = OpenCoordinateFile(job);
  return ReadPoint(job, id, stream.get(), point);
}

std::vector<std::string> Ids(Job& job) {
  PointList points;
  EXPECT_EQ(LoadAllPoints(job, points), LoadPointsResult::Loaded);
  std::vector<std::string> ids;
  for (const Point& point : points) ids.push_back(point.id.str());
  return ids;
}

constexpr GridPoint kAt{.northing = 1.0, .easting = 2.0, .elevation = 3.0};

TEST(NumericStore, FillsTheGapAndTellsWhatIsThere) {
  TestHost host;
  Job job = MakeJob(host, false);
  EXPECT_EQ(Store(job, "10", kAt), StorePointResult::Stored);
  EXPECT_EQ(host.waitCursor, "");  // 9 records are no noticeable time
  EXPECT_EQ(Store(job, "30", kAt), StorePointResult::Stored);
  EXPECT_EQ(host.waitCursor, "on off ");
  Point point;
  EXPECT_EQ(Read(job, "5", point), ReadPointResult::EmptySlot);
  EXPECT_EQ(Read(job, "31", point), ReadPointResult::AboveLast);
  EXPECT_EQ(Read(job, "0", point), ReadPointResult::BelowFirst);
  EXPECT_EQ(Read(job, "x", point), ReadPointResult::NotFound);
  EXPECT_EQ(Read(job, "30", point), ReadPointResult::Found);
  EXPECT_EQ(point.id.view(), "30");
  EXPECT_EQ(job.store.lastPointId, "30");
  EXPECT_EQ(job.store.lastStoredPoint.id.view(), "30");
  for (const char* bad : {"0", "-3", "A", "", "5A", "1000000000", "1000031"}) {
    EXPECT_EQ(Store(job, bad, kAt), StorePointResult::Nothing) << bad;
  }
  EXPECT_EQ(Ids(job), (std::vector<std::string>{"10", "30"}));
}

// Another program, or a damaged header, may leave records behind the header's count.
TEST(NumericStore, LosesNoRecordBehindItsCount) {
  TestHost host;
  Job job = MakeJob(host, false);
  for (const char* id : {"1", "2", "3"}) EXPECT_EQ(Store(job, id, kAt), StorePointResult::Stored);
  std::string bytes = host.memory.Bytes(kJobPath);
  host.memory.Put(kJobPath, bytes.replace(0, 8, numeric_layout::EncodeHighestNumber(1)));
  EXPECT_EQ(Ids(job), (std::vector<std::string>{"1", "2", "3"}));
  Point point;
  EXPECT_EQ(Read(job, "2", point), ReadPointResult::AboveLast);
  host.answer = {.choice = ExistingPointAnswer::Choice::UseNextFreeId};
  EXPECT_EQ(Store(job, "2", kAt, "", true), StorePointResult::Stored);
  EXPECT_EQ(host.asked, std::vector<std::string>{"2 exists"});
  EXPECT_EQ(Store(job, "6", kAt), StorePointResult::Stored);
  EXPECT_EQ(Ids(job), (std::vector<std::string>{"1", "2", "3", "4", "6"}));
}

TEST(NumericStore, GivesAnEmptyFileItsHeader) {
  TestHost host;
  host.memory.Put(kJobPath, "");
  Job job = MakeJob(host, false);
  EXPECT_EQ(Store(job, "2", kAt), StorePointResult::Stored);
  EXPECT_EQ(host.memory.Bytes(kJobPath).substr(0, 56),
            numeric_layout::EncodeHeader(2, host.manualClock.now));
}

TEST(NamedStore, KeepsTheOrderOfIds) {
  TestHost host;
  Job job = MakeJob(host, true);
  for (const char* id : {"10", "2", "B", "A10", "A2"})
    EXPECT_EQ(Store(job, id, kAt), StorePointResult::Stored);
  EXPECT_EQ(Ids(job), (std::vector<std::string>{"2", "10", "A2", "A10", "B"}));
  EXPECT_EQ(Store(job, "a-1", kAt), StorePointResult::Stored);
  EXPECT_EQ(Store(job, "  ", kAt), StorePointResult::Nothing);
  Point point;
  EXPECT_EQ(Read(job, " a-1", point), ReadPointResult::Found);
  EXPECT_EQ(point.id.view(), "A_1");
  EXPECT_EQ(Read(job, "2", point), ReadPointResult::Found);
  EXPECT_EQ(job.store.foundRecordPosition, 104U);
  EXPECT_EQ(Read(job, "", point), ReadPointResult::NotFound);
  EXPECT_EQ(ReadPoint(job, "2", nullptr, point), ReadPointResult::NoStream);
}

TEST(PointStore, TellsAnEmptySlotByBlankDescriptionAndZeroCoordinates) {
  TestHost host;
  Job job = MakeJob(host, true);
  EXPECT_EQ(Store(job, "1", {}, "kept"), StorePointResult::Stored);
  EXPECT_EQ(Store(job, "2", {.northing = 9e-7}, "   "), StorePointResult::Stored);
  EXPECT_EQ(Store(job, "3", {.elevation = 1e-6}, ""), StorePointResult::Stored);
  EXPECT_EQ(Ids(job), (std::vector<std::string>{"1", "3"}));
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(Store(job, "4", {.northing = nan}), StorePointResult::Nothing);
}

TEST(PointStore, AsksBeforeAnExistingPoint) {
  TestHost host;
  Job job = MakeJob(host, true);
  EXPECT_EQ(Store(job, "5", kAt, "first", true), StorePointResult::Stored);
  EXPECT_TRUE(host.asked.empty());  // beyond the last id nothing can exist
  host.answer = {.choice = ExistingPointAnswer::Choice::Cancel};
  EXPECT_EQ(Store(job, "5", kAt, "second", true), StorePointResult::Cancelled);
  host.answer.choice = ExistingPointAnswer::Choice::Failed;
  EXPECT_EQ(Store(job, "4", kAt, "second", true), StorePointResult::DialogFailed);
  EXPECT_EQ(host.asked, (std::vector<std::string>{"5 exists", "4 is free"}));
  host.answer = {.choice = ExistingPointAnswer::Choice::UseOtherId, .otherId = "6"};
  EXPECT_EQ(Store(job, "5", kAt, "second", true), StorePointResult::Stored);
  EXPECT_EQ(Ids(job), (std::vector<std::string>{"5", "6"}));
  EXPECT_EQ(job.ids.current, "6");
  host.answer = {.choice = ExistingPointAnswer::Choice::UseNextFreeId};
  EXPECT_EQ(Store(job, "5", kAt, "third", true), StorePointResult::Stored);
  EXPECT_EQ(job.ids.current, "7");
  job.ids.current = "6";
  EXPECT_EQ(NextFreePointId(job, *OpenCoordinateFile(job)), "8");
  EXPECT_EQ(StorePoint(job, kAt, "", true, nullptr), StorePointResult::NoStream);
}

TEST(PointStore, DeletesAPoint) {
  for (const bool alphanumeric : {false, true}) {
    TestHost host;
    Job job = MakeJob(host, alphanumeric);
    for (const char* id : {"1", "2", "3"}) EXPECT_EQ(Store(job, id, kAt), StorePointResult::Stored);
    for (const char* id : {"2", "3"}) {
      const auto stream = OpenCoordinateFile(job);
      EXPECT_EQ(DeletePoint(job, id, stream.get()), DeletePointResult::Deleted);
      EXPECT_EQ(DeletePoint(job, id, stream.get()), DeletePointResult::NotFound);
    }
    EXPECT_EQ(Ids(job), (std::vector<std::string>{"1"}));
    EXPECT_EQ(job.store.lastPointId, alphanumeric ? "1" : "3");
  }
}

// Random stores and deletes against a plain map, the ids in the order of ComparePointIds.
TEST(PointStore, BehavesLikeAMap) {
  struct Before {
    bool operator()(const std::string& a, const std::string& b) const {
      return ComparePointIds(a, b) < 0;
    }
  };
  RandomNumbers random(3);
  for (const bool alphanumeric : {false, true}) {
    TestHost host;
    Job job = MakeJob(host, alphanumeric);
    std::map<std::string, double, Before> expected;
    for (int i = 1; i <= 1500; ++i) {
      std::string id = std::to_string(1 + random() % 400);
      if (alphanumeric && random() % 2 == 0) id.insert(0, 1, "abC_"[random() % 4]);
      if (random() % 5 == 0) {
        const auto stream = OpenCoordinateFile(job);
        EXPECT_EQ(DeletePoint(job, id, stream.get()) == DeletePointResult::Deleted,
                  expected.erase(NormalisePointId(id).str()) == 1);
      } else {
        EXPECT_EQ(Store(job, id, {.northing = double(i)}), StorePointResult::Stored);
        expected[NormalisePointId(id).str()] = i;
      }
    }
    PointList points;
    ASSERT_EQ(LoadAllPoints(job, points), LoadPointsResult::Loaded);
    ASSERT_EQ(points.size(), expected.size());
    auto at = expected.begin();
    for (const Point& point : points) {
      EXPECT_EQ(point.id.view(), at->first);
      EXPECT_EQ(point.at.northing, at->second);
      ++at;
    }
    const auto stream = OpenCoordinateFile(job);
    for (const auto& [id, northing] : expected) {
      Point point;
      ASSERT_EQ(ReadPoint(job, id, stream.get(), point), ReadPointResult::Found) << id;
      EXPECT_EQ(point.at.northing, northing);
    }
  }
}

TEST(BulkStore, GivesTheBytesOfStoringOneAtATime) {
  RandomNumbers random(9);
  for (const bool alphanumeric : {false, true}) {
    for (const std::string_view letters :
         {"AbZ_", "0A"}) {  // leading zeros take the other way to sort
      TestHost host;
      Job one = MakeJob(host, alphanumeric);
      TestHost bulkHost;
      Job bulk = MakeJob(bulkHost, alphanumeric);
      for (int round = 0; round < 3; ++round) {
        std::vector<Point> batch(300);
        for (Point& point : batch) {
          std::string id = std::to_string(1 + random() % 500);
          if (alphanumeric) id.insert(0, 1, letters[random() % letters.size()]);
          point.id.Assign(id);
          point.at.northing = double(random() % 1000) + 0.5;
          point.description.Assign("line\nbreak");
          EXPECT_EQ(Store(one, id, point.at, "line\nbreak"), StorePointResult::Stored);
        }
        ASSERT_EQ(StorePoints(bulk, batch), StorePointsResult::Stored);
        ASSERT_EQ(bulkHost.memory.Bytes(kJobPath), host.memory.Bytes(kJobPath));
        EXPECT_EQ(bulk.store.lastPointId, one.store.lastPointId);
      }
    }
  }
  TestHost host;
  Job job = MakeJob(host, true);
  std::vector<Point> batch(2, Point{.at = kAt, .description = {}, .id = PointId("1")});
  batch[1].id = PointId(" ");
  std::size_t bad = 0;
  EXPECT_EQ(StorePoints(job, batch, &bad), StorePointsResult::BadPoint);
  EXPECT_EQ(bad, 1U);
}

TEST(LoadingPoints, VerifiesAndTellsItsProgress) {
  TestHost host;
  Job job = MakeJob(host, false);
  std::vector<Point> batch(20000);
  for (std::size_t i = 0; i < batch.size(); ++i) {
    batch[i] = {.at = kAt, .description = {}, .id = PointId(std::to_string(i + 1))};
  }
  ASSERT_EQ(StorePoints(job, batch), StorePointsResult::Stored);
  PointList points;
  std::string told;
  ASSERT_EQ(LoadAllPoints(job, points, nullptr, [&](std::string_view text) { told += text; }),
            LoadPointsResult::Loaded);
  std::string everyHundredth;
  for (int part = 1; part <= 100; ++part) everyHundredth += "\n" + std::to_string(part) + "%";
  EXPECT_EQ(told, everyHundredth);
  EXPECT_EQ(LoadAllPoints(job, points, &batch), LoadPointsResult::Loaded);
  batch[7].id = PointId("x");
  EXPECT_EQ(LoadAllPoints(job, points, &batch), LoadPointsResult::Mismatch);
  batch.resize(7);
  EXPECT_EQ(LoadAllPoints(job, points, &batch), LoadPointsResult::Mismatch);
  EXPECT_EQ(points.size(), 20000U);  // written on success only
  job.path = "/jobs/none.crd";
  EXPECT_EQ(LoadAllPoints(job, points), LoadPointsResult::CannotOpen);
}

}  // namespace
}  // namespace tarvex
