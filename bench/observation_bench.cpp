// One observed point as one unit of a job (its record, five raw records, its note) beside SQLite
// with the same bytes in three tables and one transaction, in jobs of 1 to 100 000 points: the cost
// must not grow with the job. Ours opens its files for each point and closes them again, as the
// program does; SQLite keeps its connection open. Both are durable when they return.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench/bench_host.h"
#include "bench/scratch_folder.h"
#include "bench/sqlite_observations.h"
#include "core/coordinates/coordinate_layout.h"
#include "core/coordinates/point_bulk.h"
#include "core/coordinates/point_store.h"
#include "core/observations/job_unit.h"
#include "core/raw_data/raw_records.h"

namespace tarvex {
namespace {

constexpr long long kFirstId = 2000000;
constexpr const char* kDescription = "edge of road";

Point ObservedPoint(long long number) {
  return {.at = {5237000.0 + 1e-3 * static_cast<double>(number), 520400.6925, 1099.3981},
          .description = Description(kDescription),
          .id = PointId(std::to_string(kFirstId + number))};
}

std::array<std::string, 5> RawRecords(const Point& point, const LocalTime& now) {
  return {TimeStampRecord(now), RodHeightRecord(2.0),
          GnssRecord({.pointId = point.id.str(),
                      .latitudeDegrees = 47.2852,
                      .longitudeDegrees = 8.2652,
                      .height = 547.6,
                      .description = kDescription}),
          GnssGridRecord(point, kDescription),
          CommentRecord("HRMS:0.010, VRMS:0.016, STATUS:FIXED, SATS:12, PDOP:1.4") +
              TimeStampRecord(now)};
}

NoteEdit Note(const Point& point) {
  return {.kind = NoteEdit::Kind::SetQuality,
          .note = {.pointId = point.id.str(),
                   .lines = {},
                   .qualityLines = "HRMS,0.010\nVRMS,0.016\nSTATUS,FIXED\nSATS,12\nPDOP,1.4\n"
                                   "DATE,11-21-2026\nTIME,06:51:40\n"}};
}

// A job that has `points` observations already.
class ObservedJob {
 public:
  explicit ObservedJob(long long points) : job_(host_) {
    job_.path = Scratch().Path("observed.crd");
    for (const char* extension : {"crd", "rw5", "not", "crd.redo"}) {
      std::filesystem::remove(PathWithExtension(job_.path, extension));
    }
    const auto unit = JobUnit::Begin(job_);
    std::vector<Point> batch;
    for (long long number = 0; number < points; ++number) {
      batch.push_back(ObservedPoint(number));
      AddRecords(*unit, batch.back());
    }
    if (StorePoints(job_, batch, unit->coordinates()) != StorePointsResult::Stored) std::exit(1);
    if (unit->Commit() != ChangeResult::Done) std::exit(1);
  }
  ~ObservedJob() { (void)CloseJob(job_); }
  ObservedJob(const ObservedJob&) = delete;
  ObservedJob& operator=(const ObservedJob&) = delete;

  void Store(const Point& point, Settling settling) {
    const auto unit = JobUnit::Begin(job_);
    job_.ids.current = point.id.str();
    if (StorePoint(job_, point.at, point.description.view(), true, &unit->coordinates()) !=
        StorePointResult::Stored) {
      std::exit(1);
    }
    AddRecords(*unit, point);
    if (unit->Commit(settling) != ChangeResult::Done) std::exit(1);
  }

 private:
  void AddRecords(JobUnit& unit, const Point& point) {
    unit.AppendRaw(RawRecords(point, host_.clock().Now()));
    unit.EditNote(point.id.view(), Note(point));
  }

  BenchHost host_;
  Job job_;
};

// The same bytes for the peer.
ObservationBytes BytesOf(const Point& point) {
  ObservationBytes bytes{
      .id = point.id.str(), .coordinates = {}, .raw = {}, .note = PointNoteBlock(Note(point).note)};
  alphanumeric_layout::AppendRecord(bytes.coordinates, point);
  for (const std::string& record : RawRecords(point, SystemClock().Now())) bytes.raw += record;
  return bytes;
}

void StoreUnits(benchmark::State& state, long long points, Settling settling) {
  ObservedJob job(points);
  job.Store(ObservedPoint(points), settling);  // reads once which points have notes
  long long number = points;
  for (auto _ : state) job.Store(ObservedPoint(++number), settling);
}

void StoreInSqlite(benchmark::State& state, long long points) {
  const std::string path = Scratch().Path("observed.sqlite");
  for (const char* part : {"", "-wal", "-shm"}) std::filesystem::remove(path + part);
  SqliteObservations peer(path);
  std::vector<ObservationBytes> there;
  for (long long number = 0; number < points; ++number) {
    there.push_back(BytesOf(ObservedPoint(number)));
  }
  peer.StoreAll(there);
  long long number = points;
  for (auto _ : state) peer.Store(BytesOf(ObservedPoint(++number)));
}

// "job/who", timed by the clock on the wall: what waits for the disk costs no processor time.
void Add(const std::string& name, std::function<void(benchmark::State&)> run) {
  benchmark::RegisterBenchmark(name.c_str(), std::move(run))
      ->Unit(benchmark::kMicrosecond)
      ->UseRealTime();
}

const bool kAdded = [] {
  for (const long long points : {1LL, 1000LL, 10000LL, 100000LL}) {
    const std::string job = "observation behind " + std::to_string(points);
    Add(job + "/tarvex", [=](auto& state) { StoreUnits(state, points, Settling::Later); });
    Add(job + "/settled at once", [=](auto& state) { StoreUnits(state, points, Settling::Now); });
    Add(job + "/SQLite WAL", [=](auto& state) { StoreInSqlite(state, points); });
  }
  return true;
}();

}  // namespace
}  // namespace tarvex
