#include "app/workflow/point_unit.h"

#include "core/coordinates/point_store.h"
#include "core/raw_data/raw_records.h"

namespace tarvex {
namespace {

StoringResult Explained(StorePointResult result) {
  switch (result) {
    case StorePointResult::Stored:
      return StoringResult::Stored;
    case StorePointResult::Cancelled:
      return StoringResult::Exists;
    case StorePointResult::DialogFailed:
      return StoringResult::NoFreeId;
    default:
      return StoringResult::Failed;
  }
}

}  // namespace

std::string DescriptionWarning(std::string_view description) {
  if (description.size() <= Description::kCapacity) return {};
  return "The coordinate file keeps the first " + std::to_string(Description::kCapacity) +
         " bytes of the description; the raw file has all of it.";
}

StoredPoint StorePointUnit(JobSession& session, const GridPoint& at, const std::string& description,
                           Settling settling, const PointRecords& records) {
  Job& job = session.job();
  if (!session.storingProblem().empty()) {
    session.observer().OnError(session.storingProblem());
    return {};
  }
  const auto unit = JobUnit::Begin(job);
  if (!unit) return {};
  StoredPoint stored;
  Point existing;
  const bool exists =
      ReadPoint(job, job.ids.current, &unit->coordinates(), existing) == ReadPointResult::Found;
  stored.result = Explained(StorePoint(job, at, description, true, &unit->coordinates()));
  if (stored.result != StoringResult::Stored) return stored;
  stored.point = job.store.lastStoredPoint;
  unit->AppendRaw(session.RawOpening());
  if (exists && existing.id == stored.point.id) {
    stored.replaced = existing;
    FileStatus status;
    if (auto note = ReadPointNote(job, existing.id.view(), status)) {
      stored.replacedQuality = std::move(note->qualityLines);
    }
    unit->AppendRaw(ReplacedPointRecord(existing));
  }
  records(*unit, stored.point);
  switch (unit->Commit(settling)) {
    case ChangeResult::Done:
      break;
    case ChangeResult::Nothing:
      stored.result = StoringResult::Failed;
      return stored;
    case ChangeResult::Pending:
      stored.result = StoringResult::StoredLater;
      break;
  }
  session.RawIsOpened();
  return stored;
}

}  // namespace tarvex
