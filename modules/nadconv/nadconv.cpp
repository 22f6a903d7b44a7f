// The library "nadconv": NAD27 to NAD83 and back over the NADCON grids of a folder; the interface
// is described in coordsys/closed/nad_converter_interface.h.
//
// The grids that the folder holds are loaded at the first call and kept until CloseNADConverter, or
// until another folder is named. Where several hold a position, the most local one is used.
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "coordsys/closed/nad_converter_interface.h"
#include "coordsys/grids/nadcon_grid.h"
#include "coordsys/national_grids.h"

namespace {

using namespace tarvex;

constexpr int kConverted = 1;
constexpr int kNoGrids = 0;
constexpr int kOutside = -1;

using Grids = std::vector<NadconGrid>;

class LoadedGrids {
 public:
  std::shared_ptr<const Grids> Of(const std::string& folder) {
    const std::lock_guard lock(mutex_);
    if (!grids_ || folder != folder_) {
      grids_ = Load(folder);
      folder_ = folder;
    }
    return grids_;
  }

  void Close() {
    const std::lock_guard lock(mutex_);
    grids_.reset();
  }

 private:
  static std::shared_ptr<const Grids> Load(const std::string& folder) {
    auto grids = std::make_shared<Grids>();
    for (const std::string_view name : kNadconGrids) {
      NadconGrid grid;
      if (NadconGrid::Load(SystemFiles(), folder + std::string(name), grid).ok()) {
        grids->push_back(std::move(grid));
      }
    }
    return grids;
  }

  std::mutex mutex_;
  std::string folder_;
  std::shared_ptr<const Grids> grids_;
};

LoadedGrids& Loaded() {
  static LoadedGrids grids;
  return grids;
}

using Shift = std::optional<DegreePosition> (NadconGrid::*)(const DegreePosition&) const noexcept;

int Convert(Shift shift, const DegreePosition& from, double* latitude, double* longitude,
            const char* folder) {
  if (folder == nullptr) return kNoGrids;
  const auto grids = Loaded().Of(folder);
  if (grids->empty()) return kNoGrids;
  for (const NadconGrid& grid : *grids) {
    const auto made = (grid.*shift)(from);
    if (!made) continue;
    *latitude = made->latitude;
    *longitude = made->longitude;
    return kConverted;
  }
  return kOutside;
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) NadConversionEntry ConvertNAD27ToNAD83;
__attribute__((visibility("default"))) NadConversionEntry ConvertNAD83ToNAD27;
__attribute__((visibility("default"))) NadCloseEntry CloseNADConverter;

int ConvertNAD27ToNAD83(double latitude, double longitude, double* latitudeOut,
                        double* longitudeOut, const char* dataFolder) {
  return Convert(&NadconGrid::ToNad83, {latitude, longitude}, latitudeOut, longitudeOut,
                 dataFolder);
}

int ConvertNAD83ToNAD27(double latitude, double longitude, double* latitudeOut,
                        double* longitudeOut, const char* dataFolder) {
  return Convert(&NadconGrid::ToNad27, {latitude, longitude}, latitudeOut, longitudeOut,
                 dataFolder);
}

void CloseNADConverter(void) {
  Loaded().Close();
}

}  // extern "C"
