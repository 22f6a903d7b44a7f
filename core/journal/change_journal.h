// Changes of a job's files that happen as a whole or not at all, whatever interrupts them: the
// program killed, the disk full, the power gone. One change may touch the coordinate file, the raw
// file and the notes.
//
// A change is first written as an entry of the journal NAME.crd.redo and made durable; then it is
// carried out. Several changes may follow one another before the files themselves are made durable
// (SettleChanges), because the journal can carry all of them out again. Opening the coordinate file
// finishes what an interruption left; an entry that was itself cut short is discarded, because no
// file was touched yet. docs/formats/redo.md describes the bytes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/journal/job_files.h"
#include "platform/file.h"

namespace tarvex {

/// `bytes`, `repeat` times in a row, from `offset` on.
struct FileWrite {
  std::uint64_t offset = 0;
  std::string bytes;
  std::uint64_t repeat = 1;
};

/// What becomes of one file.
struct FileChange {
  JobFile file = JobFile::Coordinates;
  std::uint64_t oldSize = 0;
  std::uint64_t newSize = 0;
  std::vector<FileWrite> writes = {};
  bool replaced = false;  ///< by FILE.tmp, which is durable already; there are no writes then
};

using JobChange = std::vector<FileChange>;

enum class [[nodiscard]] ChangeResult {
  Done,     ///< durable, and in the files
  Nothing,  ///< the files are as before
  Pending   ///< durable in the journal: comes into the files when the job is opened again
};

/// What came of work on several files: the first failure, and the file at which it happened.
struct [[nodiscard]] FilesStatus {
  FileStatus status = {};
  std::string path = {};

  bool ok() const { return status.ok(); }
  /// "site.rw5: Permission denied".
  std::string Text() const { return path + ": " + status.Text(); }
};

/// The files of a job while one change is carried out. A file that the change does not touch may be
/// missing here.
struct OpenJobFiles {
  File* coordinates = nullptr;
  File* raw = nullptr;
  File* notes = nullptr;

  File* of(JobFile file) const;
};

/// Journals the change and carries it out, without making the files themselves durable. `path` is
/// the coordinate file's, `place` where the journal's entries of this program end; `status` is why
/// it was not Done.
ChangeResult CarryOut(FileSystem& files, const std::string& path, JournalPlace& place,
                      const JobChange& change, const OpenJobFiles& open, FilesStatus& status);

/// Makes the files of all entries durable and empties the journal. When that fails, the entries are
/// finished like another program's: a system that could not write something has forgotten it, and
/// would report success the next time.
FileStatus SettleChanges(FileSystem& files, const std::string& path, JournalPlace& place);

/// Empties the journal when the files of all its entries are durable.
FileStatus ForgetChanges(FileSystem& files, const std::string& path, JournalPlace& place);

/// Settles and removes the journal, when a job is closed.
FileStatus CloseJournal(FileSystem& files, const std::string& path, JournalPlace& place);

/// One change of the file at `path` alone, durable when it returns. When it fails before any byte
/// is overwritten (a full disk), the file is as before; when it fails later, the journal stays,
/// FinishInterruptedChange completes it, and the status says Pending.
FileStatus ChangeFile(FileSystem& files, const std::string& path, File& file,
                      const FileChange& change);

/// Completes the changes that an earlier run did not finish, if there are any. To be called after
/// the coordinate file was opened and locked for writing and before anything is read from it; it
/// may have been replaced afterwards (File::IsNamed). `place` is forgotten when its entries are no
/// longer there, because another program has settled them.
FilesStatus FinishInterruptedChange(FileSystem& files, const std::string& path, File& file,
                                    JournalPlace& place);
FilesStatus FinishInterruptedChange(FileSystem& files, const std::string& path, File& file);

/// There is a journal, with entries or without.
bool HasJournal(FileSystem& files, const std::string& path);

/// True when FinishInterruptedChange has something to look at: entries that are not this program's,
/// or a journal that cannot be read.
bool HasInterruptedChange(FileSystem& files, const std::string& path,
                          const JournalPlace& place = {});

}  // namespace tarvex
