#include "core/raw_data/raw_file.h"

#include "core/raw_data/raw_records.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::uint64_t kLargestScan = std::uint64_t{1} << 32U;

// The open raw file, its end known; locked, so that two programs never write into one another.
struct RawEnd {
  std::unique_ptr<File> file;
  std::uint64_t size = 0;
};

FileStatus OpenAtEnd(Job& job, RawEnd& end) {
  FileSystem& files = job.host.files();
  const std::string path = RawFilePath(job);
  FileStatus status = files.Open(path, FileAccess::ReadWrite, end.file);
  if (status.notFound()) status = MakeBeside(files, job.path, path, end.file);
  if (status.ok()) status = end.file->Lock();
  if (status.ok()) status = end.file->Size(end.size);
  return status;
}

FileStatus WriteRecords(RawEnd& end, std::span<const std::string> records) {
  std::uint64_t at = end.size;
  for (const std::string& record : records) {
    if (FileStatus status = end.file->WriteAt(at, record); !status.ok()) return status;
    at += record.size();
  }
  return end.file->Sync();
}

bool HasLineBeginning(std::string_view text, std::string_view beginning) {
  while (const auto line = TakeLine(text)) {
    if (line->starts_with(beginning)) return true;
  }
  return false;
}

}  // namespace

std::string RawFilePath(const Job& job) {
  return PathWithExtension(job.path, "rw5");
}

FileStatus OpenRawFile(Job& job, std::unique_ptr<File>& file, std::uint64_t& size) {
  RawEnd end;
  const FileStatus status = OpenAtEnd(job, end);
  file = std::move(end.file);
  size = end.size;
  return status;
}

std::string RawFileAddition(Job& job, std::uint64_t size, std::string_view records) {
  std::string text = size == 0 ? RawHeader(job, job.host.clock().Now()) : std::string();
  return text.append(records);
}

FileStatus AddRawRecords(Job& job, std::span<const std::string> records) {
  RawEnd end;
  FileStatus status = OpenAtEnd(job, end);
  if (!status.ok()) return status;
  const bool created = end.size == 0;
  if (created) {
    const std::string header = RawHeader(job, job.host.clock().Now());
    status = end.file->WriteAt(0, header);
    if (status.ok()) end.size = header.size();
  }
  if (status.ok()) status = WriteRecords(end, records);
  if (status.ok() && created) status = job.host.files().SyncFolderOf(RawFilePath(job));
  if (!status.ok()) (void)end.file->Resize(end.size);
  return status;
}

RawFileResult AppendRawRecords(Job& job, std::span<const std::string> records) {
  return AddRawRecords(job, records).ok() ? RawFileResult::Written : RawFileResult::Dropped;
}

RawFileResult AppendRawRecord(Job& job, std::string_view record) {
  const std::string text(record);
  return AppendRawRecords(job, {&text, 1});
}

std::string RawOpeningRecords(Job& job) {
  std::string bytes;
  const FileStatus read = ReadWholeFile(job.host.files(), RawFilePath(job), kLargestScan, bytes);
  if (read.notFound() || (read.ok() && bytes.empty())) return {};
  std::string stamp = TimeStampRecord(job.host.clock().Now());
  if (!HasLineBeginning(bytes, "--" + job.options.collector))
    stamp.insert(0, CommentRecord(job.options.collector));
  return stamp;
}

}  // namespace tarvex
