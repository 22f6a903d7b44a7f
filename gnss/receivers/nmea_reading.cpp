#include "gnss/receivers/nmea_reading.h"

#include "gnss/nmea/sentence_line.h"
#include "gnss/nmea/sentence_reader.h"
#include "gnss/nmea/sentences.h"
#include "gnss/receivers/line_source.h"

namespace tarvex {
namespace {

class NmeaReading {
 public:
  NmeaReading(GnssPositionState& state, GnssConnection& connection, const ReceiverMake& make,
              const ReadDeadline& deadline)
      : state_(state),
        connection_(connection),
        make_(make),
        reader_(connection.settings.nmea, make.nmea),
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
    const SentenceResult result = reader_.Take(line, state_);
    if (CarriesPrecision(reader_.last()) && PrecisionIsOf(connection_.linkEpochMs)) {
      connection_.precisionOrder = PrecisionOrder::Behind;
    }
    return result;
  }

  // A stream-buffered make has the precision of this epoch already in its text.
  void TakePrecisionAhead() {
    if (!make_.nmea.streamBuffered) return;
    const NmeaSettings& settings = connection_.settings.nmea;
    const std::string_view line = source_.LookAhead("$GPGST");
    if (line.empty() || (settings.checksum && !ChecksumHolds(line))) return;
    (void)ReadGst(line, {.settings = settings, .traits = make_.nmea}, state_);
  }

  static bool CarriesPrecision(const Sentence* sentence) {
    return sentence != nullptr && sentence->carries == Carries::Precision;
  }

  bool PrecisionIsOf(std::int32_t epochMs) const {
    return epochMs != kNoEpoch && state_.precisionEpochMs == epochMs;
  }

  // What the position that has come says of the order of the sentences.
  void NoteOrder() {
    const std::int32_t before = connection_.linkEpochMs;
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
    if (!connection_.settings.awaitPrecision || connection_.settings.noRms) return;
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
      const Sentence* const sentence = reader_.Find(text);
      if (sentence != nullptr && reader_.CarriesChosenPosition(*sentence)) {
        source_.GiveBack(text);
        return false;
      }
      const SentenceResult result = TakeLine(text);
      if (CarriesPrecision(sentence) && result == SentenceResult::Read) return true;
    }
    return false;
  }

  GnssPositionState& state_;
  GnssConnection& connection_;
  const ReceiverMake& make_;
  SentenceReader reader_;
  LineSource source_;
  int linesLeft_;
};

ReadDeadline DeadlineOf(const GnssConnection& connection, const ReceiverMake& make) {
  const int budget =
      connection.settings.timeBudgetMs > 0 ? connection.settings.timeBudgetMs : make.timeBudgetMs;
  const std::int64_t byBudget =
      budget > 0 ? connection.clock.SteadyMilliseconds() + budget : kNoDeadline;
  return connection.DeadlineBy(byBudget);
}

}  // namespace

GnssReadResult ReadNmeaPosition(GnssPositionState& state, GnssConnection& connection,
                                const ReceiverMake& make) {
  return NmeaReading(state, connection, make, DeadlineOf(connection, make)).Run();
}

}  // namespace tarvex
