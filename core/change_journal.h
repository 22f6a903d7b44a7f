// A change of a few places of a file that happens as a whole or not at all, whatever interrupts it:
// the program killed, the disk full, the power gone.
//
// The change is first written to PATH.redo and made durable, then carried out, then PATH.redo is
// removed. Opening the file again finishes an interrupted change; a journal that was itself cut
// short is discarded, because the file was not yet touched. docs/formats/crd.md describes the
// bytes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/file.h"

namespace tarvex {

/// `bytes`, `repeat` times in a row, from `offset` on.
struct FileWrite {
  std::uint64_t offset = 0;
  std::string bytes;
  std::uint64_t repeat = 1;
};

struct FileChange {
  std::uint64_t old_size = 0;
  std::uint64_t new_size = 0;
  std::vector<FileWrite> writes;
};

/// Carries the change out durably. When it fails while the file grows (a full disk), the file is as
/// before; when it fails later, the journal stays and FinishInterruptedChange completes it.
FileStatus ChangeFile(FileSystem& files, const std::string& path, File& file,
                      const FileChange& change);

/// Completes the change that an earlier run did not finish, if there is one. To be called after
/// `file` was opened for writing and before anything is read from it.
FileStatus FinishInterruptedChange(FileSystem& files, const std::string& path, File& file);

/// True when FinishInterruptedChange has something to look at.
bool HasInterruptedChange(FileSystem& files, const std::string& path);

}  // namespace tarvex
