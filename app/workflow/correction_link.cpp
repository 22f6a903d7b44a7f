#include "app/workflow/correction_link.h"

#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <system_error>

#include "coordsys/datum/geocentric.h"
#include "core/number_text.h"

namespace tarvex {
namespace {

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

CorrectionLink::CorrectionLink(Program& program, const CorrectionPlan& plan, Port& receiver,
                               const LatestGga& gga)
    : connection_(
          MakeTcpNtripConnection(errors_, [this] { return stopping_ || InterruptRequested(); })),
      sink_(receiver),
      session_(plan, *connection_,
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
