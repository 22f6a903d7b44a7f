#include "app/correction_link.h"

#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "coordsys/datum/geocentric.h"
#include "core/number_text.h"
#include "platform/secret.h"

namespace tarvex {
namespace {

constexpr std::string_view kScheme = "ntrip://";
constexpr const char* kPasswordVariable = "TARVEX_NTRIP_PASSWORD";
constexpr const char* kForm = "give ntrip://[USER@]HOST[:PORT]/MOUNTPOINT.";

double DistanceToBaseKm(const BaseStation& base, const GnssPositionState& state) {
  const GeocentricFrame frame(kWgs84);
  const Geocentric rover = frame.ToGeocentric({.latitude_rad = state.latitude * kRadiansPerDegree,
                                               .longitude_rad = state.longitude * kRadiansPerDegree,
                                               .height_m = state.height});
  return std::hypot(rover.x_m - base.position.x_m, rover.y_m - base.position.y_m,
                    rover.z_m - base.position.z_m) /
         1000.0;
}

}  // namespace

bool ParseCaster(std::string_view text, CasterLogin& caster) {
  const std::size_t bracket = text.find(']');
  const std::size_t colon = text.find(':', bracket == std::string_view::npos ? 0 : bracket);
  std::string_view host = text.substr(0, colon);
  if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
  if (host.empty() || host.size() > decltype(caster.host)::kCapacity) return false;
  caster.host.Assign(host);
  if (colon == std::string_view::npos) return true;
  const auto port = ParseInteger(text.substr(colon + 1));
  if (!port || *port < 1 || *port > 65535) return false;
  caster.port = std::to_string(*port);
  return true;
}

bool ParseCorrectionAddress(const std::string& text, CorrectionAddress& address,
                            std::string& problem) {
  std::string_view rest = text;
  problem = "The corrections are not understood: " + std::string(kForm);
  if (!rest.starts_with(kScheme)) return false;
  rest.remove_prefix(kScheme.size());
  const std::size_t slash = rest.find('/', std::min(rest.size(), rest.rfind('@') + 1));
  if (slash == std::string_view::npos || slash + 1 == rest.size()) return false;
  address.mountpoint = rest.substr(slash + 1);
  std::string_view caster = rest.substr(0, slash);
  if (const std::size_t at = caster.rfind('@'); at != std::string_view::npos) {
    address.caster.user = caster.substr(0, at);
    caster.remove_prefix(at + 1);
    if (address.caster.user.find(':') != std::string::npos) {
      problem =
          "A password does not belong into an argument, where every user of this machine can read "
          "it: give --password-file FILE, set TARVEX_NTRIP_PASSWORD, or type it when asked.";
      return false;
    }
  }
  if (!ParseCaster(caster, address.caster)) return false;
  problem.clear();
  return true;
}

bool FindPassword(const std::string& password_file, CasterLogin& caster, std::string& problem) {
  if (caster.user.empty()) return true;
  if (!password_file.empty()) {
    switch (ReadSecretFile(password_file, caster.password)) {
      case SecretResult::Found:
        return true;
      case SecretResult::OpenToOthers:
        problem = "The password file " + password_file +
                  " can be read by others; make it yours alone (chmod 600).";
        return false;
      case SecretResult::Missing:
        problem = "The password file " + password_file + " cannot be read.";
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

CorrectionLink::CorrectionLink(Program& program, const CorrectionAddress& address, Port& receiver,
                               const LatestGga& gga)
    : connection_(MakeTcpNtripConnection(errors_)),
      sink_(receiver),
      session_({.caster = address.caster, .mountpoint = address.mountpoint}, *connection_,
               {.clock = program.clock,
                .files = program.files,
                .errors = errors_,
                .work_folder = WorkFolder()}),
      thread_((session_.Attach(&sink_, &gga), session_)) {}

std::string CorrectionLine(const CorrectionStatus& status, const GnssPositionState& state) {
  if (status.state != CorrectionState::Receiving || status.age_ms < 0) {
    return CorrectionSentence(status);
  }
  std::string line =
      "corrections " + FixedNumber(static_cast<double>(status.age_ms) / 1000.0, 1) + " s old";
  if (status.base) {
    line += ", base " + std::to_string(status.base->id);
    if (state.positions > 0) {
      line += " at " + FixedNumber(DistanceToBaseKm(*status.base, state), 1) + " km";
    }
  }
  if (status.base_moved_m > kBaseMovedAlarm) {
    line += ", THE BASE HAS MOVED " + FixedNumber(status.base_moved_m, 2) + " m";
  }
  return line;
}

std::string CorrectionSummary(const CorrectionStatus& status) {
  return "Corrections: " + std::to_string(status.bytes) + " bytes in " +
         std::to_string(status.frames) + " messages over " + std::to_string(status.connections) +
         (status.connections == 1 ? " connection, " : " connections, ") +
         std::to_string(status.bytes_to_receiver) + " bytes to the receiver, " +
         std::to_string(status.bad_crcs) + " damaged messages, " +
         std::to_string(status.ggas_sent) + " positions sent to the caster.";
}

std::string WorkFolder() {
  std::error_code error;
  std::filesystem::path folder = std::filesystem::temp_directory_path(error);
  if (error) folder = ".";
  folder /= "tarvex-" + std::to_string(::getuid());
  std::filesystem::create_directory(folder, error);
  std::filesystem::permissions(folder, std::filesystem::perms::owner_all, error);
  return (folder / (std::to_string(::getpid()) + "-")).string();
}

}  // namespace tarvex
