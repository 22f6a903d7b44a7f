#include "gnss/receivers/ashtech_reading.h"

#include <array>
#include <string>

#include "gnss/port/line_reader.h"
#include "gnss/receivers/ashtech_sentences.h"
#include "gnss/receivers/request.h"

namespace tarvex {
namespace {

constexpr std::int64_t kClearInputMs = 500;
constexpr int kFirstLineTimeoutMs = 4000;
constexpr int kSecondGgaTimeoutMs = 1500;
constexpr int kFurtherLineTimeoutMs = 750;
constexpr int kFurtherLines = 5;
constexpr std::size_t kLineCapacity = 512;
constexpr std::string_view kGga = "$GPGGA,";
constexpr std::string_view kPos = "$PASHR,POS";
constexpr std::string_view kPower = "$PASHR,POW";

bool AnswersWithPos(const AshtechSettings& settings) {
  switch (settings.model) {
    case 0:
    case 3:
    case 4:
    case 5:
    case 6:
      return true;
    case 2:
      return settings.variant == 1;
    default:
      return false;
  }
}

class AshtechReading {
 public:
  AshtechReading(GnssPositionState& state, GnssConnection& connection, const ReceiverMake& make)
      : state_(state), connection_(connection), make_(make) {}

  GnssReadResult Run() {
    ClearInput();
    state_.dopCarriedOver = true;
    return AnswersWithPos(connection_.settings.ashtech) ? RunPos() : RunGga();
  }

 private:
  // What the receiver said before it was asked; for so long at most.
  void ClearInput() {
    const std::int64_t until = connection_.clock.SteadyMilliseconds() + kClearInputMs;
    std::size_t waiting = 0;
    do {
      if (connection_.port->PurgeInput() != PortError::None) return;
      if (connection_.port->BytesWaiting(waiting) != PortError::None) return;
    } while (waiting > 0 && connection_.clock.SteadyMilliseconds() < until && --patience_ > 0);
  }

  std::string_view Line(int timeoutMs) {
    const ReadLineResult read = ReadLineHolding(*connection_.port, buffer_, timeoutMs,
                                                Framing::TextLines, connection_.DeadlineBy());
    if (!read.ok() || !read.whole) return {};
    if (connection_.listener != nullptr) connection_.listener->OnLine(read.text);
    state_.sentenceReadAtMs = connection_.clock.SteadyMilliseconds();
    return read.text;
  }

  std::string_view FirstLine() {
    const std::string_view line = Line(kFirstLineTimeoutMs);
    if (!line.empty() || connection_.settings.ashtech.skipRetry) return line;
    return Line(kFirstLineTimeoutMs);
  }

  std::string Command(std::string_view before, std::string_view after) const {
    return std::string(before) + connection_.settings.ashtech.port + std::string(after);
  }

  GnssReadResult RunGga() {
    if (!SendCommand(connection_, Command("$PASHS,NME,GGA,", ",ON"))) {
      return GnssReadResult::PortReadFailed;
    }
    const GnssReadResult result = ReadGga();
    const bool off = SendCommand(connection_, Command("$PASHS,NME,GGA,", ",OFF"));
    return off ? result : GnssReadResult::PortReadFailed;
  }

  GnssReadResult ReadGga() {
    std::string_view line = FirstLine();
    if (line.empty()) return GnssReadResult::PortReadFailed;
    if (line.find(kGga) == std::string_view::npos) line = Line(kSecondGgaTimeoutMs);
    const std::size_t at = line.find(kGga);
    if (at == std::string_view::npos) return GnssReadResult::NoPositionSentence;
    return ReadAshtechGga(line.substr(at), make_.nmea.ellipsoidHeight, state_);
  }

  GnssReadResult RunPos() {
    if (!SendCommand(connection_, Command("$PASHQ,POS,", ""))) {
      return GnssReadResult::PortReadFailed;
    }
    std::string_view line = FirstLine();
    if (line.empty()) return GnssReadResult::PortReadFailed;
    for (int further = 0; further < kFurtherLines && !line.starts_with(kPos); ++further) {
      if (line.find(kPower) != std::string_view::npos) (void)Line(kFurtherLineTimeoutMs);
      line = Line(kFurtherLineTimeoutMs);
    }
    if (!line.starts_with(kPos)) return GnssReadResult::NoPositionSentence;
    constexpr std::size_t kMode = kPos.size() + 1;  // behind the comma
    if (line.size() > kMode && line[kMode] == ',') return GnssReadResult::NoFix;
    return ReadPashrPos(line, connection_.settings.ashtech.model, state_);
  }

  GnssPositionState& state_;
  GnssConnection& connection_;
  const ReceiverMake& make_;
  std::array<char, kLineCapacity> buffer_;
  int patience_ = 100;  // for a clock that does not move
};

}  // namespace

GnssReadResult ReadAshtechPosition(GnssPositionState& state, GnssConnection& connection,
                                   const ReceiverMake& make) {
  return AshtechReading(state, connection, make).Run();
}

}  // namespace tarvex
