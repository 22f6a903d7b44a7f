#include "gnss/nmea_reading.h"

#include "gnss/line_source.h"
#include "gnss/sentences/sentences.h"

namespace tarvex {
namespace {

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
