// Any bytes as an NTv2 file: a named error, or grids that answer with a number or a refusal, both
// ways.
#include <cstdint>
#include <cstring>
#include <string>

#include "coordsys/grids/ntv2_grid.h"
#include "core/units/units.h"
#include "fuzz/grid_places.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarvex;
  Ntv2Grid grid;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const GridStatus status = Ntv2Grid::Parse(FileBytes(bytes), "f.gsb", grid);
  if (!status.ok()) {
    if (status.Text().empty()) std::abort();
    return 0;
  }
  for (std::size_t i = 0; i < grid.gridCount() && i < 4; ++i) {
    AskAround(grid.Part(i).geometry, [&](double longitude, double latitude) {
      const Geodetic at = {latitude * kRadiansPerDegree, longitude * kRadiansPerDegree, 1.0};
      Geodetic forward = at;
      if (grid.Forward(forward) == GridShiftResult::Done) {
        MustBeFinite(forward.latitudeRad + forward.longitudeRad);
      }
      Geodetic inverse = at;
      if (grid.Inverse(inverse) == GridShiftResult::Done) {
        MustBeFinite(inverse.latitudeRad + inverse.longitudeRad);
      } else if (std::memcmp(&inverse, &at, sizeof at) != 0) {
        std::abort();  // a refusal changes nothing
      }
    });
  }
  return 0;
}
