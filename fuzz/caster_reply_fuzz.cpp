// Any bytes, in pieces of any size, as what a caster answers: opening a stream and fetching a table
// end, and no byte of an open stream is made up.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "gnss/ntrip/client.h"
#include "tests/gnss/ntrip/scripted_caster.h"
#include "tests/support/memory_files.h"

namespace {

void Script(tarvex::ScriptedCaster& caster, const std::string& bytes, std::size_t piece) {
  caster.steps.clear();
  for (std::size_t at = 0; at < bytes.size(); at += piece) {
    caster.steps.emplace_back(bytes.substr(at, piece));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::string bytes(reinterpret_cast<const char*>(data) + 2, size - 2);
  tarvex::ManualClock clock;
  tarvex::MemoryFiles files;
  tarvex::LastErrorRecord errors;
  tarvex::NoProgress progress;
  tarvex::ScriptedCaster caster(clock);
  if (data[1] % 2 == 1) caster.atEnd = tarvex::PortError::ReadFailed;
  tarvex::NtripClient client(&caster, "fuzz", {.clock = clock, .files = files, .errors = errors});
  const std::size_t piece = 1 + data[0];
  Script(caster, bytes, piece);
  if (client.OpenStream("M", "u", "p", progress) == tarvex::PortError::None) {
    std::size_t stream = 0;
    char out[64];
    std::size_t count = 0;
    while (client.Receive(out, count, 10) == tarvex::PortError::None) {
      stream += count;
      if (stream > bytes.size()) std::abort();
      if (caster.steps.empty() && count == 0) break;
    }
  }
  Script(caster, bytes, piece);
  (void)client.FetchSourceTable("table", progress);
  return 0;
}
