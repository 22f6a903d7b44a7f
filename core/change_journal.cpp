#include "core/change_journal.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>

namespace tarvex {
namespace {

constexpr std::string_view kMagic = "TVXREDO1";
constexpr std::uint64_t kLargestJournal = std::uint64_t{1} << 40U;
constexpr std::size_t kChunk = 65520;  // below 65536, whole fillers of 56 bytes

std::string JournalPath(const std::string& path) {
  return path + ".redo";
}

void AppendNumber(std::string& bytes, std::uint64_t value) {
  for (int i = 0; i < 8; ++i, value >>= 8U) bytes += static_cast<char>(value & 0xFFU);
}

std::uint64_t NumberAt(const char* bytes) {
  std::uint64_t value = 0;
  for (int i = 7; i >= 0; --i) value = value << 8U | static_cast<unsigned char>(bytes[i]);
  return value;
}

// A check sum that notices a journal cut short or half written; eight bytes a step.
std::uint64_t CheckSum(std::string_view bytes) {
  std::uint64_t sum = bytes.size();
  const auto mix = [&sum](std::uint64_t word) {
    sum = (sum ^ word) * 0x9E3779B97F4A7C15U;
    sum ^= sum >> 32U;
  };
  std::size_t at = 0;
  for (; at + 8 <= bytes.size(); at += 8) mix(NumberAt(bytes.data() + at));
  for (; at < bytes.size(); ++at) mix(static_cast<unsigned char>(bytes[at]));
  return sum;
}

std::string Encode(const FileChange& change) {
  std::string bytes(kMagic);
  AppendNumber(bytes, change.old_size);
  AppendNumber(bytes, change.new_size);
  AppendNumber(bytes, change.writes.size());
  for (const FileWrite& write : change.writes) {
    AppendNumber(bytes, write.offset);
    AppendNumber(bytes, write.repeat);
    AppendNumber(bytes, write.bytes.size());
    bytes += write.bytes;
  }
  AppendNumber(bytes, CheckSum(bytes));
  return bytes;
}

// Takes numbers and bytes off the front of a journal whose check sum is right.
class JournalReader {
 public:
  explicit JournalReader(std::string_view bytes) : rest_(bytes) {}

  std::optional<std::uint64_t> Number() {
    if (rest_.size() < 8) return std::nullopt;
    const std::uint64_t value = NumberAt(rest_.data());
    rest_.remove_prefix(8);
    return value;
  }

  std::optional<std::string_view> Bytes(std::uint64_t count) {
    if (count > rest_.size()) return std::nullopt;
    const std::string_view taken = rest_.substr(0, static_cast<std::size_t>(count));
    rest_.remove_prefix(taken.size());
    return taken;
  }

 private:
  std::string_view rest_;
};

std::optional<FileWrite> DecodeWrite(JournalReader& reader) {
  const auto offset = reader.Number();
  const auto repeat = reader.Number();
  const auto length = reader.Number();
  if (!offset || !repeat || !length) return std::nullopt;
  const auto bytes = reader.Bytes(*length);
  if (!bytes) return std::nullopt;
  return FileWrite{.offset = *offset, .bytes = std::string(*bytes), .repeat = *repeat};
}

// Nothing when the journal is not whole.
std::optional<FileChange> Decode(std::string_view bytes) {
  if (bytes.size() < kMagic.size() + 8 || !bytes.starts_with(kMagic)) return std::nullopt;
  const std::string_view checked = bytes.substr(0, bytes.size() - 8);
  if (CheckSum(checked) != NumberAt(bytes.data() + checked.size())) return std::nullopt;
  JournalReader reader(checked.substr(kMagic.size()));
  const auto old_size = reader.Number();
  const auto new_size = reader.Number();
  const auto count = reader.Number();
  if (!old_size || !new_size || !count) return std::nullopt;
  FileChange change{.old_size = *old_size, .new_size = *new_size, .writes = {}};
  for (std::uint64_t i = 0; i < *count; ++i) {
    auto write = DecodeWrite(reader);
    if (!write) return std::nullopt;
    change.writes.push_back(std::move(*write));
  }
  return change;
}

// Writes the part of `write` that lies in [from, to).
FileStatus WritePart(File& file, const FileWrite& write, std::uint64_t from, std::uint64_t to) {
  const std::size_t copies =
      std::max<std::size_t>(1, kChunk / std::max<std::size_t>(1, write.bytes.size()));
  std::string block;
  if (write.repeat > 1) {
    for (std::size_t i = 0; i < std::min<std::uint64_t>(copies, write.repeat); ++i)
      block += write.bytes;
  }
  const std::string_view source = write.repeat > 1 ? std::string_view(block) : write.bytes;
  const std::uint64_t end = write.offset + write.bytes.size() * write.repeat;
  for (std::uint64_t at = write.offset; at < end; at += source.size()) {
    const std::uint64_t piece_end = std::min<std::uint64_t>(at + source.size(), end);
    const std::uint64_t first = std::max(at, from);
    const std::uint64_t last = std::min(piece_end, to);
    if (first >= last) continue;
    const auto part =
        source.substr(static_cast<std::size_t>(first - at), static_cast<std::size_t>(last - first));
    if (FileStatus status = file.WriteAt(first, part); !status.ok()) return status;
  }
  return {};
}

FileStatus WriteParts(File& file, const FileChange& change, std::uint64_t from, std::uint64_t to) {
  for (const FileWrite& write : change.writes) {
    if (FileStatus status = WritePart(file, write, from, to); !status.ok()) return status;
  }
  return {};
}

// Growing needs room on the disk and can fail harmlessly; what stands is overwritten afterwards.
FileStatus Grow(File& file, const FileChange& change) {
  return WriteParts(file, change, change.old_size, std::numeric_limits<std::uint64_t>::max());
}

FileStatus Overwrite(File& file, const FileChange& change) {
  if (FileStatus status = WriteParts(file, change, 0, change.old_size); !status.ok()) return status;
  if (change.new_size < change.old_size) {
    if (FileStatus status = file.Resize(change.new_size); !status.ok()) return status;
  }
  return file.Sync();
}

FileStatus RemoveJournal(FileSystem& files, const std::string& path) {
  if (FileStatus status = files.Remove(JournalPath(path)); !status.ok()) return status;
  return files.SyncFolderOf(path);
}

FileStatus WriteJournal(FileSystem& files, const std::string& path, const FileChange& change) {
  std::unique_ptr<File> journal;
  FileStatus status = files.Open(JournalPath(path), FileAccess::CreateOrTruncate, journal);
  if (status.ok()) status = journal->WriteAt(0, Encode(change));
  if (status.ok()) status = journal->Sync();
  if (status.ok()) status = files.SyncFolderOf(path);
  if (!status.ok() && journal) (void)files.Remove(JournalPath(path));
  return status;
}

// A journal belongs to the file only while its size is that of before or after the change, or on
// the way between them.
bool Belongs(const FileChange& change, std::uint64_t size) {
  return size >= std::min(change.old_size, change.new_size) &&
         size <= std::max(change.old_size, change.new_size);
}

}  // namespace

FileStatus ChangeFile(FileSystem& files, const std::string& path, File& file,
                      const FileChange& change) {
  if (FileStatus status = WriteJournal(files, path, change); !status.ok()) return status;
  if (FileStatus status = Grow(file, change); !status.ok()) {
    if (file.Resize(change.old_size).ok()) (void)RemoveJournal(files, path);
    return status;
  }
  if (FileStatus status = Overwrite(file, change); !status.ok()) return status;
  return RemoveJournal(files, path);
}

FileStatus FinishInterruptedChange(FileSystem& files, const std::string& path, File& file) {
  std::string bytes;
  const FileStatus read = ReadWholeFile(files, JournalPath(path), kLargestJournal, bytes);
  if (read.not_found()) return {};
  if (!read.ok()) return read;
  std::uint64_t size = 0;
  if (FileStatus status = file.Size(size); !status.ok()) return status;
  const auto change = Decode(bytes);
  if (change && Belongs(*change, size)) {
    if (FileStatus status = Grow(file, *change); !status.ok()) return status;
    if (FileStatus status = Overwrite(file, *change); !status.ok()) return status;
  }
  return RemoveJournal(files, path);
}

bool HasInterruptedChange(FileSystem& files, const std::string& path) {
  return files.Exists(JournalPath(path));
}

}  // namespace tarvex
