#include "platform/file_bytes.h"

#include <cerrno>

namespace tarvex {

FileBytes::FileBytes(std::string bytes) {
  auto held = std::make_shared<const std::string>(std::move(bytes));
  bytes_ = *held;
  owner_ = std::move(held);
}

FileStatus LoadFileBytes(FileSystem& files, const std::string& path, FileBytes& bytes) {
  std::string read;
  const FileStatus status = ReadWholeFile(files, path, kReadRatherThanMap, read);
  if (status.code == EFBIG) return MapFileBytes(path, bytes);
  if (status.ok()) bytes = FileBytes(std::move(read));
  return status;
}

}  // namespace tarvex
