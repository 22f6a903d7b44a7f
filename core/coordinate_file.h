// The job's coordinate file, opened for one operation: OpenCoordinateFile creates or opens it,
// finishes an interrupted change, converts an older file and tells the job what the file holds.
//
// Two layouts: numeric (the point id is the record number) and alphanumeric (records kept in
// ascending order of id). Their bytes are in core/coordinate_layout.h, the prose in
// docs/formats/crd.md.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/change_journal.h"
#include "core/job.h"
#include "platform/file.h"

namespace tarvex {

/// Where an id stands in an alphanumeric file, or where it would be inserted.
struct RecordPosition {
  std::uint64_t index = 0;
  bool found = false;
};

/// An open coordinate file, locked against other programs until it is destroyed.
class CoordinateFile {
 public:
  CoordinateFile(Job& job, std::unique_ptr<File> file, bool alphanumeric, std::uint64_t size);

  bool alphanumeric() const { return alphanumeric_; }
  std::uint64_t size() const { return size_; }
  /// Whole records behind the header; a record cut short at the end does not count.
  std::uint64_t recordCount() const;
  std::uint64_t recordSize() const;
  /// Bytes behind the last whole record: more than 0 in a file that was cut short.
  std::uint64_t trailingBytes() const;
  /// Record 0 is the first behind the header; in a numeric file it holds point number 1.
  std::uint64_t RecordOffset(std::uint64_t index) const;

  /// Reads records [first, first + count) into `bytes`; an error when the file ends before.
  FileStatus ReadRecords(std::uint64_t first, std::uint64_t count, std::string& bytes);
  FileStatus ReadRecord(std::uint64_t index, Point& point);
  /// Bytes of the file, gathered changes among them; `got` is less at its end.
  FileStatus ReadBytes(std::uint64_t offset, std::span<char> out, std::size_t& got);

  /// Finds a normalised id in an alphanumeric file: the last record, the first, then a binary
  /// search.
  FileStatus Find(std::string_view id, RecordPosition& position);

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

  /// From here on changes are gathered for a unit of the job (core/job_unit.h) instead of being
  /// carried out; what is read is what the file will hold.
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
  FileStatus IdAt(std::uint64_t index, PointId& id);
  FileStatus ProbeAt(std::size_t node, std::uint64_t index, PointId& id);
  FileStatus FindInBlock(std::string_view id, std::uint64_t low, std::uint64_t high,
                         RecordPosition& position);
  FileStatus BeginChange();
  FileStatus ChangeInPlace(std::string bytes);
  FileStatus BytesAfter(const FileChange& change, std::string& bytes);

  struct Probe {
    bool known = false;
    PointId id;
  };

  FileSystem& files_;
  std::string path_;
  JournalPlace& journal_;
  std::unique_ptr<File> file_;
  bool alphanumeric_;
  std::uint64_t size_;
  bool gathers_ = false;
  std::optional<FileChange> gathered_;
  std::string replacement_;
  std::vector<Probe> probes_;  // ids at the upper nodes of the binary search, for the next lookups
};

/// Opens the job's coordinate file, creating it when it is missing (in the layout that the job asks
/// for; `creatingJob` leaves the job's information texts alone). The job's layout, last point id
/// and last point number are set from the file. Nothing when that fails: the person has been told
/// why, with the path.
std::unique_ptr<CoordinateFile> OpenCoordinateFile(Job& job, bool creatingJob = false);

/// Sets the job's last point id and number from the file as it is now.
FileStatus TakeLastPoint(Job& job, CoordinateFile& stream);

/// Opens an existing file to read from it only, so that a file without the right to write can still
/// be looked at. An interrupted change is finished first, which needs the right; an older file is
/// converted, or, without the right, shown as it would be.
std::unique_ptr<CoordinateFile> OpenForReading(Job& job);

}  // namespace tarvex
