// Any bytes as a ".grd", text or binary: a named error, or a grid whose every answer is a number.
#include <cstdint>

#include "coordsys/grids/grid_surface.h"
#include "fuzz/grid_places.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarvex;
  GridSurface surface;
  const GridStatus status =
      GridSurface::Parse({reinterpret_cast<const char*>(data), size}, "f.grd", nullptr, surface);
  if (!status.ok()) {
    if (status.Text().empty()) std::abort();
    return 0;
  }
  AskAround(surface.geometry(), [&](double x, double y) {
    for (const SurfaceValue& at : {surface.At(x, y), surface.CubicAt(x, y)}) {
      MustBeFinite(at.value);
      if (at.answer != SurfaceAnswer::Value && at.value != 0.0) std::abort();
    }
  });
  return 0;
}
