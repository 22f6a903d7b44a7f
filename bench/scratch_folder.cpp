#include "bench/scratch_folder.h"

#include <stdlib.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace tarvex {

ScratchFolder::ScratchFolder() : path_(TARVEX_BENCH_FOLDER "/scratch-XXXXXX") {
  if (::mkdtemp(path_.data()) == nullptr) {
    std::perror(path_.c_str());
    std::exit(1);
  }
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

const ScratchFolder& Scratch() {
  static const ScratchFolder folder;
  return folder;
}

}  // namespace tarvex
