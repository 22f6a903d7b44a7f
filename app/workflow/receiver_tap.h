// Listens to every line that is read from a receiver: counts them, keeps the newest GGA for the
// caster, the satellites for the sky view, and the stream itself in a log that can be replayed.
#pragma once

#include <memory>
#include <string>

#include "gnss/corrections/latest_gga.h"
#include "gnss/nmea/sky_view.h"
#include "gnss/receivers/gnss_connection.h"
#include "platform/clock.h"
#include "platform/file.h"

namespace tarvex {

class ReceiverTap final : public LineListener {
 public:
  ReceiverTap(FileSystem& files, Clock& clock) : files_(files), clock_(clock) {}

  /// Begins a log of the stream in a file that does not exist yet; false when it cannot be made.
  [[nodiscard]] bool StartLog(const std::string& path);
  /// Why there is no log, or no longer one; empty while every line is logged. A first failure ends
  /// the log and stays here.
  const std::string& logProblem() const { return logProblem_; }

  /// The systems (SatelliteSystem) that the sky view shows; 0: all.
  void ShowSatellitesOf(int systems) { sky_.ShowOnly(systems); }

  void OnLine(std::string_view line) override;

  const LatestGga& gga() const { return gga_; }
  const SkyView& sky() const { return sky_; }
  std::uint64_t bytes() const { return bytes_; }
  std::uint64_t lines() const { return lines_; }

 private:
  FileSystem& files_;
  Clock& clock_;
  LatestGga gga_;
  SkyView sky_;
  std::uint64_t bytes_ = 0;
  std::uint64_t lines_ = 0;
  std::unique_ptr<File> log_;
  std::uint64_t logSize_ = 0;
  std::string logPath_;
  std::string logProblem_;
};

}  // namespace tarvex
