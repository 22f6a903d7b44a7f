// The French grid GR3DF97A ("gr3df97a.bin"): geocentric translations from NTF to RGF93.
//
// The nodes are RGF93 positions (radians here, north and east positive) and hold three translations
// in metres, X(RGF93) = X(NTF) + T; between nodes T is bilinear. The file is our own compact form
// of the agency's text "gr3df97a.txt", which PackGr3df97a makes; docs/formats/grids.md has its
// layout. Source: IGN, NTG 88, "Grille de parametres de transformation de coordonnees GR3DF97A".
#pragma once

#include <optional>
#include <string>

#include "coordsys/coordinates.h"
#include "coordsys/grids/grid_geometry.h"
#include "coordsys/grids/grid_status.h"
#include "platform/file_bytes.h"

namespace tarvex {

class Gr3df97aGrid {
 public:
  static GridStatus Load(FileSystem& files, const std::string& path, Gr3df97aGrid& grid);
  static GridStatus Parse(FileBytes bytes, const std::string& path, Gr3df97aGrid& grid);

  /// The translation from NTF to RGF93; nothing outside of the grid.
  std::optional<Geocentric> Translation(double latitudeRad, double longitudeRad) const noexcept;

  const GridGeometry& geometry() const { return geometry_; }

 private:
  double Micrometres(int column, int row, int axis) const noexcept;

  FileBytes bytes_;
  GridGeometry geometry_;  // degrees; the first coordinate is the longitude
};

/// Makes the bytes of "gr3df97a.bin" from the agency's text: "GR3D1" gives the bounds and steps,
/// every data line number, longitude, latitude, TX, TY, TZ, precision code, sheet.
GridStatus PackGr3df97a(std::string_view text, const std::string& path, std::string& packed);

}  // namespace tarvex
