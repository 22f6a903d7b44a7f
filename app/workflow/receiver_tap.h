// Listens to every line that is read from a receiver: counts them, keeps the newest GGA for the
// caster, the satellites for the sky view, and the stream itself in a log that can be replayed.
#pragma once

#include <memory>
#include <string>

#include "app/cli/program.h"
#include "gnss/corrections/latest_gga.h"
#include "gnss/sky_view.h"

namespace tarvex {

class ReceiverTap final : public LineListener {
 public:
  explicit ReceiverTap(Program& program) : program_(program) {}

  /// Begins a log of the stream; false after a message when the file exists or cannot be made.
  bool StartLog(const std::string& path);
  /// False, once, after a line could not be logged.
  bool log_failed() const { return log_failed_; }

  void OnLine(std::string_view line) override;

  const LatestGga& gga() const { return gga_; }
  const SkyView& sky() const { return sky_; }
  std::uint64_t bytes() const { return bytes_; }
  std::uint64_t lines() const { return lines_; }

 private:
  Program& program_;
  LatestGga gga_;
  SkyView sky_;
  std::uint64_t bytes_ = 0;
  std::uint64_t lines_ = 0;
  std::unique_ptr<File> log_;
  std::uint64_t log_size_ = 0;
  bool log_failed_ = false;
};

}  // namespace tarvex
