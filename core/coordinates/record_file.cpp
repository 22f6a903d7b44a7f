#include "core/coordinates/record_file.h"

#include <algorithm>
#include <cerrno>

namespace tarvex {
namespace {

// A file up to this size is replaced as a whole for any change: docs/performance.md has the
// numbers.
constexpr std::uint64_t kReplacedForAnyChange = std::uint64_t{3} << 20U;
// None is replaced above this size: it is held in memory for that.
constexpr std::uint64_t kLargestReplaced = std::uint64_t{64} << 20U;

std::uint64_t WrittenBytes(const FileChange& change) {
  std::uint64_t written = 0;
  for (const FileWrite& write : change.writes) written += write.bytes.size() * write.repeat;
  return written;
}

// Replacing writes the file once and waits for the disk twice; the journal writes what changes
// twice and waits four times. Both leave the old state or the new one.
bool ReplacingIsFaster(const FileChange& change) {
  std::uint64_t journaled = WrittenBytes(change);
  for (const FileWrite& write : change.writes) journaled += write.bytes.size();
  return change.newSize <= std::min(kReplacedForAnyChange + journaled, kLargestReplaced);
}

// A gathered change that is larger is not written twice: the file is replaced.
constexpr std::uint64_t kLargestGathered = std::uint64_t{256} << 10U;

// What the file holds after the change, made from what it held before.
void Apply(const FileChange& change, std::string& bytes) {
  bytes.resize(static_cast<std::size_t>(change.newSize));
  for (const FileWrite& write : change.writes) {
    auto at = static_cast<std::size_t>(write.offset);
    for (std::uint64_t i = 0; i < write.repeat; ++i, at += write.bytes.size()) {
      bytes.replace(at, write.bytes.size(), write.bytes);
    }
  }
}

// What is left of gathered writes in a file that ends at `size` again.
void CutAt(std::uint64_t size, std::vector<FileWrite>& writes) {
  std::erase_if(writes, [size](const FileWrite& write) { return write.offset >= size; });
  for (FileWrite& write : writes) {
    const std::uint64_t room = size - write.offset;
    if (write.bytes.size() * write.repeat <= room) continue;
    if (write.repeat == 1) {
      write.bytes.resize(static_cast<std::size_t>(room));
    } else {
      write.repeat = room / write.bytes.size();  // repeated are records, and a file ends with one
    }
  }
}

// Lays the part of `write` that lies within `out`, which begins at `offset`, over it.
void LayOver(const FileWrite& write, std::uint64_t offset, std::span<char> out) {
  const std::uint64_t length = write.bytes.size();
  for (std::uint64_t i = 0; i < write.repeat; ++i) {
    const std::uint64_t begin = write.offset + i * length;
    const std::uint64_t first = std::max(begin, offset);
    const std::uint64_t last = std::min(begin + length, offset + out.size());
    if (begin >= offset + out.size()) return;
    if (first >= last) continue;
    const auto from = write.bytes.begin() + static_cast<std::ptrdiff_t>(first - begin);
    std::copy(from, from + static_cast<std::ptrdiff_t>(last - first),
              out.begin() + static_cast<std::ptrdiff_t>(first - offset));
  }
}

}  // namespace

RecordFile::RecordFile(Job& job, std::unique_ptr<File> file, const RecordLayout& layout,
                       std::uint64_t size)
    : files_(job.host.files()),
      path_(job.path),
      journal_(job.journal),
      file_(std::move(file)),
      layout_(layout),
      size_(size) {}

std::uint64_t RecordFile::RecordOffset(std::uint64_t index) const {
  return layout_.headerSize + layout_.recordSize * index;
}

std::uint64_t RecordFile::recordCount() const {
  const std::uint64_t header = RecordOffset(0);
  return size_ <= header ? 0 : (size_ - header) / recordSize();
}

std::uint64_t RecordFile::trailingBytes() const {
  return size_ <= RecordOffset(0) ? 0 : (size_ - RecordOffset(0)) % recordSize();
}

FileStatus RecordFile::ReadRecords(std::uint64_t first, std::uint64_t count, std::string& bytes) {
  bytes.resize(static_cast<std::size_t>(count * recordSize()));
  std::size_t got = 0;
  if (FileStatus status = ReadBytes(RecordOffset(first), bytes, got); !status.ok()) return status;
  return got == bytes.size() ? FileStatus{} : FileStatus{EIO};
}

FileStatus RecordFile::ReadBytes(std::uint64_t offset, std::span<char> out, std::size_t& got) {
  if (!gathered_) return file_->ReadAt(offset, out, got);
  const std::uint64_t size = gathered_->newSize;
  const std::uint64_t there =
      offset >= size ? 0 : std::min<std::uint64_t>(out.size(), size - offset);
  const std::span<char> part = out.first(static_cast<std::size_t>(there));
  if (gathered_->replaced) {
    replacement_.copy(part.data(), part.size(), static_cast<std::size_t>(offset));
  } else {
    std::fill(part.begin(), part.end(), '\0');
    if (FileStatus status = file_->ReadAt(offset, part, got); !status.ok()) return status;
    for (const FileWrite& write : gathered_->writes) LayOver(write, offset, part);
  }
  got = part.size();
  return {};
}

void RecordFile::Gather(std::vector<FileWrite> writes, std::uint64_t newSize) {
  if (!gathered_) gathered_ = FileChange{.oldSize = size_};
  gathered_->newSize = size_ = newSize;
  if (gathered_->replaced) {
    Apply({.newSize = newSize, .writes = std::move(writes)}, replacement_);
    return;
  }
  CutAt(newSize, gathered_->writes);
  for (FileWrite& write : writes) gathered_->writes.push_back(std::move(write));
}

// What an earlier change left in the journal is durable in the files before one is made without it;
// an interrupted change is finished when the file is opened again, and nothing may come before.
FileStatus RecordFile::BeginChange() {
  if (HasInterruptedChange(files_, path_, journal_)) return {EIO};
  return CloseJournal(files_, path_, journal_);
}

FileStatus RecordFile::BytesAfter(const FileChange& change, std::string& bytes) {
  bytes.assign(static_cast<std::size_t>(std::min(change.oldSize, change.newSize)), '\0');
  std::size_t got = 0;
  if (FileStatus status = file_->ReadAt(0, bytes, got); !status.ok()) return status;
  if (got != bytes.size()) return {EIO};
  Apply(change, bytes);
  return {};
}

FileStatus RecordFile::Append(std::string_view bytes) {
  const std::uint64_t end = RecordOffset(recordCount());
  const std::uint64_t newSize = std::max(size_, end + bytes.size());
  if (gathers_) {
    Gather({{.offset = end, .bytes = std::string(bytes)}}, newSize);
    return {};
  }
  FileStatus status = BeginChange();
  if (!status.ok()) return status;
  status = file_->WriteAt(end, bytes);
  if (status.ok()) status = file_->Sync();
  if (!status.ok()) {
    (void)file_->Resize(end);
    return status;
  }
  size_ = newSize;
  return {};
}

FileStatus RecordFile::Overwrite(std::uint64_t offset, std::string_view bytes) {
  if (gathers_) {
    Gather({{.offset = offset, .bytes = std::string(bytes)}}, size_);
    return {};
  }
  const FileStatus status = BeginChange();
  return status.ok() ? file_->WriteAt(offset, bytes) : status;
}

FileStatus RecordFile::Shorten(std::uint64_t size) {
  if (gathers_) {
    Gather({}, size);
    return {};
  }
  FileStatus status = BeginChange();
  if (status.ok()) status = file_->Resize(size);
  if (!status.ok()) return status;
  size_ = size;
  status = file_->Sync();
  if (!status.ok()) status.effect = FileEffect::NotDurable;
  return status;
}

FileStatus RecordFile::Change(std::vector<FileWrite> writes, std::uint64_t newSize) {
  FileChange change{.oldSize = size_, .newSize = newSize, .writes = std::move(writes)};
  const bool replaceable = files_.IsReplaceable(path_);
  if (gathers_ && (gathered_ || !replaceable || WrittenBytes(change) <= kLargestGathered)) {
    Gather(std::move(change.writes), newSize);
    return {};
  }
  std::string bytes;
  if (gathers_) {
    const FileStatus status = BytesAfter(change, bytes);
    return status.ok() ? ReplaceWith(std::move(bytes)) : status;
  }
  FileStatus status = BeginChange();
  if (!status.ok()) return status;
  if (replaceable && ReplacingIsFaster(change)) {
    status = BytesAfter(change, bytes);
    if (status.ok()) status = ReplaceWholeFile(files_, path_, bytes, file_);
  } else {
    status = ChangeFile(files_, path_, *file_, change);
  }
  std::uint64_t size = size_;
  if (file_->Size(size).ok()) size_ = size;
  return status;
}

FileStatus RecordFile::ReplaceWith(std::string bytes) {
  if (!files_.IsReplaceable(path_)) return ChangeInPlace(std::move(bytes));
  if (gathers_) {
    gathered_ = FileChange{.oldSize = gathered_ ? gathered_->oldSize : size_,
                           .newSize = bytes.size(),
                           .replaced = true};
    size_ = bytes.size();
    replacement_ = std::move(bytes);
    return {};
  }
  FileStatus status = BeginChange();
  if (status.ok()) status = ReplaceWholeFile(files_, path_, bytes, file_);
  if (status.done()) size_ = bytes.size();
  return status;
}

// The same for a file that stays the file that it is.
FileStatus RecordFile::ChangeInPlace(std::string bytes) {
  const std::uint64_t newSize = bytes.size();
  std::vector<FileWrite> whole;
  whole.push_back({.offset = 0, .bytes = std::move(bytes)});
  if (gathers_) {
    Gather(std::move(whole), newSize);
    return {};
  }
  FileStatus status = BeginChange();
  if (!status.ok()) return status;
  status = ChangeFile(files_, path_, *file_,
                      {.oldSize = size_, .newSize = newSize, .writes = std::move(whole)});
  if (status.ok()) size_ = newSize;
  return status;
}

}  // namespace tarvex
