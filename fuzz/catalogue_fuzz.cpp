// A catalogue file of any bytes: reading, and the edits, which must keep every other line.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "coordsys/catalogue/catalogue_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarvex;
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const auto systems = ReadCatalogue(bytes);
  std::string edited = bytes;
  if (AddToCatalogue(edited, "fuzz/added", "PROJCS[\"x\"]") == CatalogueResult::Done) {
    if (ReadCatalogue(edited).size() != systems.size() + 1) std::abort();
    if (RemoveFromCatalogue(edited, "fuzz/added") != CatalogueResult::Done) std::abort();
    if (ReadCatalogue(edited) != systems) std::abort();
  }
  if (systems.empty()) return 0;
  if (RemoveFromCatalogue(edited, systems.front().name) != CatalogueResult::Done) std::abort();
  if (ReadCatalogue(edited).size() + 1 != systems.size()) std::abort();
  return 0;
}
