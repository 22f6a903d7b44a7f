// Any bytes as a coordinate file: opening, loading, reading, storing, deleting and storing in bulk
// end with a result, and what was stored is there. The last bytes of the input choose the
// operations.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/coordinates/point_bulk.h"
#include "core/coordinates/point_list.h"
#include "core/coordinates/point_store.h"
#include "core/text/number_text.h"
#include "tests/support/test_host.h"

namespace tarvex {
namespace {

constexpr std::size_t kOperationSize = 10;
constexpr std::size_t kMostOperations = 6;
constexpr long long kHighestNumber = 5000;  // a gap up to a number is filled, on a real disk slowly

void Require(bool condition) {
  if (!condition) std::abort();
}

// A byte that chooses, and an id of up to 9 characters.
struct Operation {
  explicit Operation(std::string_view bytes)
      : choice(static_cast<unsigned char>(bytes[0])), id(bytes.substr(1)) {}

  unsigned choice;
  std::string id;
};

class Session {
 public:
  explicit Session(std::string_view file) {
    host_.memory.Put(kJobPath, std::string(file));
    host_.answer.choice = ExistingPointAnswer::Choice::Overwrite;
  }

  void Load() {
    PointList points;
    if (LoadAllPoints(job_, points) != LoadPointsResult::Loaded) return;
    Require(LoadAllPoints(job_, points, &points) == LoadPointsResult::Loaded);
  }

  void Do(const Operation& operation) {
    auto stream = OpenCoordinateFile(job_);
    if (!stream) return;
    if (!job_.store.alphanumeric && LeadingInteger(operation.id) > kHighestNumber) return;
    switch (operation.choice % 4) {
      case 0:
        return Store(operation, std::move(stream));
      case 1:
        return Delete(operation, *stream);
      case 2:
        stream.reset();  // the batch opens the file itself
        return StoreSome(operation);
      default: {
        Point point;
        (void)ReadPoint(job_, operation.id, stream.get(), point);
      }
    }
  }

 private:
  GridPoint At(const Operation& operation) const {
    return {.northing = operation.choice + 1.0, .easting = 2.0, .elevation = 3.0};
  }

  void Store(const Operation& operation, std::unique_ptr<CoordinateFile> stream) {
    job_.ids.current = operation.id;
    const bool check = operation.choice >= 128;
    if (StorePoint(job_, At(operation), operation.id, check, stream.get()) !=
        StorePointResult::Stored) {
      return;
    }
    job_.ids.current = job_.store.lastStoredPoint.id.str();
    (void)NextFreePointId(job_, *stream);
    stream.reset();  // looking at the file waits for its lock
    RequireStored(job_.store.lastStoredPoint);
  }

  // A file that is not in order, as only a damaged one is, may hide a point; its record is there.
  void RequireStored(const Point& stored) {
    PointList points;
    Require(LoadAllPoints(job_, points) == LoadPointsResult::Loaded);
    for (const Point& point : points) {
      if (point.at == stored.at) return;
    }
    Require(false);
  }

  void Delete(const Operation& operation, CoordinateFile& stream) {
    (void)DeletePoint(job_, operation.id, &stream);
  }

  void StoreSome(const Operation& operation) {
    std::vector<Point> points;
    for (const char* end : {"", "1", "9"}) {
      points.push_back({.at = At(operation),
                        .description = Description(operation.id),
                        .id = PointId(operation.id.substr(0, 3) + end)});
    }
    std::size_t bad = 0;
    if (StorePoints(job_, points, &bad) == StorePointsResult::Stored) RequireStored(points.back());
  }

  TestHost host_;
  Job job_ = MakeJob(host_, true);
};

void Run(std::string_view input) {
  std::vector<Operation> operations;
  while (operations.size() < kMostOperations && input.size() > kOperationSize) {
    operations.emplace_back(input.substr(input.size() - kOperationSize));
    input.remove_suffix(kOperationSize);
  }
  Session session(input);
  session.Load();
  for (const Operation& operation : operations) session.Do(operation);
  session.Load();
}

}  // namespace
}  // namespace tarvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarvex::Run({reinterpret_cast<const char*>(data), size});
  return 0;
}
