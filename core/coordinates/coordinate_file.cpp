#include "core/coordinates/coordinate_file.h"

namespace tarvex {

CoordinateFile::CoordinateFile(Job& job, std::unique_ptr<File> file, bool alphanumeric,
                               std::uint64_t size)
    : RecordFile(job, std::move(file),
                 alphanumeric ? alphanumeric_layout::kLayout : numeric_layout::kLayout, size),
      store_(MakeLayoutStore(job, *this, alphanumeric)) {}

FileStatus CoordinateFile::ReadRecord(std::uint64_t index, Point& point) {
  std::string bytes;
  if (FileStatus status = ReadRecords(index, 1, bytes); !status.ok()) return status;
  store_->DecodeRecord(bytes.data(), index, point);
  return {};
}

}  // namespace tarvex
