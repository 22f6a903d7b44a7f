// The head of a ".pgm" geoid: "P5", remarks with "# Offset M" and "# Scale M", width and height,
// 65535. Behind it are the pixels, 16 bits big endian, from 90 north 0 east.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "coordsys/grids/grid_status.h"

namespace tarvex {

struct PgmHeader {
  double offsetM = 0.0;  ///< the undulation is the offset and the scale times the pixel
  double scaleM = 0.0;
  double columns = 0.0;
  double rows = 0.0;
  std::size_t pixelsAt = 0;  ///< byte of the first pixel
};

GridStatus ReadPgmHeader(std::string_view bytes, const std::string& path, PgmHeader& header);

}  // namespace tarvex
