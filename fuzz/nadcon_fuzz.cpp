// Any bytes as a pair of .las and .los files, each half of the input.
#include <cstdint>
#include <string>

#include "coordsys/grids/nadcon_grid.h"
#include "fuzz/grid_places.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarvex;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  NadconGrid grid;
  const GridStatus status = NadconGrid::Parse(FileBytes(bytes.substr(0, size / 2)),
                                              FileBytes(bytes.substr(size / 2)), "f", grid);
  if (!status.ok()) {
    if (status.Text().empty()) std::abort();
    return 0;
  }
  AskAround(grid.geometry(), [&](double longitude, double latitude) {
    const DegreePosition at = {.latitude = latitude, .longitude = longitude};
    for (const auto& made : {grid.ToNad83(at), grid.ToNad27(at)}) {
      if (made) MustBeFinite(made->latitude + made->longitude);
    }
  });
  return 0;
}
