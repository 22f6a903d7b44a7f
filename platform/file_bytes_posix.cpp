// Mapping a file into memory on a POSIX system.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/file_bytes.h"

namespace tarvex {
namespace {

FileStatus MapDescriptor(int descriptor, FileBytes& bytes) {
  struct stat info{};
  if (::fstat(descriptor, &info) != 0) return {errno};
  if (S_ISDIR(info.st_mode)) return {EISDIR};
  const auto size = static_cast<std::size_t>(info.st_size);
  if (size == 0) {
    bytes = FileBytes();
    return {};
  }
  void* at = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
  if (at == MAP_FAILED) return {errno};
  const auto unmap = [size](const void* mapped) { ::munmap(const_cast<void*>(mapped), size); };
  const std::shared_ptr<const void> owner(static_cast<const void*>(at), unmap);
  bytes = FileBytes(owner, {static_cast<const char*>(at), size});
  return {};
}

}  // namespace

FileStatus MapFileBytes(const std::string& path, FileBytes& bytes) {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return {errno};
  const FileStatus status = MapDescriptor(descriptor, bytes);
  ::close(descriptor);
  return status;
}

}  // namespace tarvex
