// A job with one point: its record, what the raw file says of it and its note are stored as one.
#include <cstdio>

#include "tarvex/core/coordinates/point_store.h"
#include "tarvex/core/observations/job_unit.h"
#include "tarvex/core/raw_data/raw_records.h"

namespace {

// What a job asks of the program around it; this one has nobody to ask.
class Host final : public tarvex::JobHost {
 public:
  tarvex::FileSystem& files() override { return tarvex::SystemFiles(); }
  tarvex::Clock& clock() override { return tarvex::SystemClock(); }
  tarvex::ExistingPointAnswer AskExistingPoint(const std::string&, bool) override {
    return {.choice = tarvex::ExistingPointAnswer::Choice::Cancel};
  }
  void ShowMessage(const std::string& text) override { std::fprintf(stderr, "%s\n", text.c_str()); }
  void ShowWaitCursor(bool) override {}
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: store_point NEW.crd\n");
    return 1;
  }
  Host host;
  tarvex::Job job(host);
  job.path = argv[1];
  const auto unit = tarvex::JobUnit::Begin(job);
  if (!unit) return 1;
  job.ids.current = "BM1";
  const tarvex::GridPoint at{.northing = 5236374.1302, .easting = 466723.9302, .elevation = 402.55};
  const tarvex::StorePointResult stored =
      tarvex::StorePoint(job, at, "bench mark", true, &unit->coordinates());
  if (!tarvex::IsStored(stored)) return 1;
  unit->AppendRaw(tarvex::StoredPointRecord(job.store.lastStoredPoint, "bench mark"));
  unit->EditNote("BM1", {.note = {.pointId = "BM1", .lines = {"brass bolt"}, .qualityLines = {}}});
  if (unit->Commit() != tarvex::ChangeResult::Done) return 1;
  std::printf("%s is in %s\n", job.store.lastPointId.c_str(), job.path.c_str());
}
