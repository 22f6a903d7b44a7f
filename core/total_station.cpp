#include "core/total_station.h"

#include "core/job_unit.h"
#include "core/raw_records.h"

namespace tarvex {

RawFileResult OccupyAndBacksight(Job& job, const SetupEntry& entry) {
  job.setup = {.occupied_id = entry.occupied_id,
               .backsight_id = entry.backsight_id,
               .circle_degrees = entry.circle_degrees};
  const auto unit = JobUnit::Begin(job);
  if (!unit) return RawFileResult::Dropped;
  Point occupied;
  if (ReadPoint(job, entry.occupied_id, &unit->coordinates(), occupied) == ReadPointResult::Found) {
    unit->AppendRaw(OccupyRecord(occupied));
  }
  unit->AppendRaw(HeightsRecord(entry.instrument_height, entry.rod_height));
  unit->AppendRaw(BacksightRecord(job, {.occupied_id = entry.occupied_id,
                                        .backsight_id = entry.backsight_id,
                                        .azimuth_degrees = entry.azimuth_degrees,
                                        .circle_degrees = entry.circle_degrees}));
  return unit->Commit() == ChangeResult::Nothing ? RawFileResult::Dropped : RawFileResult::Written;
}

ShotResult StoreShot(Job& job, ShotKind kind, const Shot& shot, const GridPoint& at,
                     bool check_existing) {
  ShotResult result;
  const auto unit = JobUnit::Begin(job);
  if (!unit) return {.stored = StorePointResult::NoStream};
  job.current_point_id = shot.foresight_id;
  result.stored = StorePoint(job, at, shot.description, check_existing, &unit->coordinates());
  if (!IsStored(result.stored)) return result;
  Shot stored = shot;
  stored.foresight_id = job.last_stored_point.id.str();  // the person may have chosen another id
  unit->AppendRaw(kind == ShotKind::Traverse ? TraverseRecord(job, stored)
                                             : SideshotRecord(job, stored));
  if (unit->Commit() == ChangeResult::Nothing) return {.stored = StorePointResult::Nothing};
  result.record = RawFileResult::Written;
  return result;
}

}  // namespace tarvex
