#include "core/observations/total_station.h"

#include "core/observations/job_unit.h"
#include "core/raw_data/raw_records.h"

namespace tarvex {

RawFileResult OccupyAndBacksight(Job& job, const SetupEntry& entry) {
  job.setup = {.occupiedId = entry.occupiedId,
               .backsightId = entry.backsightId,
               .circleDegrees = entry.circleDegrees};
  const auto unit = JobUnit::Begin(job);
  if (!unit) return RawFileResult::Dropped;
  Point occupied;
  if (ReadPoint(job, entry.occupiedId, &unit->coordinates(), occupied) == ReadPointResult::Found) {
    unit->AppendRaw(OccupyRecord(occupied));
  }
  unit->AppendRaw(HeightsRecord(entry.instrumentHeight, entry.rodHeight));
  unit->AppendRaw(BacksightRecord(job, {.occupiedId = entry.occupiedId,
                                        .backsightId = entry.backsightId,
                                        .azimuthDegrees = entry.azimuthDegrees,
                                        .circleDegrees = entry.circleDegrees}));
  return unit->Commit() == ChangeResult::Nothing ? RawFileResult::Dropped : RawFileResult::Written;
}

ShotResult StoreShot(Job& job, ShotKind kind, const Shot& shot, const GridPoint& at,
                     bool checkExisting) {
  ShotResult result;
  const auto unit = JobUnit::Begin(job);
  if (!unit) return {.stored = StorePointResult::NoStream};
  job.ids.current = shot.foresightId;
  result.stored = StorePoint(job, at, shot.description, checkExisting, &unit->coordinates());
  if (!IsStored(result.stored)) return result;
  Shot stored = shot;
  stored.foresightId = job.store.lastStoredPoint.id.str();  // the person may have chosen another id
  unit->AppendRaw(kind == ShotKind::Traverse ? TraverseRecord(job, stored)
                                             : SideshotRecord(job, stored));
  if (unit->Commit() == ChangeResult::Nothing) return {.stored = StorePointResult::Nothing};
  result.record = RawFileResult::Written;
  return result;
}

}  // namespace tarvex
