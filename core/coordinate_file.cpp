// Reading, searching and changing an open coordinate file.
#include <algorithm>
#include <cerrno>

#include "core/coordinate_file.h"
#include "core/coordinate_layout.h"
#include "core/point_id.h"

namespace tarvex {
namespace {

// The binary search remembers this many of its upper nodes, and reads the last records in one
// piece.
constexpr std::size_t kRememberedNodes = 4096;
constexpr std::uint64_t kBlockRecords = 256;

// A file up to this size is replaced as a whole for any change: docs/performance.md has the
// numbers.
constexpr std::uint64_t kReplacedForAnyChange = std::uint64_t{3} << 20U;
// None is replaced above this size: it is held in memory for that.
constexpr std::uint64_t kLargestReplaced = std::uint64_t{64} << 20U;

// Replacing writes the file once and waits for the disk twice; the journal writes what changes
// twice and waits four times. Both leave the old state or the new one.
bool ReplacingIsFaster(const FileChange& change) {
  std::uint64_t journaled = 0;
  for (const FileWrite& write : change.writes) {
    journaled += write.bytes.size() + write.bytes.size() * write.repeat;
  }
  return change.new_size <= std::min(kReplacedForAnyChange + journaled, kLargestReplaced);
}

// What the file holds after the change, made from what it held before.
void Apply(const FileChange& change, std::string& bytes) {
  bytes.resize(static_cast<std::size_t>(change.new_size));
  for (const FileWrite& write : change.writes) {
    auto at = static_cast<std::size_t>(write.offset);
    for (std::uint64_t i = 0; i < write.repeat; ++i, at += write.bytes.size()) {
      bytes.replace(at, write.bytes.size(), write.bytes);
    }
  }
}

}  // namespace

CoordinateFile::CoordinateFile(FileSystem& files, std::string path, std::unique_ptr<File> file,
                               bool alphanumeric, std::uint64_t size)
    : files_(files),
      path_(std::move(path)),
      file_(std::move(file)),
      alphanumeric_(alphanumeric),
      size_(size) {}

std::uint64_t CoordinateFile::record_size() const {
  return alphanumeric_ ? alphanumeric_layout::kRecordSize : numeric_layout::kRecordSize;
}

std::uint64_t CoordinateFile::RecordOffset(std::uint64_t index) const {
  const std::uint64_t header =
      alphanumeric_ ? alphanumeric_layout::kHeaderSize : numeric_layout::kRecordSize;
  return header + record_size() * index;
}

std::uint64_t CoordinateFile::record_count() const {
  const std::uint64_t header = RecordOffset(0);
  return size_ <= header ? 0 : (size_ - header) / record_size();
}

std::uint64_t CoordinateFile::trailing_bytes() const {
  return size_ <= RecordOffset(0) ? 0 : (size_ - RecordOffset(0)) % record_size();
}

FileStatus CoordinateFile::ReadRecords(std::uint64_t first, std::uint64_t count,
                                       std::string& bytes) {
  bytes.resize(static_cast<std::size_t>(count * record_size()));
  std::size_t got = 0;
  if (FileStatus status = file_->ReadAt(RecordOffset(first), bytes, got); !status.ok()) {
    return status;
  }
  return got == bytes.size() ? FileStatus{} : FileStatus{EIO};
}

FileStatus CoordinateFile::ReadRecord(std::uint64_t index, Point& point) {
  std::string bytes;
  if (FileStatus status = ReadRecords(index, 1, bytes); !status.ok()) return status;
  if (alphanumeric_) {
    alphanumeric_layout::DecodeRecord(bytes.data(), point);
  } else {
    numeric_layout::DecodeRecord(bytes.data(), point);
    point.id.Assign(std::to_string(index + 1));
  }
  return {};
}

FileStatus CoordinateFile::IdAt(std::uint64_t index, PointId& id) {
  char field[alphanumeric_layout::kIdSize] = {};
  std::size_t got = 0;
  const std::uint64_t offset = RecordOffset(index) + alphanumeric_layout::kIdOffset;
  if (FileStatus status = file_->ReadAt(offset, field, got); !status.ok()) return status;
  if (got != sizeof field) return {EIO};
  id.TakeField(field);
  return {};
}

FileStatus CoordinateFile::ProbeAt(std::size_t node, std::uint64_t index, PointId& id) {
  if (node >= kRememberedNodes) return IdAt(index, id);
  if (probes_.empty()) probes_.resize(kRememberedNodes);
  Probe& probe = probes_[node];
  if (!probe.known) {
    if (FileStatus status = IdAt(index, probe.id); !status.ok()) return status;
    probe.known = true;
  }
  id = probe.id;
  return {};
}

// The search goes on in memory once the records between `low` and `high` fit into one read.
FileStatus CoordinateFile::FindInBlock(std::string_view id, std::uint64_t low, std::uint64_t high,
                                       RecordPosition& position) {
  const std::uint64_t first = low + 1;
  std::string block;
  if (FileStatus status = ReadRecords(first, high - first, block); !status.ok()) return status;
  while (high - low > 1) {
    const std::uint64_t middle = (low + high) / 2;
    const char* record = block.data() + (middle - first) * record_size();
    const int order = ComparePointIds(alphanumeric_layout::DecodeId(record).view(), id);
    if (order == 0) {
      position = {.index = middle, .found = true};
      return {};
    }
    (order < 0 ? low : high) = middle;
  }
  position = {.index = high, .found = false};
  return {};
}

FileStatus CoordinateFile::Find(std::string_view id, RecordPosition& position) {
  const std::uint64_t count = record_count();
  if (count == 0) {
    position = {};
    return {};
  }
  PointId probe;
  if (FileStatus status = ProbeAt(0, count - 1, probe); !status.ok()) return status;
  int order = ComparePointIds(probe.view(), id);
  if (order <= 0) {
    position = {.index = order == 0 ? count - 1 : count, .found = order == 0};
    return {};
  }
  if (FileStatus status = ProbeAt(1, 0, probe); !status.ok()) return status;
  order = ComparePointIds(probe.view(), id);
  if (order >= 0) {
    position = {.index = 0, .found = order == 0};
    return {};
  }
  std::uint64_t low = 0;
  std::uint64_t high = count - 1;
  // Nodes 0 and 1 are the last and the first record; the tree of the search starts at node 2.
  for (std::size_t node = 2; high - low > kBlockRecords;) {
    const std::uint64_t middle = (low + high) / 2;
    if (FileStatus status = ProbeAt(node, middle, probe); !status.ok()) return status;
    order = ComparePointIds(probe.view(), id);
    if (order == 0) {
      position = {.index = middle, .found = true};
      return {};
    }
    (order < 0 ? low : high) = middle;
    node = node * 2 + (order < 0 ? 1 : 0);
  }
  return FindInBlock(id, low, high, position);
}

// A change that failed half way is finished when the file is opened again; nothing may come before.
FileStatus CoordinateFile::BeginChange() {
  probes_.clear();
  return HasInterruptedChange(files_, path_) ? FileStatus{EIO} : FileStatus{};
}

FileStatus CoordinateFile::Replace(const FileChange& change) {
  std::string bytes(static_cast<std::size_t>(std::min(change.old_size, change.new_size)), '\0');
  std::size_t got = 0;
  if (FileStatus status = file_->ReadAt(0, bytes, got); !status.ok()) return status;
  if (got != bytes.size()) return {EIO};
  Apply(change, bytes);
  return ReplaceWholeFile(files_, path_, bytes, file_);
}

FileStatus CoordinateFile::Append(std::string_view bytes) {
  FileStatus status = BeginChange();
  if (!status.ok()) return status;
  const std::uint64_t end = RecordOffset(record_count());
  status = file_->WriteAt(end, bytes);
  if (status.ok()) status = file_->Sync();
  if (!status.ok()) {
    (void)file_->Resize(end);
    return status;
  }
  size_ = std::max(size_, end + bytes.size());
  return {};
}

FileStatus CoordinateFile::Overwrite(std::uint64_t offset, std::string_view bytes) {
  const FileStatus status = BeginChange();
  return status.ok() ? file_->WriteAt(offset, bytes) : status;
}

FileStatus CoordinateFile::Shorten(std::uint64_t size) {
  FileStatus status = BeginChange();
  if (status.ok()) status = file_->Resize(size);
  if (!status.ok()) return status;
  size_ = size;
  return file_->Sync();
}

FileStatus CoordinateFile::Change(std::vector<FileWrite> writes, std::uint64_t new_size) {
  FileStatus status = BeginChange();
  if (!status.ok()) return status;
  const FileChange change{.old_size = size_, .new_size = new_size, .writes = std::move(writes)};
  status = ReplacingIsFaster(change) ? Replace(change) : ChangeFile(files_, path_, *file_, change);
  std::uint64_t size = size_;
  if (file_->Size(size).ok()) size_ = size;
  return status;
}

}  // namespace tarvex
