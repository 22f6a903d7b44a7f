#include "app/workflow/store_take_back.h"

#include <vector>

#include "app/workflow/put_back_records.h"
#include "core/coordinates/point_store.h"
#include "core/points/point_key.h"
#include "core/raw_data/raw_fields.h"
#include "core/raw_data/raw_records.h"
#include "core/text/number_text.h"
#include "core/text/text.h"
#include "platform/file_bytes.h"

namespace tarvex {
namespace {

constexpr int kDecimals = 4;  // of the coordinates in the raw file

bool IsQualityComment(std::string_view line) {
  return line.starts_with("--HRMS:") || line.starts_with("--HQ:");
}

// What the raw file says of one measurement of a point, to be written once more.
struct Measurement {
  std::string_view rod;  ///< the LS record in force
  std::string_view position;
  std::string_view grid;
  std::string_view quality;
};

// The measurements of a point that stand, in their order.
std::vector<Measurement> MeasurementsOf(std::string_view rawFile, std::string_view pointId) {
  std::vector<Measurement> found;
  std::string_view rod;
  PutBackRecords putBack;
  bool last = false;  // the record before was of this point
  while (const auto line = TakeLine(rawFile)) {
    if (line->starts_with("LS,")) rod = *line;
    const bool again = putBack.Take(*line);
    if (const auto id = TakenBackPointId(*line); id == pointId && !found.empty()) found.pop_back();
    // Behind the position, or later where the point was computed anew.
    if (line->starts_with("--GS,") && RawField(*line, "PN") == pointId && !found.empty()) {
      found.back().grid = *line;
    } else if (last && IsQualityComment(*line) && found.back().quality.empty()) {
      found.back().quality = *line;
    }
    if (line->starts_with("--")) continue;
    last = line->starts_with("GPS,") && StoredPointId(*line) == pointId;
    if (last && again && !found.empty()) found.pop_back();
    if (last) found.push_back({.rod = rod, .position = *line, .grid = {}, .quality = {}});
  }
  return found;
}

bool IsOf(const Measurement& measurement, const GridPoint& at) {
  const auto agrees = [&](std::string_view tag, double value) {
    return RawField(measurement.grid, tag) == FixedNumber(value, kDecimals);
  };
  return !measurement.quality.empty() && agrees("N ", at.northing) && agrees("E ", at.easting) &&
         agrees("EL", at.elevation);
}

void AddMeasurement(const Measurement& measurement, JobUnit& unit) {
  for (const std::string_view record :
       {measurement.rod, measurement.position, measurement.grid, measurement.quality}) {
    if (!record.empty()) unit.AppendRaw("\n" + std::string(record));
  }
}

// The point that the store had replaced. Its measurement is the one before the last.
bool PutBack(Job& job, const StoredPoint& stored, JobUnit& unit) {
  const Point& old = *stored.replaced;
  job.ids.current = old.id.str();
  if (StorePoint(job, old.at, old.description.view(), false, &unit.coordinates()) !=
      StorePointResult::Stored) {
    return false;
  }
  FileBytes raw;
  (void)LoadFileBytes(job.host.files(), RawFilePath(job), raw);
  const auto measured = MeasurementsOf(raw.view(), old.id.view());
  const std::size_t count = measured.size();
  if (!stored.replacedQuality.empty() && count > 1 && IsOf(measured[count - 2], old.at)) {
    AddMeasurement(measured[count - 2], unit);
    unit.EditNote(
        old.id.view(),
        {.kind = NoteEdit::Kind::SetQuality,
         .note = {.pointId = old.id.str(), .lines = {}, .qualityLines = stored.replacedQuality}});
  } else {
    unit.AppendRaw(StoredPointRecord(old, old.description.view()));
    unit.EditNote(old.id.view(), {.kind = NoteEdit::Kind::DropQuality, .note = {}});
  }
  return true;
}

bool TakeAway(Job& job, const Point& point, JobUnit& unit) {
  unit.EditNote(point.id.view(), {.kind = NoteEdit::Kind::Remove, .note = {}});
  return DeletePoint(job, point.id.view(), &unit.coordinates()) == DeletePointResult::Deleted;
}

}  // namespace

TakeBackResult TakeBackStore(JobSession& session, const StoredPoint& stored) {
  Job& job = session.job();
  const auto unit = JobUnit::Begin(job);
  if (!unit) return TakeBackResult::Failed;
  Point now;
  const bool found =
      ReadPoint(job, stored.point.id.view(), &unit->coordinates(), now) == ReadPointResult::Found;
  if (!found || now != stored.point) return TakeBackResult::Changed;
  unit->AppendRaw(session.RawOpening());
  unit->AppendRaw(TakenBackPointRecord(stored.point));
  const bool done =
      stored.replaced ? PutBack(job, stored, *unit) : TakeAway(job, stored.point, *unit);
  if (!done || unit->Commit() != ChangeResult::Done) return TakeBackResult::Failed;
  session.RawIsOpened();
  job.ids.current = stored.point.id.str();
  return TakeBackResult::TakenBack;
}

}  // namespace tarvex
