#include "platform/file.h"

#include <cerrno>
#include <system_error>

namespace tarvex {

bool FileStatus::notFound() const {
  return code == ENOENT;
}

std::string FileStatus::Text() const {
  return std::generic_category().message(code);
}

FileStatus MakeBeside(FileSystem& files, const std::string& model, const std::string& path,
                      std::unique_ptr<File>& file) {
  const FileStatus status = files.Open(path, FileAccess::CreateOrKeep, file);
  // Not every file system knows owners; the file is of use without.
  if (status.ok()) (void)files.CopyRights(model, path);
  return status;
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

FileStatus OpenLocked(FileSystem& files, const std::string& path, FileAccess access,
                      std::unique_ptr<File>& file) {
  constexpr int kAttempts = 1000;  // each one lost means that another program got its turn
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    std::unique_ptr<File> opened;
    if (FileStatus status = files.Open(path, access, opened); !status.ok()) return status;
    if (!opened->LockAtOnce()) {
      if (attempt == 0 && files.whenWaiting) files.whenWaiting(path);
      if (FileStatus status = opened->Lock(); !status.ok()) return status;
    }
    if (opened->IsNamed(path)) {
      file = std::move(opened);
      return {};
    }
  }
  return {ESTALE};
}

namespace {

// A file that has its bytes but not yet its name. The lock comes before the bytes, so that two
// programs never write into one temporary file.
class StagedFile {
 public:
  StagedFile(FileSystem& files, const std::string& path) : files_(files), path_(path + ".tmp") {}

  FileStatus Write(std::string_view bytes) {
    FileStatus status = OpenLocked(files_, path_, FileAccess::CreateOrKeep, file_);
    if (status.ok()) status = file_->Resize(0);
    if (status.ok()) status = file_->WriteAt(0, bytes);
    if (status.ok()) status = file_->Sync();
    return status;
  }
  /// The end of `status`, the way here: what was staged goes when it failed.
  FileStatus Settle(FileStatus status, const std::string& folderOf) {
    if (!status.ok()) {
      if (file_) (void)files_.Remove(path_);
      return status;
    }
    status = files_.SyncFolderOf(folderOf);
    if (!status.ok()) status.effect = FileEffect::NotDurable;
    return status;
  }

  const std::string& path() const { return path_; }
  std::unique_ptr<File>& file() { return file_; }

 private:
  FileSystem& files_;
  std::string path_;
  std::unique_ptr<File> file_;
};

}  // namespace

FileStatus ReplaceWholeFile(FileSystem& files, const std::string& path, std::string_view bytes) {
  std::unique_ptr<File> file;
  return ReplaceWholeFile(files, path, bytes, file);
}

FileStatus ReplaceWholeFile(FileSystem& files, const std::string& path, std::string_view bytes,
                            std::unique_ptr<File>& file) {
  StagedFile staged(files, path);
  FileStatus status = staged.Write(bytes);
  if (status.ok() && files.Exists(path)) status = files.CopyRights(path, staged.path());
  if (status.ok()) status = files.Rename(staged.path(), path);
  status = staged.Settle(status, path);
  if (status.done()) file = std::move(staged.file());
  return status;
}

FileStatus CreateWholeFile(FileSystem& files, const std::string& path, std::string_view bytes) {
  if (files.Exists(path)) return {EEXIST};
  StagedFile staged(files, path);
  FileStatus status = staged.Write(bytes);
  if (status.ok()) status = files.RenameToNew(staged.path(), path);
  return staged.Settle(status, path);
}

}  // namespace tarvex
