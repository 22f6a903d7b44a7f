// Any text as a coordinate-system definition: reading ends, and what the writer makes of it reads
// back to a record that is written the same again.
#include <cstdint>
#include <cstdlib>

#include "coordsys/definition/definition_check.h"
#include "coordsys/definition/definition_reader.h"
#include "coordsys/definition/definition_writer.h"

namespace tarvex {
namespace {

ProjectionRecord Read(std::string_view text, std::string& compoundName) {
  ProjectionRecord record;
  ReadDefinition(text, record, compoundName, nullptr);
  return record;
}

void Run(std::string_view text) {
  std::string compoundName;
  (void)Read(text, compoundName);
  (void)CheckDefinition(text);
  const std::string line = OneLineDefinition(text);
  const ProjectionRecord record = Read(line, compoundName);
  const auto written = WriteDefinition(record, "name", compoundName);
  if (!written) return;
  std::string compoundAgain;
  const ProjectionRecord again = Read(*written, compoundAgain);
  const auto writtenAgain = WriteDefinition(again, "name", compoundAgain);
  if (!writtenAgain) std::abort();
  if (again.projectionType != record.projectionType) std::abort();
  std::string compoundThird;
  const ProjectionRecord third = Read(*writtenAgain, compoundThird);
  if (!(WriteDefinition(third, "name", compoundThird) == writtenAgain)) std::abort();
}

}  // namespace
}  // namespace tarvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarvex::Run({reinterpret_cast<const char*>(data), size});
  return 0;
}
