// A folder of a test's own, removed with everything in it: tests run side by side, so no two may
// share a path.
#pragma once

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

namespace tarvex {

class ScratchFolder {
 public:
  ScratchFolder()
      : path_((std::filesystem::temp_directory_path() / "tarvex-test-XXXXXX").string()) {
    if (::mkdtemp(path_.data()) == nullptr)
      throw std::filesystem::filesystem_error("no folder for the test", path_,
                                              std::error_code(errno, std::generic_category()));
    path_ += '/';
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  /// Ends with a slash.
  const std::string& path() const { return path_; }
  std::string Path(const std::string& name) const { return path_ + name; }

 private:
  std::string path_;
};

}  // namespace tarvex
