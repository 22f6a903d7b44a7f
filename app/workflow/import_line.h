// The columns of a text file of points, and a line of it taken apart.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarvex {

struct ImportColumns {
  /// A letter a column: P the point's id, N northing, E easting, Z elevation, D description, - one
  /// that is passed over. P, N, E and Z stand in it once each, D at most once.
  std::string order = "PNEZD";
  char separator = ',';  ///< ' ': any number of blanks and tabs
};

/// False when the letters do not name the columns of a point file.
bool IsColumnOrder(std::string_view order);

/// As written, without outer blanks and without the quotes that spreadsheets put around a field
/// ("nail, ""red""" is nail, "red").
struct ImportLine {
  std::string id;
  std::string northing;
  std::string easting;
  std::string elevation;
  std::string description;  ///< in the last column the whole rest of the line
};

/// Nothing when the line has too few fields.
std::optional<ImportLine> ReadImportLine(std::string_view line, const ImportColumns& columns);

/// Names of columns where the numbers of a point would be.
bool IsHeading(const ImportLine& line);

}  // namespace tarvex
