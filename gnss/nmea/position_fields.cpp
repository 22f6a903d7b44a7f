#include "gnss/nmea/position_fields.h"

#include "gnss/nmea/nmea_number.h"

namespace tarvex {
namespace {

// An angle and its hemisphere: the value is taken as soon as it is there, the sign with the letter.
bool TakeAngle(FieldCursor& fields, char negative, double& degrees) {
  std::string_view field;
  if (!fields.Take(field)) return false;
  degrees = DegreesFromNmea(NmeaNumber(field));
  if (!fields.Take(field)) return false;
  if (field.starts_with(negative)) degrees = -degrees;
  return true;
}

}  // namespace

bool TakeLatitudeLongitude(FieldCursor& fields, GnssPositionState& state) {
  return TakeAngle(fields, 'S', state.latitude) && TakeAngle(fields, 'W', state.longitude);
}

bool TakeSatellitesAndHeight(FieldCursor& fields, GnssPositionState& state) {
  std::string_view field;
  if (!fields.Take(field)) return false;
  state.satellites = NmeaInteger(field);
  if (!fields.Take(field)) return false;
  state.hdop = NmeaNumber(field);
  if (!fields.Take(field)) return false;
  state.height = NmeaNumber(field);
  state.heightKnown = !field.empty();
  return true;
}

bool TakeSeparation(FieldCursor& fields, const NmeaTraits& traits, GnssPositionState& state) {
  std::string_view field;
  if (!fields.Take(field)) return false;
  state.geoidSeparation = NmeaNumber(field);
  state.separationKnown = !field.empty() || traits.ellipsoidHeight;
  if (!traits.ellipsoidHeight) state.height += state.geoidSeparation;
  return true;
}

bool PositionAndQualityEmpty(FieldCursor fields) {
  if (!fields.NextIsEmpty()) return false;
  constexpr int kPositionAndQuality = 5;
  std::string_view field;
  for (int i = 0; i < kPositionAndQuality; ++i) {
    if (!fields.Take(field) || !field.empty()) return false;
  }
  return true;
}

std::string_view WithoutHeightPrefix(std::string_view field) {
  while (!field.empty() &&
         ((field[0] >= 'A' && field[0] <= 'Z') || (field[0] >= 'a' && field[0] <= 'z'))) {
    field.remove_prefix(1);
  }
  return field;
}

}  // namespace tarvex
