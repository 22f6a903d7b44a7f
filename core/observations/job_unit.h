// One piece of work on a job: the record of a point, what the raw file says of it and its note.
// They are written together or not at all, whatever interrupts them, and are on disk when Commit
// says so.
//
//   auto unit = JobUnit::Begin(job);
//   StorePoint(job, at, description, true, &unit->coordinates());
//   unit->AppendRaw(records);
//   unit->SetQuality(id, lines);
//   unit->Commit();
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/coordinates/coordinate_file.h"
#include "core/job/job.h"
#include "core/observations/point_notes.h"

namespace tarvex {

/// When the files themselves are made durable. Until then the journal is, and everything is
/// finished from it when the job is opened again.
enum class Settling {
  Now,   ///< before Commit returns
  Later  ///< with one of the next units, by SettleJob or by CloseJob
};

class JobUnit {
 public:
  /// Opens the job's coordinate file and holds its lock until the unit is destroyed. Nothing after
  /// a message when it cannot be opened.
  static std::unique_ptr<JobUnit> Begin(Job& job);
  ~JobUnit();
  JobUnit(const JobUnit&) = delete;
  JobUnit& operator=(const JobUnit&) = delete;

  /// Changes made through it become part of the unit.
  CoordinateFile& coordinates() { return *stream_; }
  /// Records as they are written, each beginning with "\n".
  void AppendRaw(std::span<const std::string> records);
  void AppendRaw(std::string_view record) { raw_ += record; }
  /// A note that is wanted for a point; of several for one point the last counts.
  void EditNote(std::string_view pointId, NoteEdit edit);

  /// Carries everything out. Anything but Done was reported to the person; with Nothing the job is
  /// as before.
  ChangeResult Commit(Settling settling = Settling::Now);

 private:
  struct Opened;
  JobUnit(Job& job, std::unique_ptr<CoordinateFile> stream);

  FilesStatus Gather(Opened& opened, JobChange& change);
  FileStatus GatherRaw(Opened& opened, JobChange& change);
  FileStatus GatherNotes(Opened& opened, JobChange& change);
  FileStatus PrepareReplacement(Opened& opened);
  FilesStatus MakeDurable(Opened& opened, const JobChange& change);
  ChangeResult Refuse(const Opened& opened, const FilesStatus& status);
  void TakeBackJobState();

  Job& job_;
  std::unique_ptr<CoordinateFile> stream_;
  std::string raw_;
  NoteEdits notes_;
  bool done_ = false;

  // What a store changes in the job, as it was before.
  StoreState store_;
  IdSequence ids_;
};

enum class [[nodiscard]] FinishJobResult {
  Nothing,   ///< no work was interrupted
  Finished,  ///< what an interruption left is done
  Failed     ///< it cannot be done; the person knows, and what the files hold is not to be shown
};

/// Finishes what an interruption left of earlier work, and removes what it left beside the files. A
/// job that cannot be opened for writing is left as it is.
FinishJobResult FinishJob(Job& job);

/// Makes durable in the files what units that settle later left in the journal.
FileStatus SettleJob(Job& job);

/// The same, and removes the journal: a job that is closed is three files.
FileStatus CloseJob(Job& job);

}  // namespace tarvex
