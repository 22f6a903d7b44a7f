// Any bytes as LandXML: alignments come in or are refused with a sentence; what came in goes out
// and comes in again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "exchange/landxml.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto document = tarvex::ReadLandXml({reinterpret_cast<const char*>(data), size});
  if (!document) {
    if (document.failure().text.empty()) std::abort();
    return 0;
  }
  for (const tarvex::LandXmlAlignment& alignment : document->alignments) {
    const auto made = tarvex::MakeRoadGeometry(alignment.centerline, alignment.equations);
    if (!made) continue;
    const auto text = tarvex::WriteLandXml({"road",
                                            document->unit,
                                            &*made,
                                            alignment.profile ? &*alignment.profile : nullptr,
                                            "fuzz",
                                            {}});
    if (!text) continue;
    const auto again = tarvex::ReadLandXml(*text);
    if (!again && again.failure().code == tarvex::LandXmlFault::NotXml) std::abort();
  }
  return 0;
}
