// Agencies' texts of national grids into the files that conversions load, and those files into
// their place.
#pragma once

#include <string>
#include <vector>

#include "coordsys/grids/grid_status.h"
#include "coordsys/grids/load_progress.h"

namespace tarvex {

/// A file under the name that conversions look for.
struct PackedFile {
  std::string path;
  std::string bytes;
};

/// The files of the grid that `text` holds, in `folder` (with its separator): the British two, or
/// the French one for a text that begins with "GR3D". `path` is only for the error's text;
/// `progress` may be null.
GridStatus PackGrid(std::string_view text, const std::string& path, const std::string& folder,
                    LoadProgress* progress, std::vector<PackedFile>& packed);

/// Writes the files of one grid, replacing those that exist. After a failure or a crash at any
/// point all of them are the old ones, all are the new ones, or the last one is missing (a named
/// error wherever it is needed): parts of two editions are never found together.
FileStatus PutInPlace(FileSystem& files, const std::vector<PackedFile>& packed);

}  // namespace tarvex
