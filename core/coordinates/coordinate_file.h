// The job's coordinate file, opened for one operation: OpenCoordinateFile creates or opens it,
// finishes an interrupted change, converts an older file and tells the job what the file holds.
//
// Two layouts: numeric (the point id is the record number) and alphanumeric (records kept in
// ascending order of id). Which one a file has is asked once, when it is opened; store() is the
// rules of that layout. The bytes are in core/coordinates/coordinate_layout.h, the prose in
// docs/formats/crd.md.
#pragma once

#include <memory>

#include "core/coordinates/layout_store.h"
#include "core/coordinates/record_file.h"
#include "core/job/job.h"

namespace tarvex {

/// An open coordinate file, locked against other programs until it is destroyed.
class CoordinateFile final : public RecordFile {
 public:
  CoordinateFile(Job& job, std::unique_ptr<File> file, bool alphanumeric, std::uint64_t size);

  LayoutStore& store() { return *store_; }
  /// Record 0 is the first behind the header; in a numeric file it holds point number 1.
  FileStatus ReadRecord(std::uint64_t index, Point& point);

 private:
  std::unique_ptr<LayoutStore> store_;
};

/// Opens the job's coordinate file, creating it when it is missing (in the layout that the job asks
/// for; `creatingJob` leaves the job's information texts alone). The job's layout, last point id
/// and last point number are set from the file. Nothing when that fails: the person has been told
/// why, with the path.
std::unique_ptr<CoordinateFile> OpenCoordinateFile(Job& job, bool creatingJob = false);

/// Opens an existing file to read from it only, so that a file without the right to write can still
/// be looked at. An interrupted change is finished first, which needs the right; an older file is
/// converted, or, without the right, shown as it would be.
std::unique_ptr<CoordinateFile> OpenForReading(Job& job);

}  // namespace tarvex
