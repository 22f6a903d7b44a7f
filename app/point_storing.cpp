#include "app/point_storing.h"

#include "core/coordinate_file.h"
#include "core/number_text.h"
#include "core/point_id.h"
#include "core/point_store.h"
#include "core/raw_file.h"
#include "core/raw_records.h"

namespace tarvex {

ExistingPolicy ParseExistingPolicy(std::string_view name) {
  if (name == "overwrite") return ExistingPolicy::Overwrite;
  if (name == "next") return ExistingPolicy::Next;
  return name == "cancel" ? ExistingPolicy::Cancel : ExistingPolicy::Ask;
}

ExitCode StoreUnderId(Program& program, JobSession& session, const std::string& id,
                      const GridPoint& at, const std::string& description) {
  Job& job = session.job();
  const auto stream = OpenCoordinateFile(job);
  if (!stream) return ExitCode::Failed;
  const auto number = ParseInteger(id);
  if (!job.alphanumeric && (!number || *number < 1 || *number > kHighestPointNumber)) {
    return program.Misuse("\"" + id +
                          "\" is no point number: this job numbers its points 1 to 999999999.");
  }
  if (job.alphanumeric && NormalisePointId(id).empty()) {
    return program.Misuse("The point id is empty.");
  }
  job.current_point_id = job.alphanumeric ? id : std::to_string(*number);
  switch (StorePoint(job, at, description, true, stream.get())) {
    case StorePointResult::Stored:
      break;
    case StorePointResult::Cancelled:
      return program.Fail("Point " + job.current_point_id +
                          " exists; nothing was stored. (--existing overwrite or next decides.)");
    case StorePointResult::DialogFailed:
      return program.Fail("No free point id was found behind " + job.current_point_id + ".");
    case StorePointResult::Nothing:
    case StorePointResult::NoStream:
      return program.Fail("Point " + job.current_point_id + " was not stored.");
  }
  program.console.Print("Stored point " + job.last_stored_point.id.str() + ".\n");
  if (AppendRawRecord(job, StoredPointRecord(job.last_stored_point)) == RawFileResult::Written) {
    return ExitCode::Done;
  }
  return program.Fail("The point is stored, but the raw file " + RawFilePath(job) +
                      " could not be written.");
}

}  // namespace tarvex
