// The bytes of the coordinate file, and opening it in whatever state it is.
#include "core/coordinates/coordinate_file.h"

#include <gtest/gtest.h>

#include <clocale>

#include "core/coordinates/coordinate_layout.h"
#include "core/coordinates/point_list.h"
#include "core/coordinates/point_store.h"
#include "tests/support/random_numbers.h"
#include "tests/support/test_host.h"

namespace tarvex {
namespace {

std::string Hex(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    text += kDigits[static_cast<unsigned char>(c) >> 4U];
    text += kDigits[static_cast<unsigned char>(c) & 15U];
  }
  return text;
}

std::string Zeros(std::size_t bytes) {
  return std::string(bytes * 2, '0');
}

std::string Padded(std::string_view text, std::size_t bytes) {
  return Hex(text) + Zeros(bytes - text.size());
}

void Store(Job& job, const std::string& id, const GridPoint& at, const std::string& description) {
  const auto stream = OpenCoordinateFile(job);
  job.ids.current = id;
  ASSERT_EQ(StorePoint(job, at, description, false, stream.get()), StorePointResult::Stored);
}

// 5000.25, -0.1 and 1.5 as little-endian doubles.
constexpr GridPoint kAt{.northing = 5000.25, .easting = -0.1, .elevation = 1.5};
const std::string kAtBytes = "000000004088b3409a9999999999b9bf000000000000f83f";

void ExpectGoldenBytes() {
  TestHost numericHost;
  Job numeric = MakeJob(numericHost, false);
  Store(numeric, "2", kAt, "IP");
  EXPECT_EQ(Hex(numericHost.memory.Bytes(kJobPath)),
            "0000000000000040" + Zeros(8) + "ac1c5a647b609f40" + Zeros(32) +  // 2 points, 2008.1205
                Zeros(24) + Padded(" ", 32) +  // the filler of point 1
                kAtBytes + Padded("IP", 32));

  TestHost namedHost;
  Job named = MakeJob(namedHost, true);
  Store(named, "b-1", kAt, "a description of 31 bytes and \u00E9");
  EXPECT_EQ(Hex(namedHost.memory.Bytes(kJobPath)),
            Zeros(8) + Padded("12-05-2008", 32) + Zeros(32) + Padded("New CRD Format2", 16) +
                Zeros(16) + kAtBytes + Padded("a description of 31 bytes and ", 32) +
                Padded("B_1", 10));
}

TEST(CoordinateFile, BytesAreExact) {
  ExpectGoldenBytes();
}

TEST(CoordinateFile, BytesAreExactUnderADecimalComma) {
  if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr)
    GTEST_SKIP() << "no decimal-comma locale here";
  char probe[8];
  std::snprintf(probe, sizeof probe, "%.1f", 0.5);
  EXPECT_STREQ(probe, "0,5");
  ExpectGoldenBytes();
  std::setlocale(LC_ALL, "C");
}

TEST(CoordinateFile, OpeningTellsTheJobWhatItHolds) {
  TestHost host;
  Job job = MakeJob(host, true);
  ASSERT_NE(OpenCoordinateFile(job), nullptr);
  EXPECT_EQ(host.memory.Bytes(kJobPath).size(), 104U);
  EXPECT_EQ(job.store.lastPointId, "0");
  EXPECT_EQ(job.information.startTime, "Start Time: 14:03:09");
  Store(job, "12A", kAt, "");
  job.options.alphanumericNewFiles = false;  // the file decides, not the setting
  ASSERT_NE(OpenCoordinateFile(job), nullptr);
  EXPECT_TRUE(job.store.alphanumeric);
  EXPECT_EQ(job.store.lastPointId, "12A");
  EXPECT_EQ(job.store.lastPointNumber, 12);
}

TEST(CoordinateFile, ConvertsAnOlderFileOnOpening) {
  TestHost host;
  std::string oldFile = alphanumeric_layout::EncodeHeader(host.manualClock.now);
  oldFile[86] = '\0';  // "New CRD Format"
  oldFile[100] = 'x';  // other header bytes stay
  for (const char* id : {"10", "B", "2", "a10", "A2", "2"}) {
    alphanumeric_layout::AppendRecord(oldFile, {.at = {.northing = double(oldFile.size())},
                                                .description = Description(id),
                                                .id = PointId(id)});
  }
  host.memory.Put(kJobPath, oldFile + "torn");
  Job job = MakeJob(host, true);
  ASSERT_NE(OpenCoordinateFile(job), nullptr);
  std::string expected = oldFile.substr(0, 104);
  expected[86] = '2';
  for (const int place : {5, 2, 0, 4, 3, 1}) expected += oldFile.substr(104 + 66 * place, 66);
  EXPECT_EQ(Hex(host.memory.Bytes(kJobPath)), Hex(expected));
  EXPECT_EQ(job.store.lastPointId, "B");
  Point point;
  EXPECT_EQ(ReadPoint(job, "A10", OpenCoordinateFile(job).get(), point), ReadPointResult::Found);
}

TEST(CoordinateFile, ConvertsAnOlderFileThatIsOnlyLookedAt) {
  TestHost host;
  std::string oldFile = alphanumeric_layout::EncodeHeader(host.manualClock.now);
  oldFile[86] = '\0';
  for (const char* id : {"2", "1"}) {
    alphanumeric_layout::AppendRecord(oldFile, {.at = kAt, .description = {}, .id = PointId(id)});
  }
  for (const bool writable : {false, true}) {
    host.memory.Put(kJobPath, oldFile);
    host.memory.MakeReadOnly(writable ? "" : kJobPath);
    Job job = MakeJob(host, true);
    PointList points;
    ASSERT_EQ(LoadAllPoints(job, points), LoadPointsResult::Loaded) << writable;
    EXPECT_EQ(points[0].id.view(), "1");
    EXPECT_EQ(ReadPoint(job, "2", OpenForReading(job).get(), points[0]), ReadPointResult::Found);
    EXPECT_EQ(host.memory.Bytes(kJobPath) == oldFile, !writable);
    EXPECT_TRUE(host.messages.empty());
  }
}

TEST(CoordinateFile, ReadsAFileWithoutTheRightToWrite) {
  TestHost host;
  Job job = MakeJob(host, true);
  Store(job, "1", kAt, "");
  host.memory.MakeReadOnly(kJobPath);
  PointList points;
  EXPECT_EQ(LoadAllPoints(job, points), LoadPointsResult::Loaded);
  EXPECT_EQ(points.size(), 1U);
  EXPECT_EQ(OpenCoordinateFile(job), nullptr);
  EXPECT_EQ(host.messages.back(),
            "The coordinate file /jobs/site.crd cannot be opened for writing: Permission denied.");
}

TEST(CoordinateFile, AnInterruptedJobThatCannotBeWrittenSaysWhatToDo) {
  TestHost host;
  Job job = MakeJob(host, true);
  Store(job, "1", kAt, "");
  host.memory.Put(kJobPath + std::string(".redo"), "TVXREDO2another ");
  host.memory.MakeReadOnly(kJobPath);
  PointList points;
  EXPECT_EQ(LoadAllPoints(job, points), LoadPointsResult::CannotOpen);
  EXPECT_EQ(host.messages.back(),
            "The last work on /jobs/site.crd was interrupted, and it cannot be finished here: "
            "Permission denied. Copy the job's files, the one that ends in .redo among them, to a "
            "place where they can be written, and open the job there.");
}

// Cut at every length, a file gives the records that are whole or a named error.
TEST(CoordinateFile, TellsAFileCutShort) {
  for (const bool alphanumeric : {false, true}) {
    TestHost host;
    Job job = MakeJob(host, alphanumeric);
    for (int number = 1; number <= 4; ++number) Store(job, std::to_string(number), kAt, "p");
    const std::string whole = host.memory.Bytes(kJobPath);
    for (std::size_t length = 0; length < whole.size(); ++length) {
      host.memory.Put(kJobPath, whole.substr(0, length));
      PointList points;
      host.messages.clear();
      const LoadPointsResult result = LoadAllPoints(job, points);
      const std::size_t header = alphanumeric ? 104 : 56;
      if (length < header && length > 0) {
        EXPECT_EQ(result, LoadPointsResult::CannotOpen) << length;
        EXPECT_EQ(host.messages.size(), 1U);
        continue;
      }
      ASSERT_EQ(result, LoadPointsResult::Loaded) << length;
      EXPECT_EQ(points.size(), length == 0 ? 0 : (length - header) / (alphanumeric ? 66 : 56));
      ASSERT_NE(OpenCoordinateFile(job), nullptr);
      Store(job, "9", kAt, "after");  // and what is stored then stands behind the whole records
      ASSERT_EQ(LoadAllPoints(job, points), LoadPointsResult::Loaded);
      EXPECT_EQ(points.back().description.view(), "after");
    }
  }
}

TEST(CoordinateFile, SurvivesGarbage) {
  RandomNumbers random(5);
  for (int round = 0; round < 3000; ++round) {
    TestHost host;
    std::string bytes(random() % 400, '\0');
    for (char& c : bytes) c = static_cast<char>(random());
    if (round % 2 == 0 && bytes.size() > 90) bytes.replace(72, 15, "New CRD Format2");
    if (round % 6 == 0 && bytes.size() > 90) bytes[86] = 'x';
    host.memory.Put(kJobPath, bytes);
    Job job = MakeJob(host, true);
    PointList points;
    if (LoadAllPoints(job, points) == LoadPointsResult::CannotOpen) {
      EXPECT_EQ(host.messages.size(), 1U);
    }
    Point point;
    const auto stream = OpenCoordinateFile(job);
    if (stream) (void)ReadPoint(job, "A1", stream.get(), point);
  }
}

}  // namespace
}  // namespace tarvex
