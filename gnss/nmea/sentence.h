// A sentence as the system knows it: how a line is recognised as one, and what reads it.
#pragma once

#include <string_view>

#include "gnss/nmea/nmea_settings.h"
#include "gnss/position/position_state.h"

namespace tarvex {

enum class [[nodiscard]] SentenceResult {
  Read,         ///< values taken, the position is not complete
  Position,     ///< the position is complete
  RanOut,       ///< the fields ended part-way; what was taken stays
  NoFix,        ///< the receiver says that it has no position
  InvalidData,  ///< two sentences run together
};

struct Sentence;

/// What the functions that read sentences need to know beside the line.
struct SentenceContext {
  const NmeaSettings& settings;
  const NmeaTraits& traits;
  const Sentence* before = nullptr;  ///< what the line before was; null: nothing that is known
};

/// What a sentence tells.
enum class Carries {
  Details,    ///< satellites, diagnostics
  Precision,  ///< of the epoch
  Position,
};

struct Sentence {
  /// The three letters behind the talker ("GGA"); of a proprietary sentence all that its lines
  /// start with behind the '$'.
  std::string_view type;
  /// The talkers that are always known, blanks between them; empty: proprietary, has none.
  std::string_view talkers = "GP";
  bool anyTalker = false;  ///< nmea_any_talker makes any two letters known
  Carries carries = Carries::Details;
  /// Takes the fields in their order into the state; where they run out it stops, and what was
  /// taken stays.
  SentenceResult (*read)(std::string_view line, const SentenceContext& context,
                         GnssPositionState& state) = nullptr;
  // Of a sentence that carries a position:
  int nmeaPos = 0;    ///< the value of nmea_pos that selects it
  int timeField = 0;  ///< where its UTC time is; the prefix is field 0
};

}  // namespace tarvex
