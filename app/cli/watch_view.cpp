#include "app/cli/watch_view.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <utility>
#include <vector>

#include "app/cli/correction_text.h"
#include "core/text/number_text.h"
#include "core/text/printable.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr int kDegreeDecimals = 9;
constexpr int kMetreDecimals = 3;
constexpr std::size_t kSkyRow = 6;  // satellites on a line

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
  if (!state.precisionKnown) return "HRMS and VRMS unknown";
  return "HRMS " + FixedNumber(state.hrms, kMetreDecimals) + " VRMS " +
         FixedNumber(state.vrms, kMetreDecimals) +
         (state.precisionCarriedOver ? " (of an earlier epoch)" : "");
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
    text += " " + std::to_string(satellite.elevationDeg) + "/" +
            std::to_string(satellite.azimuthDeg) +
            (satellite.snr >= 0 ? " " + std::to_string(satellite.snr) : " -");
  }
  return text.empty() ? text
                      : text + "\n          (elevation/azimuth in degrees, strength in dB-Hz)\n";
}

std::string CountsText(const std::vector<SystemCount>& counts) {
  std::string text;
  for (const SystemCount& count : counts) {
    text += (text.empty() ? "in use    " : "  ") + count.system + " " +
            std::to_string(count.inUse) + " of " + std::to_string(count.inView);
  }
  return text.empty() ? text : text + "\n";
}

std::string PositionText(const GnssPositionState& state, Clock& clock) {
  if (state.positions == 0) return "position  none yet\n";
  const double ageS =
      static_cast<double>(clock.SteadyMilliseconds() - state.positionReadAtMs) / 1000.0;
  return "position  " + FixedNumber(state.latitude, kDegreeDecimals) + "  " +
         FixedNumber(state.longitude, kDegreeDecimals) + "  height " +
         (state.heightKnown ? FixedNumber(state.height, kMetreDecimals) : "unknown") +
         "\nsolution  " + std::string(SolutionText(state.solutionType)) + OriginText(state.origin) +
         "  " + std::to_string(state.satellites) + " satellites  " + PrecisionText(state) +
         "\nquality   " + DopText(state) + "\ntime      " + EpochText(state) + ", read " +
         FixedNumber(ageS, 1) + " s ago" + (state.repeatedEpoch ? "  REPEATED" : "") + "\n";
}

// The eight winds are enough to turn to.
std::string CompassPoint(double azimuthRad) {
  constexpr std::array kWinds = {"N", "NE", "E", "SE", "S", "SW", "W", "NW"};
  const double eighths = azimuthRad / (2.0 * std::numbers::pi) * kWinds.size();
  return kWinds[static_cast<std::size_t>(std::lround(eighths)) % kWinds.size()];
}

std::string Signed(double value) {
  const std::string text = FixedNumber(value, kMetreDecimals);
  return text.starts_with('-') ? text : "+" + text;
}

struct TerminalSize {
  std::size_t columns = 80;
  std::size_t rows = 24;
};

TerminalSize SizeOfTerminal() {
  winsize size{};
  if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
    return {};
  }
  return {.columns = size.ws_col, .rows = size.ws_row};
}

// The lines of a text, those that are too long broken at blanks and indented.
std::vector<std::string> FittedLines(std::string_view text, std::size_t columns) {
  constexpr std::string_view kIndent = "          ";
  std::vector<std::string> lines;
  while (const auto whole = TakeLine(text)) {
    std::string line(*whole);
    while (line.size() > columns && columns > 2 * kIndent.size()) {
      const std::size_t pair = line.rfind("  ", columns);
      const std::size_t blank = line.rfind(' ', columns);
      const std::size_t cut = pair != std::string::npos && pair > kIndent.size() ? pair : blank;
      if (cut == std::string::npos || cut <= kIndent.size()) break;
      lines.push_back(line.substr(0, cut));
      line = std::string(kIndent) +
             line.substr(std::min(line.find_first_not_of(' ', cut), line.size()));
    }
    lines.push_back(line.substr(0, columns));
  }
  return lines;
}

std::string LinkText(const CorrectionStatus& status, const GnssPositionState& state) {
  std::string text = "link      " + CorrectionLine(status, state) + "\n          " +
                     std::to_string(status.bytes) + " bytes from the caster, " +
                     std::to_string(status.bytesToReceiver) + " to the receiver, " +
                     std::to_string(status.ggasSent) + " positions sent, " +
                     std::to_string(status.badCrcs) + " damaged\n";
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
         (state.heightKnown ? FixedNumber(state.height, kMetreDecimals) : "-") + " " +
         std::string(SolutionText(state.solutionType)) + OriginText(state.origin) + " " +
         std::to_string(state.satellites) + " satellites " + PrecisionText(state) + " " +
         ClockText(state.epochMs);
}

std::string PlaceLine(const JobPlace& place) {
  const GridPosition& position = place.position;
  if (!position.usable()) {
    return "no grid coordinates: " + CalculationText(position.result, position.steps);
  }
  const auto number = [](double value) { return FixedNumber(value, kMetreDecimals); };
  std::string line = "N " + number(position.at.northing) + " E " + number(position.at.easting) +
                     " EL " + (place.hasElevation ? number(position.at.elevation) : "-");
  if (!place.way) return line;
  const WayToPoint& way = *place.way;
  line += "; to " + way.id + ": " + number(way.distance) + " at " +
          FixedNumber(way.azimuthRad * kDegreesPerRadian, 1) + " (" + CompassPoint(way.azimuthRad) +
          "), N " + Signed(way.north) + " E " + Signed(way.east);
  return way.up ? line + " EL " + Signed(*way.up) : line;
}

WatchView::WatchView(Console& console) : console_(console), drawn_(::isatty(STDOUT_FILENO) != 0) {}

WatchView::~WatchView() {
  End();
}

std::string WatchView::Screen(const std::string& trouble, const GnssPositionState& state,
                              const ReceiverTap& tap, const CorrectionLink* link,
                              Clock& clock) const {
  std::string text = PositionText(state, clock);
  if (state.positions > 0 && !place_.empty()) text += "job       " + place_ + "\n";
  text += "receiver  " + std::to_string(tap.lines()) + " lines, " + std::to_string(tap.bytes()) +
          " bytes, " + std::to_string(state.badChecksums) + " damaged\n";
  const std::string height = state.positions > 0 ? HeightSentence(state) : std::string();
  for (const std::string& sentence : {trouble, OriginSentence(state.origin), height}) {
    if (!sentence.empty()) text += "          " + sentence + "\n";
  }
  if (link != nullptr) text += LinkText(link->Status(), state);
  const std::int64_t nowMs = clock.SteadyMilliseconds();
  return text + CountsText(tap.sky().Counts(nowMs)) + SkyText(tap.sky().InView(nowMs));
}

void WatchView::Show(const std::string& trouble, const GnssPositionState& state,
                     const ReceiverTap& tap, const CorrectionLink* link, Clock& clock) {
  if (!drawn_) return ShowLine(trouble, state, link);
  const TerminalSize size = SizeOfTerminal();
  lastScreen_ = Screen(trouble, state, tap, link, clock);
  const std::vector<std::string> lines = FittedLines(lastScreen_, size.columns);
  std::string drawing = open_ ? "\x1b[H" : "\x1b[?1049h\x1b[?25l\x1b[H";
  open_ = true;
  const std::size_t shown = std::min(lines.size(), size.rows);
  for (std::size_t i = 0; i < shown; ++i) {
    drawing += PrintableLine(lines[i]) + "\x1b[K" + (i + 1 < shown ? "\r\n" : "");
  }
  console_.Draw(drawing + "\x1b[J");
}

void WatchView::ShowLine(const std::string& trouble, const GnssPositionState& state,
                         const CorrectionLink* link) {
  if (!trouble.empty()) {
    if (trouble != std::exchange(told_, trouble)) console_.PrintError(trouble + "\n");
    return;
  }
  told_.clear();
  console_.Print(PositionLine(state) + (state.repeatedEpoch ? " REPEATED" : "") +
                 (place_.empty() ? "" : "; " + place_) +
                 (link != nullptr ? "; " + CorrectionLine(link->Status(), state) : "") + "\n");
  std::fflush(stdout);
}

// The last screen stays to be read.
void WatchView::End() {
  if (!std::exchange(open_, false)) return;
  console_.Draw("\x1b[?25h\x1b[?1049l");
  for (const std::string& line : FittedLines(lastScreen_, SizeOfTerminal().columns)) {
    console_.Print(line + "\n");
  }
  std::fflush(stdout);
}

}  // namespace tarvex
