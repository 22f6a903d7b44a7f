// Corrections on the command line: where they come from, the password, and the session that runs
// beside the one that reads the receiver.
#pragma once

#include <memory>
#include <string>

#include "app/program.h"
#include "gnss/corrections/correction_session.h"
#include "gnss/corrections/correction_thread.h"

namespace tarvex {

/// "ntrip://[USER@]HOST[:PORT]/MOUNTPOINT".
struct CorrectionAddress {
  CasterLogin caster;
  std::string mountpoint;
};

/// False, with a sentence in `problem`. A password in the text is refused: arguments are seen by
/// every user of the machine.
[[nodiscard]] bool ParseCorrectionAddress(const std::string& text, CorrectionAddress& address,
                                          std::string& problem);

/// "HOST[:PORT]", an IPv6 host in brackets; 2101 without a port.
[[nodiscard]] bool ParseCaster(std::string_view text, CasterLogin& caster);

/// The password of the user: from a file of mode 0600 when one is named, else from the environment
/// variable TARVEX_NTRIP_PASSWORD, else from the person at the terminal. Nothing is asked without a
/// user. False, with a sentence in `problem`, when there is none.
[[nodiscard]] bool FindPassword(const std::string& password_file, CasterLogin& caster,
                                std::string& problem);

/// Runs while it lives.
class CorrectionLink {
 public:
  /// The receiver's port stays open longer than the link. `gga` is what the reading side hears.
  CorrectionLink(Program& program, const CorrectionAddress& address, Port& receiver,
                 const LatestGga& gga);

  CorrectionStatus Status() const { return session_.Status(); }

 private:
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
