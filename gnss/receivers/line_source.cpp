#include "gnss/receivers/line_source.h"

#include <algorithm>
#include <string>

#include "core/text/text.h"
#include "gnss/nmea/sentence_line.h"

namespace tarvex {
namespace {

constexpr int kLineTimeoutMs = 1000;
constexpr std::int64_t kStreamWaitMs = 100;
constexpr std::size_t kStreamChunk = 1024;
constexpr std::size_t kStreamLimit = 8192;
constexpr std::size_t kStopAbove = 800;
constexpr std::size_t kShortestStreamLine = 6;

}  // namespace

LineSource::Outcome LineSource::Next(std::string_view& line) {
  if (Returned(line)) return Outcome::Line;
  if (deadline_.Passed()) return Outcome::OutOfTime;
  const Outcome outcome = Read(line);
  if (outcome == Outcome::Line && connection_.listener != nullptr) {
    connection_.listener->OnLine(line);
  }
  return outcome;
}

bool LineSource::Returned(std::string_view& line) {
  std::string& returned = connection_.returnedLine;
  if (returned.empty()) return false;
  std::copy(returned.begin(), returned.end(), buffer_.begin());
  line = {buffer_.data(), returned.size()};
  returned.clear();
  return true;
}

LineSource::Outcome LineSource::Read(std::string_view& line) {
  return make_.nmea.streamBuffered ? FromStream(line) : FromPort(line);
}

std::string_view LineSource::LookAhead(std::string_view prefix) const {
  std::string_view rest = connection_.streamText;
  rest = rest.substr(0, rest.rfind('\n') + 1);
  while (const auto line = TakeLine(rest)) {
    if (line->size() >= kShortestStreamLine && line->starts_with(prefix)) return *line;
  }
  return {};
}

LineSource::Outcome LineSource::FromPort(std::string_view& line) {
  const ReadLineResult read =
      ReadLineHolding(*connection_.port, buffer_, kLineTimeoutMs, make_.framing, deadline_);
  line = read.text;
  if (!read.ok()) {
    // A receiver that sends, but no position, is not silent: its time is up in the middle of a
    // wait.
    return deadline_.Passed() && !connection_.ended() ? Outcome::OutOfTime : Outcome::Failed;
  }
  const bool whole =
      read.whole || HasGoodChecksum(connection_.settings.nmea.resync ? SentenceIn(line) : line);
  return whole ? Outcome::Line : Outcome::Nothing;
}

// The line is copied out of the text before it is taken.
LineSource::Outcome LineSource::FromStream(std::string_view& line) {
  std::string& text = connection_.streamText;
  std::size_t end = text.find('\n');
  if (end == std::string::npos) {
    const Outcome pass = StreamPass();
    if (pass != Outcome::Line) return pass;
    end = text.find('\n');
    if (end == std::string::npos) return Outcome::Nothing;
  }
  std::string_view rest = text;
  const std::string_view first = TakeLine(rest).value_or("").substr(0, buffer_.size());
  std::copy(first.begin(), first.end(), buffer_.begin());
  line = {buffer_.data(), first.size()};
  text.erase(0, end + 1);
  return Outcome::Line;
}

// Waits a little and takes what the buffer holds. Whoever is asked to stop while much is waiting
// leaves it.
LineSource::Outcome LineSource::StreamPass() {
  connection_.clock.SleepMilliseconds(kStreamWaitMs);
  std::size_t waiting = 0;
  if (connection_.port->BytesWaiting(waiting) != PortError::None) return Outcome::Failed;
  if (waiting > kStopAbove && connection_.stop != nullptr && connection_.stop->StopRequested()) {
    return Outcome::Abandoned;
  }
  std::array<char, kStreamChunk> chunk;
  const PortError error = connection_.port->Read(chunk, kReturnAtOnce);
  if (error != PortError::None) return Outcome::Failed;
  std::string& text = connection_.streamText;
  text.append(chunk.data(), connection_.port->lastCount());
  if (text.size() > kStreamLimit) text.clear();  // no line end in all of it: not text
  return Outcome::Line;
}

}  // namespace tarvex
