// The bytes of a whole file, read only: held in memory, or mapped when the file is large, so that a
// grid costs no more memory than its file and a continental one only the pages that are looked at.
//
// A mapped file must not be shortened while it is in use; replace it by renaming a new one over it.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/file.h"

namespace tarvex {

class FileBytes {
 public:
  FileBytes() = default;
  explicit FileBytes(std::string bytes);
  /// Bytes that `owner` keeps alive.
  FileBytes(std::shared_ptr<const void> owner, std::string_view bytes)
      : owner_(std::move(owner)), bytes_(bytes) {}

  std::string_view view() const { return bytes_; }

 private:
  std::shared_ptr<const void> owner_;  // shared: a grid and its copies look at the same bytes
  std::string_view bytes_;
};

/// Files up to this size are read, larger ones mapped.
inline constexpr std::uint64_t kReadRatherThanMap = 64u << 20;

/// Loads the file at `path`; `bytes` is changed only on success.
FileStatus LoadFileBytes(FileSystem& files, const std::string& path, FileBytes& bytes);

/// Maps the file of this machine at `path`, whatever its size.
FileStatus MapFileBytes(const std::string& path, FileBytes& bytes);

}  // namespace tarvex
