#include "core/text/field_cursor.h"
#include "gnss/nmea/nmea_number.h"
#include "gnss/nmea/sentences.h"

namespace tarvex {
namespace {

std::size_t SlotsInUse(const GnssPositionState& state) {
  std::size_t count = 0;
  while (count < kSatelliteSlots && state.usedSatellites[count].inUse != 0) ++count;
  return count;
}

// Receivers of several systems send one GSA a system.
bool JoinsTheOneBefore(const SentenceContext& context) {
  return context.settings.anyTalker && context.before != nullptr && context.before->read == ReadGsa;
}

}  // namespace

SentenceResult ReadGsa(std::string_view line, const SentenceContext& context,
                       GnssPositionState& state) {
  constexpr int kPrns = 12;
  state.dopCarriedOver = false;
  FieldCursor fields(line);
  if (!fields.Skip(3)) return SentenceResult::RanOut;
  if (!JoinsTheOneBefore(context)) {
    state.usedSatellites = {};
    state.satellites = 0;
  }
  std::size_t slot = SlotsInUse(state);
  std::string_view field;
  for (int i = 0; i < kPrns; ++i) {
    if (!fields.Take(field)) return SentenceResult::RanOut;
    if (field.empty()) continue;
    if (slot < kSatelliteSlots) {
      state.usedSatellites[slot++] = {.prn = NmeaInteger(field), .inUse = 1};
    }
    ++state.satellites;
  }
  if (!fields.Take(field)) return SentenceResult::RanOut;
  state.pdop = NmeaNumber(field);
  if (!fields.Take(field)) return SentenceResult::RanOut;
  state.hdop = NmeaNumber(field);
  if (!fields.Take(field)) return SentenceResult::RanOut;
  state.vdop = NmeaNumber(context.traits.hemisphereFamily ? FirstField(field, '*') : field);
  return SentenceResult::Read;
}

}  // namespace tarvex
