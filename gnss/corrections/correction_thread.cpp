#include "gnss/corrections/correction_thread.h"

#include <chrono>

namespace tarvex {
namespace {

constexpr int kStepMs = 100;

// Ends a try to connect when the thread is to stop.
class StopProgress final : public NtripProgress {
 public:
  explicit StopProgress(const std::stop_token& stop) : stop_(stop) {}
  int Progress(int /*value*/, int /*minimum*/, int /*elapsedS*/) override {
    return stop_.stop_requested() ? 1 : 0;
  }
  void Status(std::string_view /*text*/) override {}

 private:
  const std::stop_token& stop_;
};

}  // namespace

void CorrectionThread::Run(CorrectionSession& session, const std::stop_token& stop) {
  StopProgress progress(stop);
  while (!stop.stop_requested()) {
    if (!session.Step(kStepMs, progress)) {
      std::this_thread::sleep_for(std::chrono::milliseconds(kStepMs));
    }
  }
  session.Stop();
}

}  // namespace tarvex
