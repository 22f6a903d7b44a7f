// Opening and creating the coordinate file.
#include "core/coordinates/coordinate_file.h"
#include "core/text/core_texts.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>

#include "core/coordinates/coordinate_layout.h"
#include "core/journal/file_rewrite.h"
#include "core/points/point_id.h"
#include "core/text/date_text.h"
#include "core/text/string_table.h"

namespace tarvex {
namespace {

using alphanumeric_layout::Signature;

template <typename Status>
void Tell(Job& job, int message, const Status& status) {
  job.host.ShowMessage(Strings().Text(message, {job.path, status.Text()}));
}

// What the first bytes of a file say.
struct Opened {
  std::unique_ptr<File> file;
  std::uint64_t size = 0;
  Signature signature = Signature::None;
  std::string header;
};

FileStatus ReadHeader(Opened& opened) {
  if (FileStatus status = opened.file->Size(opened.size); !status.ok()) return status;
  opened.header.assign(alphanumeric_layout::kHeaderSize, '\0');
  std::size_t got = 0;
  if (FileStatus status = opened.file->ReadAt(0, opened.header, got); !status.ok()) return status;
  opened.header.resize(got);
  opened.signature = alphanumeric_layout::DecodeSignature(opened.header);
  return {};
}

// The bytes of an older file, whose records are in any order, in ascending order: of equal ids
// the one that stood later comes first.
FileStatus SortOlderFile(Job& job, std::uint64_t size, std::string& sorted) {
  std::string bytes;
  const FileStatus read = ReadWholeFile(job.host.files(), job.path, size, bytes);
  if (!read.ok()) return read;
  constexpr std::size_t kSize = alphanumeric_layout::kRecordSize;
  const std::size_t count = (bytes.size() - alphanumeric_layout::kHeaderSize) / kSize;
  std::vector<const char*> records(count);
  for (std::size_t i = 0; i < count; ++i) {
    records[count - 1 - i] = bytes.data() + alphanumeric_layout::kHeaderSize + i * kSize;
  }
  std::stable_sort(records.begin(), records.end(), [](const char* a, const char* b) {
    return ComparePointIds(alphanumeric_layout::DecodeId(a).view(),
                           alphanumeric_layout::DecodeId(b).view()) < 0;
  });
  sorted = bytes.substr(0, alphanumeric_layout::kHeaderSize);
  alphanumeric_layout::MarkSorted(sorted);
  for (const char* record : records) sorted.append(record, kSize);
  return {};
}

FileStatus ConvertOlderFile(Job& job, const Opened& opened) {
  std::string sorted;
  const FileStatus status = SortOlderFile(job, opened.size, sorted);
  return status.ok() ? RewriteWholeFile(job.host.files(), job.path, sorted) : status;
}

// What an older file would be once converted, for a file that may only be read.
class SortedView final : public File {
 public:
  explicit SortedView(std::string bytes) : bytes_(std::move(bytes)) {}

  FileStatus ReadAt(std::uint64_t offset, std::span<char> out, std::size_t& got) override {
    const std::size_t left = offset < bytes_.size() ? bytes_.size() - offset : 0;
    got = std::min(out.size(), left);
    std::copy_n(bytes_.data() + (bytes_.size() - left), got, out.data());
    return {};
  }
  FileStatus WriteAt(std::uint64_t, std::string_view) override { return {EROFS}; }
  FileStatus Resize(std::uint64_t) override { return {EROFS}; }
  FileStatus Sync() override { return {}; }
  FileStatus Size(std::uint64_t& size) override {
    size = bytes_.size();
    return {};
  }
  FileStatus Lock() override { return {}; }
  bool IsNamed(const std::string&) override { return true; }

 private:
  std::string bytes_;
};

// A numeric file has no signature: its count must be one, and a file too short for any record of
// either layout must not hold the start of an alphanumeric header.
bool LooksNumeric(const Opened& opened) {
  if (opened.size == 0) return true;
  if (opened.header.size() < numeric_layout::kRecordSize) return false;
  if (numeric_layout::DecodeHighestNumber(opened.header) < 0) return false;
  const bool shortFile = opened.size < alphanumeric_layout::kHeaderSize;
  const std::string_view zeroField = std::string_view(opened.header).substr(8, 8);
  return !shortFile || zeroField.find_first_not_of('\0') == std::string_view::npos;
}

// The stream over a file whose header was read, with the job's state taken from it.
std::unique_ptr<CoordinateFile> MakeStream(Job& job, Opened opened) {
  FileStatus status;
  const bool alphanumeric = opened.signature == Signature::Sorted;
  if (!alphanumeric && !LooksNumeric(opened)) {
    return Tell(job, kTextNotACoordinateFile, status), nullptr;
  }
  auto stream =
      std::make_unique<CoordinateFile>(job, std::move(opened.file), alphanumeric, opened.size);
  job.store.alphanumeric = alphanumeric;
  if (status = stream->store().TakeLastPoint(); !status.ok()) {
    return Tell(job, kTextCannotOpen, status), nullptr;
  }
  return stream;
}

std::unique_ptr<CoordinateFile> OpenExisting(Job& job) {
  Opened opened;
  FileStatus status = OpenLocked(job.host.files(), job.path, FileAccess::ReadWrite, opened.file);
  if (!status.ok()) {
    const bool interrupted = HasInterruptedChange(job.host.files(), job.path, job.journal);
    return Tell(job, interrupted ? kTextInterruptedNotWritable : kTextCannotOpen, status), nullptr;
  }
  const FilesStatus finished =
      FinishInterruptedChange(job.host.files(), job.path, *opened.file, job.journal);
  if (!finished.ok()) return Tell(job, kTextCannotFinish, finished), nullptr;
  if (!opened.file->IsNamed(job.path)) return OpenExisting(job);  // finished by replacing it
  if (status = ReadHeader(opened); !status.ok()) return Tell(job, kTextCannotOpen, status), nullptr;
  if (opened.signature != Signature::Older) return MakeStream(job, std::move(opened));
  status = ConvertOlderFile(job, opened);
  if (!status.done()) return Tell(job, kTextCannotConvert, status), nullptr;
  opened.file.reset();
  return OpenExisting(job);
}

void SetInformation(Job& job, const LocalTime& now) {
  job.information = {.startDate = "Start Date: " + DateText(now),
                     .startTime = "Start Time: " + TimeText(now),
                     .lastModifiedDate = "Last Modified Date: " + DateText(now),
                     .lastModifiedTime = "Last Modified Time: " + TimeText(now)};
}

FileStatus Create(Job& job, bool creatingJob) {
  const LocalTime now = job.host.clock().Now();
  if (!creatingJob) SetInformation(job, now);
  const std::string header = job.options.alphanumericNewFiles
                                 ? alphanumeric_layout::EncodeHeader(now)
                                 : numeric_layout::EncodeHeader(0, now);
  return CreateWholeFile(job.host.files(), job.path, header);
}

}  // namespace

std::unique_ptr<CoordinateFile> OpenCoordinateFile(Job& job, bool creatingJob) {
  if (!job.host.files().Exists(job.path)) {
    const FileStatus status = Create(job, creatingJob);
    const bool existsByNow = status.code == EEXIST && !creatingJob;
    if (!status.done() && !existsByNow) return Tell(job, kTextCannotCreate, status), nullptr;
    if (status.effect == FileEffect::NotDurable) Tell(job, kTextCreatedNotDurable, status);
  }
  return OpenExisting(job);
}

namespace {

bool MayWrite(Job& job) {
  std::unique_ptr<File> file;
  return job.host.files().Open(job.path, FileAccess::ReadWrite, file).ok();
}

std::unique_ptr<CoordinateFile> OpenSortedView(Job& job, Opened opened) {
  std::string sorted;
  const FileStatus status = SortOlderFile(job, opened.size, sorted);
  if (!status.ok()) return Tell(job, kTextCannotRead, status), nullptr;
  opened.file = std::make_unique<SortedView>(std::move(sorted));
  opened.signature = Signature::Sorted;
  return MakeStream(job, std::move(opened));
}

}  // namespace

std::unique_ptr<CoordinateFile> OpenForReading(Job& job) {
  FileSystem& files = job.host.files();
  Opened opened;
  FileStatus status = OpenLocked(files, job.path, FileAccess::Read, opened.file);
  if (status.ok()) status = ReadHeader(opened);
  if (!status.ok()) return Tell(job, kTextCannotRead, status), nullptr;
  // Looked at under the lock: what another program has under way is over by now.
  const bool interrupted = HasInterruptedChange(files, job.path, job.journal);
  if (opened.signature == Signature::Older && !interrupted && !MayWrite(job)) {
    return OpenSortedView(job, std::move(opened));
  }
  if (interrupted || opened.signature == Signature::Older) {
    opened.file.reset();
    return OpenExisting(job);
  }
  return MakeStream(job, std::move(opened));
}

}  // namespace tarvex
