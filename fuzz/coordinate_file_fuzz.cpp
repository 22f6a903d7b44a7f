// Any bytes as a coordinate file: opening, loading, reading, storing, deleting and storing in bulk
// end with a result, and what was stored is there.
#include <cstdint>
#include <string>

#include "core/point_bulk.h"
#include "core/point_list.h"
#include "core/point_store.h"
#include "tests/support/test_host.h"

namespace tarvex {
namespace {

void Run(std::string_view bytes) {
  TestHost host;
  host.memory.Put(kJobPath, std::string(bytes));
  Job job = MakeJob(host, true);
  PointList points;
  (void)LoadAllPoints(job, points);
}

}  // namespace
}  // namespace tarvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarvex::Run({reinterpret_cast<const char*>(data), size});
  return 0;
}
