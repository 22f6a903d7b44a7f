// Writes centerline files: records in every form that docs/formats/cl.md lists, the terminator, the
// station equations after it.
//
// What is written loads to the same chain, within the decimals of the format: where key points
// coincide, a further record keeps the reader from merging them. Two things have no record: a
// lead-in vertex whose "TS" was merged away, and that a key point within the records of a spiral
// group has no id where the one before it has one. An alignment with a start point gets a closing
// record before "STARTPT", where reading stops.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file.h"
#include "roads/centerline.h"
#include "roads/station_equations.h"

namespace tarvex {

/// Decimals of stations and coordinates, and whether point ids are written; "0" is written for
/// them. Files of the system have 3 to 6 decimals of stations and 5 to 12 of coordinates.
struct CenterlineFormat {
  int stationDecimals = 5;
  int coordinateDecimals = 6;
  int vertexDecimals = 6;      ///< coordinates of "L" and "PT"
  int curveStartDecimals = 6;  ///< coordinates of "PC"
  bool pointIds = false;
};

/// The two forms that the format's own writers use, and the one with the most digits.
inline constexpr CenterlineFormat kPlainCenterline{};
inline constexpr CenterlineFormat kCenterlineWithIds{5, 6, 5, 8, true};
inline constexpr CenterlineFormat kExactCenterline{6, 12, 12, 12, true};

/// Ends the key points of a file.
inline constexpr std::string_view kCenterlineTerminator = "0,0,L,0,0\n";

/// The records of a chain, a line or two each: what the reader made (lead-in vertices) is
/// left out, and a vertex that kept a curve's angle becomes an "ST" with that angle.
std::string CenterlineRecords(std::span<const CenterlineElement> chain,
                              const CenterlineFormat& format);

/// The whole file: records, terminator (with a start point: closing record, "STARTPT", terminator),
/// one "EQ" record per station equation.
std::string CenterlineText(const Centerline& centerline, std::span<const StationEquation> equations,
                           const CenterlineFormat& format = kExactCenterline);

/// `text` with the station field of each named line replaced; every other byte stays. `stations`
/// holds line numbers (from 1) in rising order.
struct LineStation {
  int line = 0;
  double station = 0.0;
};
std::string WithStations(std::string_view text, std::span<const LineStation> stations,
                         int decimals);

/// True when every number of the chain can be written: none is infinite.
bool IsWritable(const Centerline& centerline, std::span<const StationEquation> equations);

}  // namespace tarvex
