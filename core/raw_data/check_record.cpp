#include "core/raw_data/check_record.h"

#include <cmath>

#include "core/raw_data/record_text.h"

namespace tarvex {
namespace {

constexpr int kDecimals = 4;

// The first field of these comments follows a colon.
RecordText Line(const char* name, const char* tag, const std::string& value) {
  return RecordText(std::string("--Check ") + name + ":" + tag + value);
}

RecordText& AddPlace(RecordText& record, const GridPoint& at) {
  return record.Number("E ", at.easting, kDecimals).Number("EL", at.elevation, kDecimals);
}

// What is written as nothing has no sign.
double WithoutSignOfZero(double value) {
  return std::fabs(value) < 0.5e-4 ? 0.0 : value;
}

}  // namespace

void CompareCheck(CheckRecord& check) {
  check.difference = {check.found.northing - check.known.at.northing,
                      check.found.easting - check.known.at.easting,
                      check.found.elevation - check.known.at.elevation};
  check.distance = std::hypot(check.difference.northing, check.difference.easting);
  check.passed = check.distance <= check.horizontalTolerance &&
                 std::fabs(check.difference.elevation) <= check.verticalTolerance;
}

std::string CheckComments(const CheckRecord& check) {
  RecordText known = Line("known", "PN", check.known.id.str());
  known.Number("N ", check.known.at.northing, kDecimals);
  AddPlace(known, check.known.at).Description(check.known.description.view());
  RecordText found = Line("found", "N ", FixedNumber(check.found.northing, kDecimals));
  AddPlace(found, check.found)
      .Angle("LA", check.latitudeDegrees, 12)
      .Angle("LN", check.longitudeDegrees, 12)
      .Number("HT", check.heightM, kDecimals)
      .Number("HR", check.antennaHeight, kDecimals);
  const GridPoint difference = {WithoutSignOfZero(check.difference.northing),
                                WithoutSignOfZero(check.difference.easting),
                                WithoutSignOfZero(check.difference.elevation)};
  RecordText between = Line("difference", "N ", FixedNumber(difference.northing, kDecimals));
  AddPlace(between, difference)
      .Number("HD", check.distance, kDecimals)
      .Number("HT", check.horizontalTolerance, kDecimals)
      .Number("VT", check.verticalTolerance, kDecimals)
      .Description(check.passed ? "passed" : "failed");
  return known.str() + found.str() + between.str();
}

}  // namespace tarvex
