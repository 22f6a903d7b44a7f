// Where the corrections come from, from a command's options, the receiver's settings and the person
// who knows the password.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "app/cli/command_line.h"
#include "gnss/corrections/correction_session.h"
#include "gnss/receivers/receiver_settings.h"

namespace tarvex {

/// As entered.
struct CorrectionChoice {
  std::string address;  ///< "ntrip[s]://[USER@]HOST[:PORT]/MOUNTPOINT"; empty: no corrections
  std::string authorityFile;
  int ntripVersion = 0;  ///< 0: 2 by TLS, else 1
  std::string passwordFile;
  std::string sendGga;  ///< "wanted", "always", "never"; empty: what the settings say
  int ggaIntervalS = 0;
};

/// Adds --corrections, --password-file, --ca, --ntrip-version, --send-gga and --gga-interval.
void AddCorrectionOptions(Command& command, CorrectionChoice& choice);

/// Nothing in `plan` when no corrections were asked for. Wrong use, after a message, when the
/// address is not understood or there is no password.
ExitCode SettleCorrections(const CorrectionChoice& choice, const ReceiverSettings& settings,
                           Program& program, std::optional<CorrectionPlan>& plan);

/// "[ntrip[s]://][USER@]HOST[:PORT]", an IPv6 host in brackets; without a port 2101, of ntrips 443.
/// False with a sentence in
/// `problem`, which repeats nothing of a text that may hold a password.
[[nodiscard]] bool ParseCaster(std::string_view text, CasterLogin& caster, std::string& problem);

/// The password of the caster's user: from a file of mode 0600 when one is named, else from the
/// environment, else from the person at the terminal. Nothing is asked without a user. False with a
/// sentence in `problem`.
[[nodiscard]] bool FindPassword(const std::string& passwordFile, CasterLogin& caster,
                                std::string& problem);

Option AddPasswordOption(Command& command, std::string& passwordFile);
Option AddAuthorityOption(Command& command, std::string& authorityFile);
Option AddVersionOption(Command& command, int& ntripVersion);

/// Whom to trust and how to ask. False with a sentence in `problem` when it does not fit the
/// caster's address.
[[nodiscard]] bool SettleCaster(const std::string& authorityFile, int ntripVersion,
                                CasterLogin& caster, std::string& problem);

}  // namespace tarvex
