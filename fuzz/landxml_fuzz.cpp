// Any bytes as LandXML: alignments come in or are refused with a sentence; what came in goes out
// and comes in again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "exchange/landxml.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const tarvex::LandXmlReading reading =
      tarvex::ReadLandXml({reinterpret_cast<const char*>(data), size});
  const bool read = reading.result == tarvex::LandXmlResult::Read;
  if (read != reading.problem.empty()) std::abort();
  for (const tarvex::LandXmlAlignment& alignment : reading.alignments) {
    const auto made = tarvex::MakeRoadGeometry(alignment.centerline, alignment.equations);
    if (!made) continue;
    const auto text = tarvex::WriteLandXml({"road",
                                            reading.unit,
                                            &*made,
                                            alignment.profile ? &*alignment.profile : nullptr,
                                            "fuzz",
                                            {}});
    if (!text) continue;
    const auto again = tarvex::ReadLandXml(*text);
    if (again.result == tarvex::LandXmlResult::NotXml) std::abort();
  }
  return 0;
}
