#include "gnss/nmea_reading.h"

#include <algorithm>
#include <array>

#include "core/text.h"
#include "gnss/line_reader.h"
#include "gnss/sentences/sentences.h"

namespace tarvex {
namespace {

constexpr int kLineTimeoutMs = 1000;
constexpr std::size_t kLineCapacity = 4096;  // binary data between the sentences has few line ends
constexpr std::int64_t kStreamWaitMs = 100;
constexpr std::size_t kStreamChunk = 1024;
constexpr std::size_t kStreamLimit = 8192;
constexpr std::size_t kStopAbove = 800;
constexpr std::size_t kShortestStreamLine = 6;

// Whether the sentence that carries the position is the one that the settings chose.
bool Selected(SentenceKind kind, const SentenceContext& context) {
  const PositionSentence chosen = context.settings.position;
  switch (kind) {
    case SentenceKind::Gga:
      return chosen == PositionSentence::Gga || context.make.reader == ReaderKind::StreamBuffered;
    case SentenceKind::Gll:
      return chosen == PositionSentence::Gll;
    case SentenceKind::Gns:
      return chosen == PositionSentence::Gns;
    case SentenceKind::Ggk:
      return chosen == PositionSentence::Ggk;
    case SentenceKind::Ggq:
      return chosen == PositionSentence::Ggq;
    case SentenceKind::PtnlGgk:
      return chosen == PositionSentence::PtnlGgk;
    default:
      return true;
  }
}

SentenceResult ReadByKind(SentenceKind kind, std::string_view line, SentenceKind previous,
                          const SentenceContext& context, GnssPositionState& state) {
  switch (kind) {
    case SentenceKind::Gsa: {
      const bool joins = context.settings.any_talker && previous == SentenceKind::Gsa;
      state.dop_carried_over = false;
      return ReadGsa(line, joins, context, state);
    }
    case SentenceKind::Gga:
      return ReadGga(line, context, state);
    case SentenceKind::Gst:
      return ReadGst(line, context, state);
    case SentenceKind::Gll:
      return ReadGll(line, context, state);
    case SentenceKind::Gns:
      return ReadGns(line, context, state);
    case SentenceKind::Ggk:
    case SentenceKind::Ggq:
    case SentenceKind::PtnlGgk:
      return ReadGgk(line, kind, context, state);
    case SentenceKind::Rre:
      return ReadRre(line, context, state);
    case SentenceKind::Rd1:
      if (!context.make.hemisphere_family || context.settings.differential_choice != kReadRd1) {
        return SentenceResult::Read;
      }
      return ReadRd1(line, state);
    case SentenceKind::Other:
      break;
  }
  return SentenceResult::Read;
}

// A source of lines: the port itself, or the text that a stream-buffered make has delivered.
class LineSource {
 public:
  LineSource(GnssConnection& connection, const ReceiverMake& make)
      : connection_(connection), make_(make) {}

  enum class Outcome { Line, Nothing, Failed, Abandoned };

  Outcome Next(std::string_view& line) {
    return make_.reader == ReaderKind::StreamBuffered ? FromStream(line) : FromPort(line);
  }

  /// The next whole line of the stream text that starts with `prefix`, looked up without taking it.
  std::string_view LookAhead(std::string_view prefix) const {
    std::string_view rest = connection_.stream_text;
    rest = rest.substr(0, rest.rfind('\n') + 1);
    while (const auto line = TakeLine(rest)) {
      if (line->size() >= kShortestStreamLine && line->starts_with(prefix)) return *line;
    }
    return {};
  }

 private:
  Outcome FromPort(std::string_view& line) {
    const ReadLineResult read =
        ReadLineHolding(*connection_.port, buffer_, kLineTimeoutMs, make_.framing);
    line = read.text;
    if (!read.ok()) return Outcome::Failed;
    return read.whole || ChecksumStands(line) ? Outcome::Line : Outcome::Nothing;
  }

  // A line stays valid until the next call: it is copied out of the text before it is taken.
  Outcome FromStream(std::string_view& line) {
    std::string& text = connection_.stream_text;
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
  Outcome StreamPass() {
    connection_.clock.SleepMilliseconds(kStreamWaitMs);
    std::size_t waiting = 0;
    if (connection_.port->BytesWaiting(waiting) != PortError::None) return Outcome::Failed;
    if (waiting > kStopAbove && connection_.stop != nullptr && connection_.stop->StopRequested()) {
      return Outcome::Abandoned;
    }
    std::array<char, kStreamChunk> chunk;
    const PortError error = connection_.port->Read(chunk, kReturnAtOnce);
    if (error != PortError::None) return Outcome::Failed;
    std::string& text = connection_.stream_text;
    text.append(chunk.data(), connection_.port->lastCount());
    if (text.size() > kStreamLimit) text.clear();  // no line end in all of it: not text
    return Outcome::Line;
  }

  GnssConnection& connection_;
  const ReceiverMake& make_;
  std::array<char, kLineCapacity> buffer_;
};

class NmeaReading {
 public:
  NmeaReading(GnssPositionState& state, GnssConnection& connection, const ReceiverMake& make)
      : state_(state),
        connection_(connection),
        context_{.settings = connection.settings, .make = make},
        source_(connection, make) {}

  GnssReadResult Run() {
    state_.dop_carried_over = true;
    for (int line = 0; line < connection_.settings.line_budget; ++line) {
      std::string_view text;
      switch (source_.Next(text)) {
        case LineSource::Outcome::Line:
          break;
        case LineSource::Outcome::Nothing:
          continue;
        case LineSource::Outcome::Failed:
          return GnssReadResult::PortReadFailed;
        case LineSource::Outcome::Abandoned:
          return GnssReadResult::NoPositionSentence;
      }
      GnssReadResult result{};
      if (Take(text, result)) return result;
    }
    return GnssReadResult::NoPositionSentence;
  }

 private:
  // True when the reading is over, with `result`.
  bool Take(std::string_view line, GnssReadResult& result) {
    state_.sentence_read_at_ms = connection_.clock.SteadyMilliseconds();
    if (connection_.listener != nullptr) connection_.listener->OnLine(line);
    switch (TakeNmeaLine(line, context_, state_, previous_)) {
      case SentenceResult::Position:
        TakePrecisionAhead();
        result = GnssReadResult::Accepted;
        return true;
      case SentenceResult::NoFix:
        result = GnssReadResult::NoFix;
        return true;
      case SentenceResult::InvalidData:
        result = GnssReadResult::InvalidData;
        return true;
      case SentenceResult::Read:
      case SentenceResult::RanOut:
        break;
    }
    return false;
  }

  // A stream-buffered make has the precision of this epoch already in its text.
  void TakePrecisionAhead() {
    if (context_.make.reader != ReaderKind::StreamBuffered) return;
    const std::string_view line = source_.LookAhead("$GPGST");
    if (line.empty() || (context_.settings.checksum && !ChecksumHolds(line))) return;
    (void)ReadGst(line, context_, state_);
  }

  GnssPositionState& state_;
  GnssConnection& connection_;
  SentenceContext context_;
  LineSource source_;
  SentenceKind previous_ = SentenceKind::Other;
};

}  // namespace

SentenceResult TakeNmeaLine(std::string_view line, const SentenceContext& context,
                            GnssPositionState& state, SentenceKind& previous) {
  const SentenceKind kind = KindOf(line, context.settings.any_talker);
  const SentenceKind before = previous;
  previous = kind;
  if (kind == SentenceKind::Other || !Selected(kind, context)) return SentenceResult::Read;
  if (context.settings.checksum && !ChecksumHolds(line)) {
    ++state.bad_checksums;
    return SentenceResult::Read;
  }
  return ReadByKind(kind, line, before, context, state);
}

GnssReadResult ReadNmeaPosition(GnssPositionState& state, GnssConnection& connection,
                                const ReceiverMake& make) {
  return NmeaReading(state, connection, make).Run();
}

}  // namespace tarvex
