// Any text as the Ashtech sentences that answer a request; the first byte chooses the model.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "gnss/receivers/ashtech_sentences.h"
#include "gnss/receivers/dop_request.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const std::string_view line(reinterpret_cast<const char*>(data) + 1, size - 1);
  tarvex::GnssPositionState state;
  (void)tarvex::ReadPashrPos(line, data[0] % 7, state);
  state.unit = tarvex::DistanceUnit::UsSurveyFeet;
  (void)tarvex::ReadAshtechGga(line, false, state);
  (void)tarvex::ReadPashrPbn(line, state);
  return 0;
}
