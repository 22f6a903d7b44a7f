// The comments of a check on a known point: what is known, what was measured, what lies between.
// The point itself is not stored.
//
//   --Check known:PNBM1,N 5184900.0000,E 520300.0000,EL1100.2500,--bench mark
//   --Check found:N 5184900.0060,E 520299.9960,EL1100.2550,LA46.48...,LN9.16...,HT1102.255,HR2.0000
//   --Check difference:N 0.0060,E -0.0040,EL0.0050,HD0.0072,HT0.0300,VT0.0500,--passed
//
// Coordinates are in the job's unit, differences are found minus known.
#pragma once

#include <string>

#include "core/points/point.h"

namespace tarvex {

struct CheckRecord {
  Point known;
  GridPoint found;
  double latitudeDegrees = 0.0;   ///< of the antenna, as received
  double longitudeDegrees = 0.0;  ///< as received
  double heightM = 0.0;           ///< as received
  double antennaHeight = 0.0;     ///< job's unit
  GridPoint difference;           ///< found minus known
  double distance = 0.0;          ///< horizontal
  double horizontalTolerance = 0.0;
  double verticalTolerance = 0.0;
  bool passed = false;
};

/// Fills the differences, and whether they are within the tolerances.
void CompareCheck(CheckRecord& check);

/// The three comments as one text, which starts with "\n".
std::string CheckComments(const CheckRecord& check);

}  // namespace tarvex
