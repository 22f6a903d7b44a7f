// Any bytes as a geoid model; the first one chooses the form.
#include <cstdint>
#include <string>

#include "coordsys/geoid/geoid_grid.h"
#include "core/units/units.h"
#include "fuzz/grid_places.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarvex;
  if (size == 0) return 0;
  static constexpr const char* kNames[] = {"f.gtx", "f.bin", "f.pgm", "f.isg", "f.xyz"};
  const std::string name = kNames[data[0] % 5];
  GeoidGrid grid;
  const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  const GridStatus status = GeoidGrid::Parse(FileBytes(bytes), name, grid);
  if (!status.ok()) {
    if (status.Text().empty()) std::abort();
    return 0;
  }
  AskAround(grid.storedGeometry(), [&](double longitude, double latitude) {
    const auto undulation =
        grid.Undulation(latitude * kRadiansPerDegree, longitude * kRadiansPerDegree);
    if (undulation) MustBeFinite(*undulation);
  });
  return 0;
}
