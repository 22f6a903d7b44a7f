// The job's coordinate file beside SQLite. Ours opens the file for each operation and closes it
// again, as the program does, unless the name says "open file"; SQLite keeps its connection open.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <span>
#include <vector>

#include "bench/bench_host.h"
#include "bench/scratch_folder.h"
#include "bench/sqlite_points.h"
#include "core/coordinates/point_bulk.h"
#include "core/coordinates/point_list.h"
#include "core/coordinates/point_store.h"
#include "core/job/job.h"

namespace tarvex {
namespace {

constexpr long long kMillion = 1000000;
// Ids of 7 digits, so that the order of text, which is SQLite's, is that of the numbers.
constexpr long long kFirstId = 2000000;

PointId NumberedId(long long number) {
  return PointId(std::to_string(number));
}

std::vector<Point> MakePoints(long long count) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> coordinate(0.0, 1e6);
  std::vector<Point> points(static_cast<std::size_t>(count));
  long long id = kFirstId;
  for (Point& point : points) {
    point = {.at = {coordinate(random), coordinate(random), coordinate(random) * 1e-3},
             .description = Description("IRON PIN"),
             .id = NumberedId(id++)};
  }
  return points;
}

const std::vector<Point>& Million() {
  static const std::vector<Point> points = MakePoints(kMillion);
  return points;
}

const std::vector<Point>& ScatteredMillion() {
  static const std::vector<Point> points = [] {
    std::vector<Point> scattered = Million();
    std::shuffle(scattered.begin(), scattered.end(), std::mt19937_64(2));
    return scattered;
  }();
  return points;
}

// A job with a coordinate file of its own.
struct BenchJob {
  BenchJob(const std::string& name, std::span<const Point> points) : job(host) {
    job.path = Scratch().Path(name + ".crd");
    std::filesystem::remove(job.path);
    if (StorePoints(job, points) != StorePointsResult::Stored) std::exit(1);
  }

  void Store(const Point& point) {
    const auto stream = OpenCoordinateFile(job);
    job.ids.current = point.id.str();
    if (StorePoint(job, point.at, point.description.view(), true, stream.get()) !=
        StorePointResult::Stored) {
      std::exit(1);
    }
  }

  BenchHost host;
  Job job;
};

std::unique_ptr<SqlitePoints> MakeSqlite(const std::string& name, SqliteJournal journal,
                                         std::span<const Point> points) {
  const std::string path = Scratch().Path(name + ".sqlite");
  for (const char* part : {"", "-wal", "-shm", "-journal"}) std::filesystem::remove(path + part);
  auto peer = std::make_unique<SqlitePoints>(path, journal);
  peer->StoreAll(points);
  return peer;
}

std::span<const Point> JobPoints(long long count) {
  return std::span(Million()).first(static_cast<std::size_t>(count));
}

// Where the stored points go: behind all others, in front of them, over ones that exist.
enum class Place { End, Front, Over };

class NextPoint {
 public:
  NextPoint(Place place, long long jobPoints)
      : place_(place), jobPoints_(jobPoints), point_(Million().back()) {}

  const Point& operator()() {
    ++count_;
    long long id = kFirstId + (count_ * 7919) % jobPoints_;
    if (place_ == Place::End) id = kFirstId + jobPoints_ + count_;
    if (place_ == Place::Front) id = kFirstId - count_;
    point_.id = NumberedId(id);
    point_.at.northing += 1.0;
    return point_;
  }

 private:
  Place place_;
  long long jobPoints_;
  Point point_;
  long long count_ = 0;
};

void Store(benchmark::State& state, Place place, long long jobPoints) {
  BenchJob ours("store", JobPoints(jobPoints));
  NextPoint next(place, jobPoints);
  for (auto _ : state) ours.Store(next());
}

void SqliteStore(benchmark::State& state, Place place, long long jobPoints, SqliteJournal journal) {
  const auto peer = MakeSqlite("store", journal, JobPoints(jobPoints));
  NextPoint next(place, jobPoints);
  for (auto _ : state) peer->Store(next());
}

// The floor: 66 bytes behind a file of our own, made durable, and nothing else.
void AppendAndSync(benchmark::State& state) {
  std::unique_ptr<File> file;
  if (!SystemFiles().Open(Scratch().Path("floor"), FileAccess::CreateOrTruncate, file).ok()) return;
  const std::string record(66, 'x');
  std::uint64_t at = 0;
  for (auto _ : state) {
    if (!file->WriteAt(at, record).ok() || !file->Sync().ok()) state.SkipWithError("cannot write");
    at += record.size();
  }
}

void BulkStore(benchmark::State& state, const std::vector<Point>& points) {
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove(Scratch().Path("bulk.crd"));
    state.ResumeTiming();
    const BenchJob stored("bulk", points);
  }
}

void SqliteBulkStore(benchmark::State& state, const std::vector<Point>& points) {
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove(Scratch().Path("bulk.sqlite"));
    state.ResumeTiming();
    (void)MakeSqlite("bulk", SqliteJournal::Rollback, points);
  }
}

BenchJob& MillionJob() {
  static BenchJob job("million", Million());
  return job;
}

SqlitePoints& MillionSqlite() {
  static const auto peer = MakeSqlite("million", SqliteJournal::Rollback, Million());
  return *peer;
}

void Lookup(benchmark::State& state) {
  BenchJob& ours = MillionJob();
  const auto stream = OpenForReading(ours.job);
  Point point;
  std::size_t at = 0;
  for (auto _ : state) {
    at = (at + 1) % ScatteredMillion().size();
    const PointId& id = ScatteredMillion()[at].id;
    if (ReadPoint(ours.job, id.view(), stream.get(), point) != ReadPointResult::Found) std::exit(1);
    benchmark::DoNotOptimize(point);
  }
}

void SqliteLookup(benchmark::State& state) {
  Point point;
  std::size_t at = 0;
  for (auto _ : state) {
    at = (at + 1) % ScatteredMillion().size();
    if (!MillionSqlite().Find(ScatteredMillion()[at].id.view(), point)) std::exit(1);
    benchmark::DoNotOptimize(point);
  }
}

void Load(benchmark::State& state) {
  BenchJob& ours = MillionJob();
  for (auto _ : state) {
    PointList points;
    if (LoadAllPoints(ours.job, points) != LoadPointsResult::Loaded) std::exit(1);
    benchmark::DoNotOptimize(points.data());
  }
}

void SqliteLoad(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(MillionSqlite().LoadAll().data());
}

// "job/who", timed by the clock on the wall: what waits for the disk costs no processor time.
void Add(const std::string& name, benchmark::TimeUnit unit,
         std::function<void(benchmark::State&)> run) {
  benchmark::RegisterBenchmark(name.c_str(), std::move(run))->Unit(unit)->UseRealTime();
}

void AddStores(const std::string& job, Place place, long long points) {
  constexpr auto kUnit = benchmark::kMicrosecond;
  Add(job + "/tarvex", kUnit, [=](auto& state) { Store(state, place, points); });
  Add(job + "/SQLite WAL", kUnit,
      [=](auto& state) { SqliteStore(state, place, points, SqliteJournal::WriteAhead); });
  Add(job + "/SQLite rollback", kUnit,
      [=](auto& state) { SqliteStore(state, place, points, SqliteJournal::Rollback); });
}

void AddBulkStores(const std::string& job, const std::vector<Point>& (*points)()) {
  constexpr auto kUnit = benchmark::kMillisecond;
  Add(job + "/tarvex", kUnit, [=](auto& state) { BulkStore(state, points()); });
  Add(job + "/SQLite", kUnit, [=](auto& state) { SqliteBulkStore(state, points()); });
}

const bool kAdded = [] {
  AddStores("store at the end of 1e5", Place::End, 100000);
  Add("store at the end of 1e5/bare sync", benchmark::kMicrosecond, AppendAndSync);
  AddStores("store in front of 1e4", Place::Front, 10000);
  AddStores("store in front of 1e5", Place::Front, 100000);
  AddStores("store over one of 1e4", Place::Over, 10000);
  AddStores("store over one of 1e5", Place::Over, 100000);
  AddBulkStores("bulk store of 1e6, ascending", Million);
  AddBulkStores("bulk store of 1e6, scattered", ScatteredMillion);
  Add("lookup in open file of 1e6/tarvex", benchmark::kNanosecond, Lookup);
  Add("lookup in open file of 1e6/SQLite", benchmark::kNanosecond, SqliteLookup);
  Add("load of 1e6/tarvex", benchmark::kMillisecond, Load);
  Add("load of 1e6/SQLite", benchmark::kMillisecond, SqliteLoad);
  return true;
}();

}  // namespace
}  // namespace tarvex
