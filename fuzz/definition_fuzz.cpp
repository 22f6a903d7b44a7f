// Any text as a coordinate-system definition: reading ends, and what the writer makes of it reads
// back to a record that is written the same again.
#include <cstdint>
#include <cstdlib>

#include "coordsys/definition/definition_check.h"
#include "coordsys/definition/definition_reader.h"
#include "coordsys/definition/definition_writer.h"

namespace tarvex {
namespace {

ProjectionRecord Read(std::string_view text, DefinitionFacts& facts) {
  ProjectionRecord record;
  ReadDefinition(text, record, facts, nullptr);
  return record;
}

void Run(std::string_view text) {
  DefinitionFacts facts;
  (void)Read(text, facts);
  (void)CheckDefinition(text);
  const std::string line = OneLineDefinition(text);
  const ProjectionRecord record = Read(line, facts);
  const auto written = WriteDefinition(record, "name", facts.compoundName);
  if (!written) return;
  DefinitionFacts factsAgain;
  const ProjectionRecord again = Read(*written, factsAgain);
  const auto writtenAgain = WriteDefinition(again, "name", factsAgain.compoundName);
  if (!writtenAgain) std::abort();
  if (again.projectionType != record.projectionType) std::abort();
  DefinitionFacts factsThird;
  const ProjectionRecord third = Read(*writtenAgain, factsThird);
  if (!(WriteDefinition(third, "name", factsThird.compoundName) == writtenAgain)) std::abort();
}

}  // namespace
}  // namespace tarvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarvex::Run({reinterpret_cast<const char*>(data), size});
  return 0;
}
