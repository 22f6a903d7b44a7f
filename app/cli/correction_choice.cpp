#include "app/cli/correction_choice.h"

#include <algorithm>
#include <cstdlib>

#include "core/text/number_text.h"
#include "core/text/text.h"
#include "gnss/ntrip/client.h"
#include "platform/secret.h"

namespace tarvex {
namespace {

constexpr std::string_view kScheme = "ntrip://";
constexpr std::string_view kTlsScheme = "ntrips://";
constexpr const char* kTlsPort = "443";
constexpr const char* kPasswordVariable = "TARVEX_NTRIP_PASSWORD";
constexpr const char* kForm =
    "The corrections are not understood: give ntrip://[USER@]HOST[:PORT]/MOUNTPOINT, or "
    "ntrips:// for an encrypted caster.";
constexpr const char* kCasterForm =
    "The caster is not understood: give [USER@]HOST[:PORT], as in caster.example:2101, with "
    "ntrips:// in front for an encrypted one.";
constexpr const char* kBadMountpoint =
    "A mountpoint has no blank and no control character: take its name as the caster lists it.";
constexpr const char* kNotEncrypted =
    "--ca is for encrypted casters: give ntrips:// instead of ntrip://, or leave --ca out.";
constexpr const char* kNoPasswordHere =
    "A password does not belong in an argument, where every user of this machine can read it: "
    "give --password-file FILE, set TARVEX_NTRIP_PASSWORD, or type it when asked.";

// Takes "ntrip://" or "ntrips://" off the front, in whatever letter case. False when neither is
// there.
bool TakeScheme(std::string_view& text, bool& encrypted) {
  for (const std::string_view scheme : {kScheme, kTlsScheme}) {
    if (!EqualsIgnoringCase(text.substr(0, scheme.size()), scheme)) continue;
    text.remove_prefix(scheme.size());
    encrypted = scheme == kTlsScheme;
    return true;
  }
  return false;
}

// False, with a sentence in `problem`.
bool ParseAddress(std::string_view text, CorrectionPlan& plan, std::string& problem) {
  problem = kForm;
  std::string_view rest = text;
  if (bool encrypted = false; !TakeScheme(rest, encrypted)) return false;
  const std::size_t schemeSize = text.size() - rest.size();
  const std::size_t slash = text.find('/', std::max(schemeSize, text.rfind('@') + 1));
  if (slash == std::string_view::npos || slash + 1 == text.size()) return false;
  plan.mountpoint = text.substr(slash + 1);
  if (!IsMountpointName(plan.mountpoint)) {
    problem = kBadMountpoint;
    return false;
  }
  std::string casterProblem;
  if (ParseCaster(text.substr(0, slash), plan.caster, casterProblem)) return true;
  if (casterProblem == kNoPasswordHere) problem = casterProblem;
  return false;
}

bool ParseHost(std::string_view text, CasterLogin& caster) {
  const std::size_t bracket = text.find(']');
  const std::size_t colon = text.find(':', bracket == std::string_view::npos ? 0 : bracket);
  std::string_view host = text.substr(0, colon);
  if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
  if (host.empty() || host.size() > decltype(caster.host)::kCapacity) return false;
  if (host.find('/') != std::string_view::npos || !IsMountpointName(host)) return false;
  caster.host.Assign(host);
  if (colon == std::string_view::npos) return true;
  const auto port = ParseInteger(text.substr(colon + 1));
  if (!port || *port < 1 || *port > 65535) return false;
  caster.port = std::to_string(*port);
  return true;
}

GgaUpload UploadOf(const CorrectionChoice& choice, const ReceiverSettings& settings) {
  if (choice.sendGga == "always") return GgaUpload::Always;
  if (choice.sendGga == "never") return GgaUpload::Never;
  if (choice.sendGga == "wanted") return GgaUpload::WhenWanted;
  return settings.caster.sendGga || settings.caster.roverSendGga ? GgaUpload::WhenWanted
                                                                 : GgaUpload::Never;
}

}  // namespace

bool ParseCaster(std::string_view text, CasterLogin& caster, std::string& problem) {
  problem = kCasterForm;
  if (TakeScheme(text, caster.encrypted) && caster.encrypted) caster.port = kTlsPort;
  if (const std::size_t at = text.rfind('@'); at != std::string_view::npos) {
    caster.user = text.substr(0, at);
    text.remove_prefix(at + 1);
    if (caster.user.find(':') != std::string::npos) {
      problem = kNoPasswordHere;
      return false;
    }
  }
  return ParseHost(text, caster);
}

bool FindPassword(const std::string& passwordFile, CasterLogin& caster, std::string& problem) {
  if (caster.user.empty()) return true;
  if (!passwordFile.empty()) {
    switch (ReadSecretFile(passwordFile, caster.password)) {
      case SecretResult::Found:
        return true;
      case SecretResult::OpenToOthers:
        problem = "The password file " + passwordFile +
                  " can be read by others; make it yours alone (chmod 600).";
        return false;
      case SecretResult::Missing:
        problem = "The password file " + passwordFile + " cannot be read.";
        return false;
    }
  }
  if (const char* const given = std::getenv(kPasswordVariable); given != nullptr) {
    caster.password = given;
    return true;
  }
  const std::string question = "Password of " + caster.user + " at " + caster.host.str() + ": ";
  if (AskSecret(question, caster.password) == SecretResult::Found) return true;
  problem = "There is no password for " + caster.user +
            ": give --password-file FILE or set TARVEX_NTRIP_PASSWORD.";
  return false;
}

Option AddPasswordOption(Command& command, std::string& passwordFile) {
  return command
      .Add("--password-file", passwordFile,
           "File with the password that its owner alone can read (mode 0600)")
      .ValueName("FILE");
}

Option AddAuthorityOption(Command& command, std::string& authorityFile) {
  return command
      .Add("--ca", authorityFile,
           "File (PEM) with the authority that signed the certificate of a caster\n"
           "that is reached by ntrips://; no other is trusted then")
      .ValueName("FILE");
}

Option AddVersionOption(Command& command, int& ntripVersion) {
  return command
      .Add("--ntrip-version", ntripVersion,
           "Version of the requests: 1, or 2 and 1 where the caster does not know it\n"
           "(default: 2 by ntrips://, else 1)")
      .Between(1, 2);
}

bool SettleCaster(const std::string& authorityFile, int ntripVersion, CasterLogin& caster,
                  std::string& problem) {
  if (!authorityFile.empty() && !caster.encrypted) {
    problem = kNotEncrypted;
    return false;
  }
  caster.authorityFile = authorityFile;
  const bool two = ntripVersion == 0 ? caster.encrypted : ntripVersion == 2;
  caster.version = two ? NtripVersion::Two : NtripVersion::One;
  return true;
}

void AddCorrectionOptions(Command& command, CorrectionChoice& choice) {
  constexpr const char* kGroup = "Corrections";
  command
      .Add("--corrections", choice.address,
           "ntrip://[USER@]HOST[:PORT]/MOUNTPOINT, sent to the receiver; ntrips:// for an\n"
           "encrypted caster. The password is asked for, or taken from\n"
           "TARVEX_NTRIP_PASSWORD")
      .ValueName("ADDRESS")
      .InGroup(kGroup);
  AddAuthorityOption(command, choice.authorityFile).InGroup(kGroup);
  AddVersionOption(command, choice.ntripVersion).InGroup(kGroup);
  AddPasswordOption(command, choice.passwordFile).InGroup(kGroup);
  command
      .Add("--send-gga", choice.sendGga,
           "Send your position to the caster: wanted (when its list says that the stream\n"
           "needs it; the default), always or never")
      .OneOf({"wanted", "always", "never"})
      .InGroup(kGroup);
  command
      .Add("--gga-interval", choice.ggaIntervalS,
           "Seconds between two positions sent (default: 10)")
      .Between(1, 3600)
      .InGroup(kGroup);
}

ExitCode SettleCorrections(const CorrectionChoice& choice, const ReceiverSettings& settings,
                           Program& program, std::optional<CorrectionPlan>& plan) {
  if (choice.address.empty()) return ExitCode::Done;
  CorrectionPlan settled;
  std::string problem;
  if (!ParseAddress(choice.address, settled, problem) ||
      !SettleCaster(choice.authorityFile, choice.ntripVersion, settled.caster, problem) ||
      !FindPassword(choice.passwordFile, settled.caster, problem)) {
    return program.Misuse(problem);
  }
  settled.gga = UploadOf(choice, settings);
  const int intervalS =
      choice.ggaIntervalS > 0 ? choice.ggaIntervalS : settings.caster.ggaIntervalS;
  settled.ggaIntervalMs = std::int64_t{intervalS} * 1000;
  plan = settled;
  return ExitCode::Done;
}

}  // namespace tarvex
