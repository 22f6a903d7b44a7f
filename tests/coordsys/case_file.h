// Reads the plain text case files under tests/data/coordsys: a geodesist adds a case there without
// touching C++. The files say their own format in their first lines.
#pragma once

#include <string>
#include <vector>

namespace tarvex {

struct GeodesyCase {
  std::string definition;
  bool forward = false;
  bool inverse = false;
  double toleranceM = 0.0;
  double metresPerUnit = 1.0;
  double latitudeDeg = 0.0;
  double longitudeDeg = 0.0;
  double northing = 0.0;  ///< in the case's unit
  double easting = 0.0;
  std::string where;  ///< file:line and source
};

/// All cases of a file; a line that cannot be read is a failure of the test that asks.
std::vector<GeodesyCase> ReadCases(const std::string& fileName);

}  // namespace tarvex
