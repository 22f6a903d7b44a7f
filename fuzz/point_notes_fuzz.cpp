// Any bytes as a point-notes file: a note that is written reads back, once, and the blocks of the
// other points stay. The first line of the input is the point id.
#include <cstdint>
#include <cstdlib>

#include "core/observations/point_notes.h"
#include "core/points/point_id.h"
#include "core/text/text.h"
#include "tests/support/test_host.h"

namespace tarvex {
namespace {

void Require(bool condition) {
  if (!condition) std::abort();
}

void Run(std::string_view input) {
  TestHost host;
  Job job = MakeJob(host, true);
  const std::string id = NormalisePointId(TakeLine(input).value_or("")).str();
  const std::string other = id == "A1" ? "B2" : "A1";
  host.memory.Put(PointNotesPath(job), std::string(input));
  FileStatus status;
  const auto before = ReadPointNote(job, other, status);
  Require(status.ok());
  const PointNote note{.pointId = id,
                       .lines = {"first", std::string(input.substr(0, 40))},
                       .qualityLines = "HRMS,0.012\n"};
  Require(WriteNote(job, note));
  const auto written = ReadPointNote(job, id, status);
  Require(status.ok() && written && !written->lines.empty() && written->lines[0] == "first");
  Require(written->qualityLines == note.qualityLines);
  const std::string bytes = host.memory.Bytes(PointNotesPath(job));
  Require(WriteNote(job, note));
  Require(host.memory.Bytes(PointNotesPath(job)) == bytes);
  const auto after = ReadPointNote(job, other, status);
  Require(after.has_value() == before.has_value());
  if (after) Require(after->lines == before->lines);
}

}  // namespace
}  // namespace tarvex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarvex::Run({reinterpret_cast<const char*>(data), size});
  return 0;
}
