// The correction session of a command, which runs beside the one that reads the receiver, and its
// telling on one line.
#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "app/cli/program.h"
#include "gnss/corrections/correction_session.h"
#include "gnss/corrections/correction_thread.h"

namespace tarvex {

/// Runs while it lives.
class CorrectionLink {
 public:
  /// The receiver's port stays open longer than the link. `gga` is what the reading side hears.
  CorrectionLink(Program& program, const CorrectionPlan& plan, Port& receiver,
                 const LatestGga& gga);
  CorrectionLink(const CorrectionLink&) = delete;
  CorrectionLink& operator=(const CorrectionLink&) = delete;
  /// Waits for nothing that the network holds up.
  ~CorrectionLink() { stopping_ = true; }

  CorrectionStatus Status() const { return session_.Status(); }

 private:
  std::atomic<bool> stopping_ = false;
  LastErrorRecord errors_;  // its own: the reading side has one for itself
  std::unique_ptr<NtripConnection> connection_;
  PortSink sink_;
  CorrectionSession session_;
  CorrectionThread thread_;
};

/// One line about the corrections for a progress line: "corrections 0.8 s old, base 2003 at 3.2
/// km".
std::string CorrectionLine(const CorrectionStatus& status, const GnssPositionState& state);

/// What a session came to: "Corrections: 15200 bytes in 608 messages from 3 connections, ...".
std::string CorrectionSummary(const CorrectionStatus& status);

/// The folder for "tmp_sourcetable.txt", of this process alone.
std::string WorkFolder();

}  // namespace tarvex
