// Geoid model files: heights of the geoid above the ellipsoid at the nodes of a regular grid of
// latitude and longitude.
//
// The file's ending gives the form (docs/formats/grids.md has the layouts):
//   .gtx  big-endian floats, south to north; bilinear between nodes, as its peers interpolate
//   .bin  the American agency's form in either byte order; biquadratic over the nine nodes around
//         the nearest one, as the agency's own tool does
//   .pgm  16-bit pixels of the whole earth, north to south; the twelve-node cubic of C. Karney
//   .isg  text of the International Service for the Geoid, versions 1 and 2; bilinear
// Positions are radians, north and east positive, on WGS84 or the model's own datum (a metre or two
// between them do not matter); undulations are metres. A grid around the whole earth closes on
// itself. Nodes stay in the file's own bytes, so that a model costs the memory of its file.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "coordsys/geoid/geoid_file.h"
#include "coordsys/grids/grid_geometry.h"
#include "coordsys/grids/grid_status.h"

namespace tarvex {

class GeoidGrid {
 public:
  static GridStatus Load(FileSystem& files, const std::string& path, GeoidGrid& grid);
  /// The ending of `path` tells the form.
  static GridStatus Parse(FileBytes bytes, const std::string& path, GeoidGrid& grid);

  /// Nothing outside of the grid and where a node around the point has no value.
  std::optional<double> Undulation(double latitudeRad, double longitudeRad) const noexcept;

  /// In degrees, longitudes east positive; the nodes as the file holds them.
  GridGeometry storedGeometry() const {
    const GridGeometry& nodes = file_.geometry;
    return {nodes.firstX(), nodes.firstY(),      nodes.stepX(),
            nodes.stepY(),  file_.storedColumns, nodes.rows()};
  }

 private:
  double Node(int column, int row) const noexcept;
  double BilinearAt(const GridCell& cell) const noexcept;
  double BiquadraticAt(double column, double row) const noexcept;
  double CubicAt(const GridCell& cell) const noexcept;

  GeoidFile file_;
};

}  // namespace tarvex
