// A folder of the build tree for the files of a benchmark, removed with everything in it.
#pragma once

#include <string>

namespace tarvex {

class ScratchFolder {
 public:
  ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  ~ScratchFolder();

  std::string Path(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

/// The one that a benchmark program shares, removed at its end.
const ScratchFolder& Scratch();

}  // namespace tarvex
