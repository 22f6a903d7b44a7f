#include "gnss/receivers/nmea_reading.h"

#include "gnss/nmea/sentences.h"
#include "gnss/receivers/line_source.h"

namespace tarvex {
namespace {

// The kind of the sentence that stands in a line.
SentenceKind KindOfLine(std::string_view line, const ReceiverSettings& settings) {
  return KindOf(settings.resync ? SentenceIn(line) : line, settings.anyTalker);
}

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
      const bool joins = context.settings.anyTalker && previous == SentenceKind::Gsa;
      state.dopCarriedOver = false;
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
      if (!context.make.hemisphereFamily || context.settings.differentialChoice != kReadRd1) {
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
  NmeaReading(GnssPositionState& state, GnssConnection& connection, const ReceiverMake& make,
              const ReadDeadline& deadline)
      : state_(state),
        connection_(connection),
        context_{.settings = connection.settings, .make = make},
        source_(connection, make, deadline),
        linesLeft_(connection.settings.lineBudget > 0 ? connection.settings.lineBudget
                                                      : make.lineBudget) {}

  GnssReadResult Run() {
    state_.dopCarriedOver = true;
    for (; linesLeft_ > 0; --linesLeft_) {
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
        case LineSource::Outcome::OutOfTime:
          return IsSilent() ? GnssReadResult::PortReadFailed : GnssReadResult::NoPositionSentence;
      }
      GnssReadResult result{};
      if (Take(text, result)) return result;
    }
    return GnssReadResult::NoPositionSentence;
  }

 private:
  // No line of any kind has come for as long as one is waited for.
  bool IsSilent() const {
    constexpr std::int64_t kSilenceMs = 1000;
    return connection_.clock.SteadyMilliseconds() - state_.sentenceReadAtMs >= kSilenceMs;
  }

  // True when the reading is over, with `result`.
  bool Take(std::string_view line, GnssReadResult& result) {
    switch (TakeLine(line)) {
      case SentenceResult::Position:
        TakePrecisionAhead();
        NoteOrder();
        AwaitPrecision();
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

  SentenceResult TakeLine(std::string_view line) {
    state_.sentenceReadAtMs = connection_.clock.SteadyMilliseconds();
    const SentenceResult result = TakeNmeaLine(line, context_, state_, previous_);
    if (previous_ == SentenceKind::Gst && PrecisionIsOf(connection_.acceptedEpochMs)) {
      connection_.precisionOrder = PrecisionOrder::Behind;
    }
    return result;
  }

  // A stream-buffered make has the precision of this epoch already in its text.
  void TakePrecisionAhead() {
    if (context_.make.reader != ReaderKind::StreamBuffered) return;
    const std::string_view line = source_.LookAhead("$GPGST");
    if (line.empty() || (context_.settings.checksum && !ChecksumHolds(line))) return;
    (void)ReadGst(line, context_, state_);
  }

  bool PrecisionIsOf(std::int32_t epochMs) const {
    return epochMs != kNoEpoch && state_.precisionEpochMs == epochMs;
  }

  // What the position that has come says of the order of the sentences.
  void NoteOrder() {
    const std::int32_t before = connection_.acceptedEpochMs;
    if (PrecisionIsOf(state_.epochMs)) {
      connection_.precisionOrder = PrecisionOrder::Before;
    } else if (connection_.precisionOrder == PrecisionOrder::Unknown && before != kNoEpoch &&
               before != state_.epochMs) {
      connection_.precisionOrder = PrecisionOrder::None;
    }
  }

  // Reads the epoch on to its precision, as far as the next position at most.
  void AwaitPrecision() {
    PrecisionOrder& order = connection_.precisionOrder;
    if (!context_.settings.awaitPrecision || context_.settings.noRms) return;
    if (order != PrecisionOrder::Unknown && order != PrecisionOrder::Behind) return;
    const std::int32_t satellites = state_.satellites;  // those of the position stay
    order = ReadOnToPrecision() ? PrecisionOrder::Behind : PrecisionOrder::None;
    state_.satellites = satellites;
  }

  bool ReadOnToPrecision() {
    for (; linesLeft_ > 0; --linesLeft_) {
      std::string_view text;
      const LineSource::Outcome outcome = source_.Next(text);
      if (outcome == LineSource::Outcome::Nothing) continue;
      if (outcome != LineSource::Outcome::Line) return false;
      const SentenceKind kind = KindOfLine(text, context_.settings);
      if (CarriesPosition(kind) && Selected(kind, context_)) {
        source_.GiveBack(text);
        return false;
      }
      const SentenceResult result = TakeLine(text);
      const bool precision = kind == SentenceKind::Gst || kind == SentenceKind::Rre;
      if (precision && result == SentenceResult::Read) return true;
    }
    return false;
  }

  GnssPositionState& state_;
  GnssConnection& connection_;
  SentenceContext context_;
  LineSource source_;
  int linesLeft_;
  SentenceKind previous_ = SentenceKind::Other;
};

ReadDeadline DeadlineOf(const GnssConnection& connection, const ReceiverMake& make) {
  const int budget =
      connection.settings.timeBudgetMs > 0 ? connection.settings.timeBudgetMs : make.timeBudgetMs;
  const std::int64_t byBudget =
      budget > 0 ? connection.clock.SteadyMilliseconds() + budget : kNoDeadline;
  return connection.DeadlineBy(byBudget);
}

}  // namespace

SentenceResult TakeNmeaLine(std::string_view line, const SentenceContext& context,
                            GnssPositionState& state, SentenceKind& previous) {
  if (context.settings.resync) line = SentenceIn(line);
  const SentenceKind kind = KindOf(line, context.settings.anyTalker);
  const SentenceKind before = previous;
  previous = kind;
  if (kind == SentenceKind::Other || !Selected(kind, context)) return SentenceResult::Read;
  if (context.settings.checksum && !ChecksumHolds(line)) {
    ++state.badChecksums;
    return SentenceResult::Read;
  }
  return ReadByKind(kind, line, before, context, state);
}

GnssReadResult ReadNmeaPosition(GnssPositionState& state, GnssConnection& connection,
                                const ReceiverMake& make) {
  return NmeaReading(state, connection, make, DeadlineOf(connection, make)).Run();
}

}  // namespace tarvex
