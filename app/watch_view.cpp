#include "app/watch_view.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "core/number_text.h"

namespace tarvex {
namespace {

constexpr int kDegreeDecimals = 9;
constexpr int kMetreDecimals = 3;
constexpr std::size_t kSkyRow = 6;  // satellites on a line

std::string EpochText(std::int32_t epoch_ms) {
  if (epoch_ms == kNoEpoch) return "no time";
  std::string text;
  AppendInteger(text, epoch_ms / 3'600'000, 2);
  text += ':';
  AppendInteger(text, epoch_ms / 60'000 % 60, 2);
  text += ':';
  AppendInteger(text, epoch_ms / 1000 % 60, 2);
  if (epoch_ms % 1000 != 0) {
    text += '.';
    AppendInteger(text, epoch_ms % 1000, 3);
  }
  return text;
}

// "" or " SIMULATED": what a position that was not measured is.
std::string OriginText(PositionOrigin origin) {
  switch (origin) {
    case PositionOrigin::Estimated:
      return " ESTIMATED";
    case PositionOrigin::Entered:
      return " ENTERED";
    case PositionOrigin::Simulated:
      return " SIMULATED";
    case PositionOrigin::Measured:
      break;
  }
  return "";
}

std::string PrecisionText(const GnssPositionState& state) {
  if (!state.precision_known) return "HRMS and VRMS unknown";
  return "HRMS " + FixedNumber(state.hrms, kMetreDecimals) + " VRMS " +
         FixedNumber(state.vrms, kMetreDecimals) +
         (state.precision_carried_over ? " (of an earlier epoch)" : "");
}

std::string DopText(const GnssPositionState& state) {
  const auto dop = [](double value) {
    return value > 0.0 ? FixedNumber(value, 1) : std::string("-");
  };
  return "PDOP " + dop(state.pdop) + "  HDOP " + dop(state.hdop) + "  VDOP " + dop(state.vdop);
}

std::string SkyText(const std::vector<SatelliteInView>& satellites) {
  std::string text;
  for (std::size_t i = 0; i < satellites.size(); ++i) {
    const SatelliteInView& satellite = satellites[i];
    text += i % kSkyRow == 0 ? (i == 0 ? "sky       " : "\n          ") : "  ";
    text += satellite.system;
    AppendInteger(text, satellite.prn, 2);
    text += " " + std::to_string(satellite.elevation_deg) + "/" +
            std::to_string(satellite.azimuth_deg) +
            (satellite.snr >= 0 ? " " + std::to_string(satellite.snr) : " -");
  }
  return text.empty() ? text
                      : text + "\n          (elevation/azimuth in degrees, strength in dB-Hz)\n";
}

std::string LinkText(const CorrectionStatus& status, const GnssPositionState& state) {
  std::string text = "link      " + CorrectionLine(status, state) + "\n          " +
                     std::to_string(status.bytes) + " bytes from the caster, " +
                     std::to_string(status.bytes_to_receiver) + " to the receiver, " +
                     std::to_string(status.ggas_sent) + " positions sent, " +
                     std::to_string(status.bad_crcs) + " damaged\n";
  if (status.messages.empty()) return text;
  text += "          messages";
  for (const auto& [number, count] : status.messages) {
    text += " " + std::to_string(number) + ":" + std::to_string(count);
  }
  return text + "\n";
}

}  // namespace

std::string PositionLine(const GnssPositionState& state) {
  return FixedNumber(state.latitude, kDegreeDecimals) + " " +
         FixedNumber(state.longitude, kDegreeDecimals) + " " +
         (state.height_known ? FixedNumber(state.height, kMetreDecimals) : "-") + " " +
         std::string(SolutionText(state.solution_type)) + OriginText(state.origin) + " " +
         std::to_string(state.satellites) + " satellites " + PrecisionText(state) + " " +
         EpochText(state.epoch_ms);
}

WatchView::WatchView(Console& console) : console_(console), drawn_(::isatty(STDOUT_FILENO) != 0) {}

std::string WatchView::Screen(GnssReadResult result, const GnssPositionState& state,
                              const ReceiverTap& tap, const CorrectionLink* link,
                              Clock& clock) const {
  std::string text;
  const std::string age = state.position_read_at_ms == 0
                              ? "never"
                              : FixedNumber(static_cast<double>(clock.SteadyMilliseconds() -
                                                                state.position_read_at_ms) /
                                                1000.0,
                                            1) +
                                    " s ago";
  text += "position  " + FixedNumber(state.latitude, kDegreeDecimals) + "  " +
          FixedNumber(state.longitude, kDegreeDecimals) + "  height " +
          (state.height_known ? FixedNumber(state.height, kMetreDecimals) : "unknown") + "\n";
  text += "solution  " + std::string(SolutionText(state.solution_type)) + OriginText(state.origin) +
          "  " + std::to_string(state.satellites) + " satellites  " + PrecisionText(state) + "\n";
  text += "quality   " + DopText(state) + "\n";
  text += "time      " + EpochText(state.epoch_ms) + " UTC, read " + age +
          (state.repeated_epoch ? "  REPEATED" : "") + "\n";
  text += "receiver  " + std::to_string(tap.lines()) + " lines, " + std::to_string(tap.bytes()) +
          " bytes, " + std::to_string(state.bad_checksums) + " damaged";
  if (result != GnssReadResult::Accepted) text += ". " + ResultSentence(result);
  text += "\n" + SkyText(tap.sky().InView(clock.SteadyMilliseconds()));
  if (link != nullptr) text += LinkText(link->Status(), state);
  return text;
}

void WatchView::Show(GnssReadResult result, const GnssPositionState& state, const ReceiverTap& tap,
                     const CorrectionLink* link, Clock& clock) {
  if (!drawn_) {
    if (result != GnssReadResult::Accepted) {
      console_.PrintError(ResultSentence(result) + "\n");
    } else {
      console_.Print(PositionLine(state) + (state.repeated_epoch ? " REPEATED" : "") +
                     (link != nullptr ? "; " + CorrectionLine(link->Status(), state) : "") + "\n");
    }
    std::fflush(stdout);
    return;
  }
  std::string screen = Screen(result, state, tap, link, clock);
  const auto lines = static_cast<int>(std::count(screen.begin(), screen.end(), '\n'));
  // Every line is cleared to its end, and everything below the last one.
  for (std::size_t at = 0; (at = screen.find('\n', at)) != std::string::npos; at += 4) {
    screen.insert(at, "\x1b[K");
  }
  const std::string up = lines_up_ > 0 ? "\x1b[" + std::to_string(lines_up_) + "A\r" : "";
  console_.Print(up + screen + "\x1b[J");
  std::fflush(stdout);
  lines_up_ = lines;
}

void WatchView::End() {
  lines_up_ = 0;
}

}  // namespace tarvex
