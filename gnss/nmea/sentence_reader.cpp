#include "gnss/nmea/sentence_reader.h"

#include "gnss/nmea/sentence_line.h"
#include "gnss/nmea/sentences.h"

namespace tarvex {

const Sentence* SentenceReader::Find(std::string_view line) const {
  return FindSentence(settings_.resync ? SentenceIn(line) : line, settings_.anyTalker);
}

bool SentenceReader::CarriesChosenPosition(const Sentence& sentence) const {
  if (sentence.carries != Carries::Position) return false;
  return sentence.nmeaPos == settings_.position ||
         (traits_.streamBuffered && sentence.read == ReadGga);
}

SentenceResult SentenceReader::Take(std::string_view line, GnssPositionState& state) {
  if (settings_.resync) line = SentenceIn(line);
  const Sentence* const before = last_;
  last_ = FindSentence(line, settings_.anyTalker);
  if (last_ == nullptr) return SentenceResult::Read;
  if (last_->carries == Carries::Position && !CarriesChosenPosition(*last_)) {
    return SentenceResult::Read;
  }
  if (settings_.checksum && !ChecksumHolds(line)) {
    ++state.badChecksums;
    return SentenceResult::Read;
  }
  return last_->read(line, {.settings = settings_, .traits = traits_, .before = before}, state);
}

}  // namespace tarvex
