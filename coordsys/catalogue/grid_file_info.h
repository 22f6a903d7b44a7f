// What a shift grid or geoid file is: its form, what it covers and which system it belongs to. The
// file is read and checked whole, so that a file with an answer is one that conversions can use.
#pragma once

#include <string>
#include <vector>

#include "coordsys/grids/grid_geometry.h"
#include "coordsys/grids/grid_status.h"
#include "coordsys/grids/load_progress.h"

namespace tarvex {

enum class GridFileKind {
  SurfaceText,    ///< ".grd" of numbers in text
  SurfaceBinary,  ///< ".grd" that begins with "DSBB"
  British,        ///< one of the two parts of the British grid
  French,         ///< geocentric translations
  Ntv2,
  Nadcon,  ///< a pair of .las and .los
  Geoid,
};

/// One grid of a file. The first coordinate is the easting (metres) or the longitude (degrees, east
/// positive), the second the northing or the latitude.
struct GridFilePart {
  std::string name;    ///< of an NTv2 grid
  std::string parent;  ///< the wider NTv2 grid that contains it; empty for none
  GridGeometry geometry;
};

struct GridFileInfo {
  GridFileKind kind = GridFileKind::SurfaceText;
  std::vector<GridFilePart> parts;  ///< one, or those of an NTv2 file
  std::string fromSystem;           ///< as an NTv2 file names it
  std::string toSystem;

  bool inDegrees() const {
    return kind != GridFileKind::SurfaceText && kind != GridFileKind::SurfaceBinary &&
           kind != GridFileKind::British;
  }
};

/// Tells the kind by the file's first bytes, else by the ending of `path`. Either file of a NADCON
/// pair stands for both. `progress` may be null.
GridStatus ReadGridFileInfo(FileSystem& files, const std::string& path, LoadProgress* progress,
                            GridFileInfo& info);

}  // namespace tarvex
