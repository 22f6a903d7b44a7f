// Any text as a BESTPOSA log and as the replies to a DOP request.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "gnss/receivers/bestpos.h"
#include "gnss/receivers/dop_request.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const std::string_view line(reinterpret_cast<const char*>(data) + 1, size - 1);
  tarvex::GnssPositionState state;
  tarvex::Bestpos bestpos;
  if (!line.empty()) (void)tarvex::LogCrcHolds(line);
  state.unit = tarvex::DistanceUnit::UsSurveyFeet;
  (void)tarvex::ReadBestpos(line, state, bestpos);
  (void)tarvex::ReadPsrdop(line, state);
  return 0;
}
