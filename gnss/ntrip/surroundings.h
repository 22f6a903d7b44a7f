// What the NTRIP client works in.
#pragma once

#include <string>

#include "core/text/last_error.h"
#include "platform/clock.h"
#include "platform/file.h"

namespace tarvex {

struct NtripSurroundings {
  Clock& clock;
  FileSystem& files;
  LastErrorRecord& errors;
  /// Where "tmp_sourcetable.txt" goes; with its separator, empty for the current folder.
  std::string workFolder = {};
};

}  // namespace tarvex
