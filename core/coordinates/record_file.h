// An open file of fixed-size records behind a header, locked against other programs. Every change
// is made whole or not at all, at once or gathered for a unit of the job; what the records mean is
// said elsewhere (core/coordinates/layout_store.h).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/coordinates/coordinate_layout.h"
#include "core/job/job.h"
#include "core/journal/change_journal.h"
#include "platform/file.h"

namespace tarvex {

class RecordFile {
 public:
  RecordFile(Job& job, std::unique_ptr<File> file, const RecordLayout& layout, std::uint64_t size);

  std::uint64_t size() const { return size_; }
  /// Whole records behind the header; a record cut short at the end does not count.
  std::uint64_t recordCount() const;
  std::uint64_t recordSize() const { return layout_.recordSize; }
  /// Bytes behind the last whole record: more than 0 in a file that was cut short.
  std::uint64_t trailingBytes() const;
  /// Record 0 is the first behind the header.
  std::uint64_t RecordOffset(std::uint64_t index) const;

  /// Reads records [first, first + count) into `bytes`; an error when the file ends before.
  FileStatus ReadRecords(std::uint64_t first, std::uint64_t count, std::string& bytes);
  /// Bytes of the file, gathered changes among them; `got` is less at its end.
  FileStatus ReadBytes(std::uint64_t offset, std::span<char> out, std::size_t& got);

  /// Writes bytes behind the last whole record and makes them durable; on failure the file is as
  /// before.
  FileStatus Append(std::string_view bytes);
  /// Overwrites bytes inside the file without protection: for what a single sector holds.
  FileStatus Overwrite(std::uint64_t offset, std::string_view bytes);
  FileStatus Sync() { return file_->Sync(); }
  /// Shortens the file durably.
  FileStatus Shorten(std::uint64_t size);
  /// Carries out a change as a whole or not at all; its sizes are filled in here.
  FileStatus Change(std::vector<FileWrite> writes, std::uint64_t newSize);
  /// Gives the file these bytes as a whole or not at all.
  FileStatus ReplaceWith(std::string bytes);

  /// From here on changes are gathered for a unit of the job (core/observations/job_unit.h) instead
  /// of being carried out; what is read is what the file will hold.
  void GatherChanges() { gathers_ = true; }
  /// The gathered change; nothing when there is none.
  const std::optional<FileChange>& gathered() const { return gathered_; }
  /// With a gathered change that replaces the file: its new bytes.
  const std::string& replacement() const { return replacement_; }
  File& file() { return *file_; }
  /// The file that took the place of this one.
  void Follow(std::unique_ptr<File> file) { file_ = std::move(file); }

 private:
  void Gather(std::vector<FileWrite> writes, std::uint64_t newSize);
  FileStatus BeginChange();
  FileStatus ChangeInPlace(std::string bytes);
  FileStatus BytesAfter(const FileChange& change, std::string& bytes);

  FileSystem& files_;
  std::string path_;
  JournalPlace& journal_;
  std::unique_ptr<File> file_;
  RecordLayout layout_;
  std::uint64_t size_;
  bool gathers_ = false;
  std::optional<FileChange> gathered_;
  std::string replacement_;
};

}  // namespace tarvex
