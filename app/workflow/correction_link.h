// The corrections of a session: a correction session on a thread of its own, beside the one that
// reads the receiver.
#pragma once

#include <atomic>
#include <memory>

#include "gnss/corrections/correction_session.h"
#include "gnss/corrections/correction_thread.h"
#include "platform/private_folder.h"

namespace tarvex {

/// Runs while it lives.
class CorrectionLink {
 public:
  /// The receiver's port is open longer than the link lives. `gga` is what the reading side hears.
  /// `stop` is asked on the link's own thread and ends every waiting.
  CorrectionLink(FileSystem& files, Clock& clock, StopAsked stop, const CorrectionPlan& plan,
                 Port& receiver, const LatestGga& gga);
  CorrectionLink(const CorrectionLink&) = delete;
  CorrectionLink& operator=(const CorrectionLink&) = delete;
  /// Waits for nothing that the network or the receiver holds up: a tenth of a second at most.
  ~CorrectionLink() { stopping_ = true; }

  /// These may be called from any thread.
  CorrectionStatus Status() const { return session_.Status(); }
  /// Connects anew at once, also after a refusal.
  void Retry() { session_.Retry(); }

 private:
  std::atomic<bool> stopping_ = false;
  StopAsked stop_;
  PrivateFolder folder_;
  LastErrorRecord errors_{SystemLastError()};  // its own: the reading side has one for itself
  std::unique_ptr<NtripConnection> connection_;
  PortSink sink_;
  CorrectionSession session_;
  CorrectionThread thread_;
};

}  // namespace tarvex
