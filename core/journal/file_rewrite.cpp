#include "core/journal/file_rewrite.h"

#include "core/journal/change_journal.h"

namespace tarvex {

FileStatus RewriteWholeFile(FileSystem& files, const std::string& path, std::string_view bytes) {
  if (!files.Exists(path) || files.IsReplaceable(path)) return ReplaceWholeFile(files, path, bytes);
  std::unique_ptr<File> file;
  if (FileStatus status = files.Open(path, FileAccess::ReadWrite, file); !status.ok()) {
    return status;
  }
  FileChange change{.oldSize = 0, .newSize = bytes.size(), .writes = {}};
  if (FileStatus status = file->Size(change.oldSize); !status.ok()) return status;
  change.writes.push_back({.offset = 0, .bytes = std::string(bytes)});
  return ChangeFile(files, path, *file, change);
}

FileStatus FinishRewrite(FileSystem& files, const std::string& path) {
  if (!HasInterruptedChange(files, path)) return {};
  std::unique_ptr<File> file;
  const FileStatus status = OpenLocked(files, path, FileAccess::ReadWrite, file);
  return status.ok() ? FinishInterruptedChange(files, path, *file).status : status;
}

}  // namespace tarvex
