// What the raw file says of every point of a job, by its last record.
#pragma once

#include <array>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/points/point.h"

namespace tarvex {

struct PointIdHash {
  std::size_t operator()(const PointId& id) const {
    return std::hash<std::string_view>()(id.view());
  }
};

/// The last of a point: a record that stored it, or the comment that it was deleted.
struct PointHistory {
  enum class Last {
    Typed,     ///< SP
    Position,  ///< GPS
    Shot,      ///< SS, TR
    Deleted    ///< or the store of it was taken back
  };
  Last last = Last::Typed;
  std::size_t line = 0;
  bool hasCoordinates = false;
  std::array<std::string_view, 3> coordinates;  ///< N, E, EL as the file has them
};

struct BrokenRecord {
  std::size_t line = 0;
  std::string_view text;
};

struct RawHistory {
  std::unordered_map<PointId, PointHistory, PointIdHash> points;
  std::vector<BrokenRecord> broken;
  std::size_t records = 0;       ///< without comments
  std::string_view layout = {};  ///< "Alphanumeric" or "Numeric", as the header says
};

/// The id under which a point of the job is known, from any spelling.
PointId HistoryKey(std::string_view id, bool alphanumeric);

/// `text` outlives the history, which points into it.
RawHistory ReadRawHistory(std::string_view text, bool alphanumeric);

}  // namespace tarvex
