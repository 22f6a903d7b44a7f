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
