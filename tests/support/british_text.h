// A text of the form in which the British agency publishes its shift grid.
#pragma once

#include <string>

namespace tarvex {

/// All 701 x 1251 nodes, without a shift but around one place at `column`, `row`: there the
/// published shifts of the 2015 edition near the water tower at 651 km east, 313 km north.
inline std::string BritishText(int column = 651, int row = 313) {
  static constexpr const char* kShifts[2][2] = {
      {",102.791,-78.231,44.0,1\n", ",102.827,-78.238,44.0,1\n"},
      {",102.798,-78.210,44.0,1\n", ",102.836,-78.220,44.0,1\n"}};
  std::string text = "Point_ID,Easting,Northing,EShift,NShift,HShift,Datum\n";
  for (int j = 0; j <= 1250; ++j) {
    for (int i = 0; i <= 700; ++i) {
      const bool shifted = (j == row || j == row + 1) && (i == column || i == column + 1);
      text += std::to_string(j * 701 + i + 1) + ',' + std::to_string(i * 1000) + ',' +
              std::to_string(j * 1000) +
              (shifted ? kShifts[j - row][i - column] : ",0.000,0.000,0.000,0\n");
    }
  }
  return text;
}

}  // namespace tarvex
