#include "coordsys/grids/packed_grid.h"

#include "coordsys/grids/gr3df97a_grid.h"
#include "coordsys/grids/ostn02_grid.h"
#include "coordsys/national_grids.h"

namespace tarvex {
namespace {

std::string StagedPath(const PackedFile& file) {
  return file.path + ".new";
}

FileStatus Stage(FileSystem& files, const std::vector<PackedFile>& packed) {
  for (const PackedFile& file : packed) {
    FileStatus status = ReplaceWholeFile(files, StagedPath(file), file.bytes);
    if (!status.ok()) return status;
  }
  return {};
}

FileStatus GiveNames(FileSystem& files, const std::vector<PackedFile>& packed) {
  const std::string& last = packed.back().path;
  if (packed.size() > 1 && files.Exists(last)) {
    if (FileStatus status = files.Remove(last); !status.ok()) return status;
    if (FileStatus status = files.SyncFolderOf(last); !status.ok()) return status;
  }
  for (const PackedFile& file : packed) {
    FileStatus status = files.Rename(StagedPath(file), file.path);
    if (!status.ok()) return status;
  }
  return files.SyncFolderOf(last);
}

}  // namespace

GridStatus PackGrid(std::string_view text, const std::string& path, const std::string& folder,
                    LoadProgress* progress, std::vector<PackedFile>& packed) {
  if (text.starts_with("GR3D")) {
    packed = {{folder + std::string(kFrenchGrid.files[0]), ""}};
    return PackGr3df97a(text, path, packed[0].bytes);
  }
  packed = {{folder + std::string(kBritishGrid.files[0]), ""},
            {folder + std::string(kBritishGrid.files[1]), ""}};
  return PackOstn02(text, path, progress, packed[0].bytes, packed[1].bytes);
}

FileStatus PutInPlace(FileSystem& files, const std::vector<PackedFile>& packed) {
  if (packed.empty()) return {};
  FileStatus status = Stage(files, packed);
  if (status.ok()) status = GiveNames(files, packed);
  if (!status.ok()) {
    for (const PackedFile& file : packed) (void)files.Remove(StagedPath(file));
  }
  return status;
}

}  // namespace tarvex
