// The British grid ("ostn02_x.bin" and "ostn02_y.bin"): shifts in metres from the ETRS89 transverse
// Mercator grid to the National Grid.
//
// Coordinates are ETRS89 easting and northing in metres; nodes are every kilometre from (0, 0);
// between nodes the shift is bilinear. The files are our own compact form of the agency's text
// "OSTN02_OSGM02_GB.txt" (or its successor of 2015, which has the same columns), a 16-bit number of
// millimetres a node; PackOstn02 makes them, docs/formats/grids.md has the layout.
// Source: Ordnance Survey, "Transformations and OSGM02 user guide".
#pragma once

#include <string>

#include "coordsys/grids/grid_geometry.h"
#include "coordsys/grids/grid_status.h"
#include "coordsys/grids/grid_surface.h"
#include "coordsys/grids/load_progress.h"
#include "platform/file_bytes.h"

namespace tarvex {

/// One of the two files.
class Ostn02Part {
 public:
  static GridStatus Load(FileSystem& files, const std::string& path, Ostn02Part& part);
  static GridStatus Parse(FileBytes bytes, const std::string& path, Ostn02Part& part);

  /// The shift in metres; NoCorrection where a node lies outside of the country.
  SurfaceValue At(double eastingM, double northingM) const noexcept;

  const GridGeometry& geometry() const { return geometry_; }

 private:
  std::uint16_t Node(int column, int row) const noexcept;

  FileBytes bytes_;
  GridGeometry geometry_;
  double baseMm_ = 0.0;
};

/// Makes the bytes of both files from the agency's text: comma-separated lines of record number,
/// easting, northing, shift east, shift north, height shift, datum flag (0: no shift here).
/// `progress` may be null.
GridStatus PackOstn02(std::string_view text, const std::string& path, LoadProgress* progress,
                      std::string& packedX, std::string& packedY);

}  // namespace tarvex
