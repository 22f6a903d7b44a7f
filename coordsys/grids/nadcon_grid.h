// A pair of NADCON grids (".las" and ".los"): shifts from NAD27 to NAD83 in latitude and longitude.
//
// Decimal degrees, north and east positive. The nodes are seconds of arc; those of the ".los" file
// are positive to the west. Bilinear between the four nodes; the way back finds the NAD27 position
// whose shift leads to the given one, to 1e-12 degree (1e-7 m). A longitude is found in either
// spelling, 173 or -187 degrees, and comes back in the one that it was given in.
// Source: W. Dewhurst, NOAA Technical Memorandum NOS NGS-50 (1990); layout in
// docs/formats/grids.md.
#pragma once

#include <string>

#include "coordsys/grids/grid_geometry.h"
#include "coordsys/grids/grid_status.h"
#include "platform/file_bytes.h"

namespace tarvex {

struct DegreePosition {
  double latitude = 0.0;
  double longitude = 0.0;
};

class NadconGrid {
 public:
  /// Loads BASE.las and BASE.los.
  static GridStatus Load(FileSystem& files, const std::string& base, NadconGrid& grid);
  /// `base` is only for the error's text.
  static GridStatus Parse(FileBytes las, FileBytes los, const std::string& base, NadconGrid& grid);

  /// Nothing outside of the grid.
  std::optional<DegreePosition> ToNad83(const DegreePosition& nad27) const noexcept;
  std::optional<DegreePosition> ToNad27(const DegreePosition& nad83) const noexcept;

  const GridGeometry& geometry() const { return geometry_; }

 private:
  double Node(const FileBytes& bytes, int column, int row) const noexcept;
  double Value(const FileBytes& bytes, const GridCell& cell) const noexcept;
  std::optional<DegreePosition> Shift(const DegreePosition& nad27) const noexcept;

  FileBytes las_;
  FileBytes los_;
  GridGeometry geometry_;  // degrees, east positive
};

}  // namespace tarvex
