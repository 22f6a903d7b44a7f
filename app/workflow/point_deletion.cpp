#include "app/workflow/point_deletion.h"

#include "core/coordinates/point_store.h"
#include "core/observations/job_unit.h"
#include "core/raw_data/raw_records.h"

namespace tarvex {

DeletionResult DeleteJobPoint(JobSession& session, const std::string& id, Point& deleted) {
  Job& job = session.job();
  const auto unit = JobUnit::Begin(job);
  if (!unit) return DeletionResult::Failed;
  if (ReadPoint(job, id, &unit->coordinates(), deleted) != ReadPointResult::Found) {
    return DeletionResult::NotFound;
  }
  if (DeletePoint(job, id, &unit->coordinates()) != DeletePointResult::Deleted) {
    return DeletionResult::Failed;
  }
  unit->AppendRaw(session.RawOpening());
  unit->AppendRaw(DeletedPointRecord(deleted));
  unit->EditNote(deleted.id.view(), {.kind = NoteEdit::Kind::Remove, .note = {}});
  if (unit->Commit() != ChangeResult::Done) return DeletionResult::Failed;
  session.RawIsOpened();
  return DeletionResult::Deleted;
}

}  // namespace tarvex
