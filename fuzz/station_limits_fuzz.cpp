// Any bytes as a side file of station limits, and as a typed station.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "roads/centerline_reader.h"
#include "roads/station_equations.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const tarvex::StationLimits limits = tarvex::ReadStationLimits(text);
  if (limits.start && !std::isfinite(*limits.start)) std::abort();
  if (limits.end && !std::isfinite(*limits.end)) std::abort();
  const auto entry = tarvex::ParseStationEntry(text);
  if (entry && std::isnan(entry->displayed)) std::abort();
  return 0;
}
