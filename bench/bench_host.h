// What a job needs around it in a benchmark: the files of this machine; anything that a person
// would be told ends the program, because the figures would be those of something else.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

#include "core/job/job.h"

namespace tarvex {

class BenchHost final : public JobHost {
 public:
  FileSystem& files() override { return SystemFiles(); }
  Clock& clock() override { return SystemClock(); }
  ExistingPointAnswer AskExistingPoint(const std::string&, bool) override { return {}; }
  void ShowMessage(const std::string& text) override {
    std::fprintf(stderr, "%s\n", text.c_str());
    std::exit(1);
  }
  void ShowWaitCursor(bool) override {}
};

}  // namespace tarvex
