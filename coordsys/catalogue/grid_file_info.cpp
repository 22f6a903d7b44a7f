#include "coordsys/catalogue/grid_file_info.h"

#include "coordsys/geoid/geoid_grid.h"
#include "coordsys/grids/gr3df97a_grid.h"
#include "coordsys/grids/grid_surface.h"
#include "coordsys/grids/nadcon_grid.h"
#include "coordsys/grids/ntv2_grid.h"
#include "coordsys/grids/ostn02_grid.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::size_t kNadconMarkAt = 56;

bool IsGeoidEnding(std::string_view ending) {
  return ending == ".gtx" || ending == ".bin" || ending == ".pgm" || ending == ".isg";
}

std::optional<GridFileKind> KindOf(std::string_view bytes, std::string_view ending) {
  if (bytes.starts_with("OSG2")) return GridFileKind::British;
  if (bytes.starts_with("GR3B")) return GridFileKind::French;
  if (bytes.starts_with("DSBB")) return GridFileKind::SurfaceBinary;
  if (bytes.starts_with("NUM_OREC") || ending == ".gsb") return GridFileKind::Ntv2;
  const std::string_view mark = bytes.substr(std::min(bytes.size(), kNadconMarkAt));
  if (mark.starts_with("NADGRD") || ending == ".las" || ending == ".los") {
    return GridFileKind::Nadcon;
  }
  if (ending == ".grd") return GridFileKind::SurfaceText;
  if (IsGeoidEnding(ending)) return GridFileKind::Geoid;
  return std::nullopt;
}

// The geometry of a class that loads the bytes of one grid.
template <typename Grid>
GridStatus ReadOne(FileBytes bytes, const std::string& path, GridFileInfo& info) {
  Grid grid;
  GridStatus status = Grid::Parse(std::move(bytes), path, grid);
  if (status.ok()) info.parts.push_back({.name = "", .parent = "", .geometry = grid.geometry()});
  return status;
}

GridStatus ReadSurface(std::string_view bytes, const std::string& path, LoadProgress* progress,
                       GridFileInfo& info) {
  GridSurface surface;
  GridStatus status = GridSurface::Parse(bytes, path, progress, surface);
  if (status.ok()) info.parts.push_back({.name = "", .parent = "", .geometry = surface.geometry()});
  return status;
}

GridStatus ReadNtv2(FileBytes bytes, const std::string& path, GridFileInfo& info) {
  Ntv2Grid grid;
  GridStatus status = Ntv2Grid::Parse(std::move(bytes), path, grid);
  if (!status.ok()) return status;
  info.fromSystem = grid.fromSystem();
  info.toSystem = grid.toSystem();
  for (std::size_t i = 0; i < grid.gridCount(); ++i) {
    const Ntv2Part part = grid.Part(i);
    info.parts.push_back({.name = part.name, .parent = part.parent, .geometry = part.geometry});
  }
  return status;
}

GridStatus ReadNadcon(FileSystem& files, const std::string& path, GridFileInfo& info) {
  NadconGrid grid;
  GridStatus status = NadconGrid::Load(files, path.substr(0, path.rfind('.')), grid);
  if (status.ok()) info.parts.push_back({.name = "", .parent = "", .geometry = grid.geometry()});
  return status;
}

GridStatus ReadGeoid(FileBytes bytes, const std::string& path, GridFileInfo& info) {
  GeoidGrid grid;
  GridStatus status = GeoidGrid::Parse(std::move(bytes), path, grid);
  if (!status.ok()) return status;
  info.parts.push_back({.name = "", .parent = "", .geometry = grid.storedGeometry()});
  return status;
}

}  // namespace

GridStatus ReadGridFileInfo(FileSystem& files, const std::string& path, LoadProgress* progress,
                            GridFileInfo& info) {
  FileBytes bytes;
  if (FileStatus status = LoadFileBytes(files, path, bytes); !status.ok()) {
    return FromFileStatus(status, path);
  }
  const std::size_t dot = path.rfind('.');
  const auto kind =
      KindOf(bytes.view(), dot == std::string::npos ? "" : LowerCase(path.substr(dot)));
  if (!kind)
    return {GridProblem::NotThisFormat, path, "neither its first bytes nor its name tell of which"};
  info = {.kind = *kind, .parts = {}, .fromSystem = "", .toSystem = ""};
  switch (*kind) {
    case GridFileKind::SurfaceText:
    case GridFileKind::SurfaceBinary:
      return ReadSurface(bytes.view(), path, progress, info);
    case GridFileKind::British:
      return ReadOne<Ostn02Part>(std::move(bytes), path, info);
    case GridFileKind::French:
      return ReadOne<Gr3df97aGrid>(std::move(bytes), path, info);
    case GridFileKind::Ntv2:
      return ReadNtv2(std::move(bytes), path, info);
    case GridFileKind::Nadcon:
      return ReadNadcon(files, path, info);
    case GridFileKind::Geoid:
      break;
  }
  return ReadGeoid(std::move(bytes), path, info);
}

}  // namespace tarvex
