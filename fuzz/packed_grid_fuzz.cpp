// Any bytes as the program's own British and French files, and as the French agency's text; the
// first one chooses.
#include <cstdint>
#include <string>

#include "coordsys/grids/gr3df97a_grid.h"
#include "coordsys/grids/ostn02_grid.h"
#include "core/units/units.h"
#include "fuzz/grid_places.h"

namespace tarvex {
namespace {

void Told(const GridStatus& status) {
  if (status.Text().empty()) std::abort();
}

void British(const std::string& bytes) {
  Ostn02Part part;
  const GridStatus status = Ostn02Part::Parse(FileBytes(bytes), "f.bin", part);
  if (!status.ok()) return Told(status);
  AskAround(part.geometry(), [&](double x, double y) { MustBeFinite(part.At(x, y).value); });
}

void French(const std::string& bytes) {
  Gr3df97aGrid grid;
  const GridStatus status = Gr3df97aGrid::Parse(FileBytes(bytes), "f.bin", grid);
  if (!status.ok()) return Told(status);
  AskAround(grid.geometry(), [&](double longitude, double latitude) {
    const auto t = grid.Translation(latitude * kRadiansPerDegree, longitude * kRadiansPerDegree);
    if (t) MustBeFinite(t->xM + t->yM + t->zM);
  });
}

// What is packed can be loaded.
void FrenchText(const std::string& text) {
  std::string packed;
  const GridStatus status = PackGr3df97a(text, "f.txt", packed);
  if (!status.ok()) return Told(status);
  Gr3df97aGrid grid;
  if (!Gr3df97aGrid::Parse(FileBytes(packed), "f.bin", grid).ok()) std::abort();
}

}  // namespace
}  // namespace tarvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarvex;
  if (size == 0) return 0;
  const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  if (data[0] % 3 == 0) British(bytes);
  if (data[0] % 3 == 1) French(bytes);
  if (data[0] % 3 == 2) FrenchText(bytes);
  return 0;
}
