// What the bytes of a geoid model file hold, told by its header (docs/formats/grids.md). The nodes
// stay in the file's own bytes, so that a model costs the memory of its file.
#pragma once

#include <cstddef>
#include <string>

#include "coordsys/grids/grid_geometry.h"
#include "coordsys/grids/grid_status.h"
#include "core/codec/byte_codec.h"
#include "platform/file_bytes.h"

namespace tarvex {

enum class GeoidNodeKind { Float32, Float64, Pixel16 };

/// How a form's undulations are found between its nodes.
enum class GeoidInterpolation { Bilinear, Biquadratic, Cubic12 };

/// Where a node is in the bytes and what its number means.
struct GeoidLayout {
  std::size_t first = 0;         ///< byte of the south-west node
  std::ptrdiff_t rowStride = 0;  ///< bytes from a row to the next one north
  GeoidNodeKind kind = GeoidNodeKind::Float32;
  ByteOrder order = ByteOrder::Little;
  double offsetM = 0.0;  ///< of a pixel
  double scaleM = 1.0;
  double noData = -88.8888;
  GeoidInterpolation between = GeoidInterpolation::Bilinear;
};

struct GeoidFile {
  FileBytes bytes;
  GeoidLayout layout;
  GridGeometry geometry;  ///< degrees; a grid around the earth has its first column twice
  int storedColumns = 0;
  bool aroundEarth = false;
};

/// The ending of `path` tells the form.
GridStatus ParseGeoidFile(FileBytes bytes, const std::string& path, GeoidFile& file);

}  // namespace tarvex
