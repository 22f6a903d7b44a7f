// A correction session on a thread of its own.
#pragma once

#include <thread>

#include "gnss/corrections/correction_session.h"

namespace tarvex {

/// Runs the session from its construction to its destruction.
class CorrectionThread {
 public:
  explicit CorrectionThread(CorrectionSession& session)
      : thread_([&session](const std::stop_token& stop) { Run(session, stop); }) {}

 private:
  static void Run(CorrectionSession& session, const std::stop_token& stop);

  std::jthread thread_;
};

}  // namespace tarvex
