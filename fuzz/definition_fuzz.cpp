// Any text as a coordinate-system definition: reading ends, and what the writer makes of it reads
// back to a record that is written the same again.
#include <cstdint>
#include <cstdlib>

#include "coordsys/definition_check.h"
#include "coordsys/definition_reader.h"
#include "coordsys/definition_writer.h"

namespace tarvex {
namespace {

ProjectionRecord Read(std::string_view text, std::string& compound_name) {
  ProjectionRecord record;
  ReadDefinition(text, record, compound_name, nullptr);
  return record;
}

void Run(std::string_view text) {
  std::string compound_name;
  (void)Read(text, compound_name);
  (void)CheckDefinition(text);
  const std::string line = OneLineDefinition(text);
  const ProjectionRecord record = Read(line, compound_name);
  const auto written = WriteDefinition(record, "name", compound_name);
  if (!written) return;
  std::string compound_again;
  const ProjectionRecord again = Read(*written, compound_again);
  const auto written_again = WriteDefinition(again, "name", compound_again);
  if (!written_again) std::abort();
  if (again.projection_type != record.projection_type) std::abort();
  std::string compound_third;
  const ProjectionRecord third = Read(*written_again, compound_third);
  if (!(WriteDefinition(third, "name", compound_third) == written_again)) std::abort();
}

}  // namespace
}  // namespace tarvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarvex::Run({reinterpret_cast<const char*>(data), size});
  return 0;
}
