// Lines into a position state, one after the other.
#pragma once

#include <string_view>

#include "gnss/nmea/sentence.h"

namespace tarvex {

class SentenceReader {
 public:
  /// Neither is owned.
  SentenceReader(const NmeaSettings& settings, const NmeaTraits& traits)
      : settings_(settings), traits_(traits) {}

  /// Takes a line into the state; Read when nothing was to be taken: no sentence that is known, a
  /// position sentence that was not chosen, a wrong checksum (which is counted).
  SentenceResult Take(std::string_view line, GnssPositionState& state);

  /// The sentence of the line that was taken last; null when it was none that is known.
  const Sentence* last() const { return last_; }

  /// The sentence that Take would find in a line.
  const Sentence* Find(std::string_view line) const;
  /// Whether a sentence carries the position that the settings and the make ask for.
  bool CarriesChosenPosition(const Sentence& sentence) const;

 private:
  const NmeaSettings& settings_;
  const NmeaTraits& traits_;
  const Sentence* last_ = nullptr;
};

}  // namespace tarvex
