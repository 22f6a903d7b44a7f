// The head of an ".isg" geoid, text of the International Service for the Geoid, versions 1 and 2:
// lines "key : value" or "key = value" from "begin_of_head" to "end_of_head". Behind it are the
// rows from the north, west to east.
#pragma once

#include <string>
#include <string_view>

#include "coordsys/grids/grid_status.h"

namespace tarvex {

struct IsgHeader {
  double west = 0.0;  ///< of the first node, degrees
  double south = 0.0;
  double stepLon = 0.0;
  double stepLat = 0.0;
  double columns = 0.0;
  double rows = 0.0;
  double noData = -9999.0;
  std::string_view nodes;  ///< the text behind the head
  int lines = 0;           ///< of the head
};

GridStatus ReadIsgHeader(std::string_view text, const std::string& path, IsgHeader& header);

}  // namespace tarvex
