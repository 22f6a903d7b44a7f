#include "core/total_station.h"

#include <vector>

#include "core/raw_records.h"

namespace tarvex {

RawFileResult OccupyAndBacksight(Job& job, const SetupEntry& entry) {
  std::vector<std::string> records;
  Point occupied;
  const auto stream = OpenCoordinateFile(job);
  if (ReadPoint(job, entry.occupied_id, stream.get(), occupied) == ReadPointResult::Found) {
    records.push_back(OccupyRecord(occupied));
  }
  records.push_back(HeightsRecord(entry.instrument_height, entry.rod_height));
  records.push_back(BacksightRecord(job, {.occupied_id = entry.occupied_id,
                                          .backsight_id = entry.backsight_id,
                                          .azimuth_degrees = entry.azimuth_degrees,
                                          .circle_degrees = entry.circle_degrees}));
  const RawFileResult written = AppendRawRecords(job, records);
  job.setup = {.occupied_id = entry.occupied_id,
               .backsight_id = entry.backsight_id,
               .circle_degrees = entry.circle_degrees};
  return written;
}

ShotResult StoreShot(Job& job, ShotKind kind, const Shot& shot, const GridPoint& at,
                     bool check_existing) {
  ShotResult result;
  job.current_point_id = shot.foresight_id;
  {
    const auto stream = OpenCoordinateFile(job);
    result.stored = StorePoint(job, at, shot.description, check_existing, stream.get());
  }
  if (result.stored != StorePointResult::Stored) return result;
  Shot stored = shot;
  stored.foresight_id = job.last_stored_point.id.str();  // the person may have chosen another id
  result.record = AppendRawRecord(
      job, kind == ShotKind::Traverse ? TraverseRecord(job, stored) : SideshotRecord(job, stored));
  return result;
}

}  // namespace tarvex
