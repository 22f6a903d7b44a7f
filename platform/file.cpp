#include "platform/file.h"

#include <cerrno>
#include <system_error>

namespace tarvex {

bool FileStatus::not_found() const {
  return code == ENOENT;
}

std::string FileStatus::Text() const {
  return std::generic_category().message(code);
}

FileStatus ReadWholeFile(FileSystem& files, const std::string& path, std::uint64_t limit,
                         std::string& bytes) {
  std::unique_ptr<File> file;
  if (FileStatus status = files.Open(path, FileAccess::Read, file); !status.ok()) return status;
  std::uint64_t size = 0;
  if (FileStatus status = file->Size(size); !status.ok()) return status;
  if (size > limit) return {EFBIG};
  std::string read(static_cast<std::size_t>(size), '\0');
  std::size_t got = 0;
  if (FileStatus status = file->ReadAt(0, read, got); !status.ok()) return status;
  read.resize(got);
  bytes = std::move(read);
  return {};
}

namespace {

FileStatus WriteNewFile(FileSystem& files, const std::string& path, std::string_view bytes,
                        std::unique_ptr<File>& file) {
  FileStatus status = files.Open(path, FileAccess::CreateOrTruncate, file);
  if (status.ok()) status = file->Lock();
  if (status.ok()) status = file->WriteAt(0, bytes);
  if (status.ok()) status = file->Sync();
  return status;
}

}  // namespace

FileStatus OpenLocked(FileSystem& files, const std::string& path, FileAccess access,
                      std::unique_ptr<File>& file) {
  constexpr int kAttempts = 1000;  // each one lost means that another program got its turn
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    std::unique_ptr<File> opened;
    if (FileStatus status = files.Open(path, access, opened); !status.ok()) return status;
    if (!opened->LockAtOnce()) {
      if (attempt == 0 && files.when_waiting) files.when_waiting(path);
      if (FileStatus status = opened->Lock(); !status.ok()) return status;
    }
    if (opened->IsNamed(path)) {
      file = std::move(opened);
      return {};
    }
  }
  return {ESTALE};
}

FileStatus ReplaceWholeFile(FileSystem& files, const std::string& path, std::string_view bytes) {
  std::unique_ptr<File> file;
  return ReplaceWholeFile(files, path, bytes, file);
}

FileStatus ReplaceWholeFile(FileSystem& files, const std::string& path, std::string_view bytes,
                            std::unique_ptr<File>& file) {
  const std::string temporary = path + ".tmp";
  std::unique_ptr<File> replacement;
  FileStatus status = WriteNewFile(files, temporary, bytes, replacement);
  if (status.ok() && files.Exists(path)) status = files.CopyRights(path, temporary);
  if (status.ok()) status = files.Rename(temporary, path);
  if (!status.ok()) {
    (void)files.Remove(temporary);
    return status;
  }
  status = files.SyncFolderOf(path);
  file = std::move(replacement);
  return status;
}

}  // namespace tarvex
