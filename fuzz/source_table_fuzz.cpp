// Any text as the records of a caster: what is read can be written, and reads back the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/text/text.h"
#include "gnss/ntrip/caster_list.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

void TakeLine(std::string_view line) {
  constexpr auto kOwn = tarvex::RecordOrigin::OwnList;
  tarvex::LastErrorRecord errors;
  tarvex::StreamRecord stream;
  if (tarvex::ParseStreamRecord(line, kOwn, stream, errors) == tarvex::PortError::None) {
    const std::string written = tarvex::StreamRecordLine(stream);
    tarvex::StreamRecord again;
    Require(tarvex::ParseStreamRecord(written, kOwn, again, errors) == tarvex::PortError::None);
    Require(written.find('\n') == written.size() - 1);
    (void)tarvex::StreamPositionText(stream);
    (void)tarvex::DistanceKm(stream, 0.0, 0.0);
  }
  tarvex::CasterRecord caster;
  if (tarvex::ParseCasterRecord(line, kOwn, caster, errors) == tarvex::PortError::None) {
    tarvex::CasterRecord again;
    Require(tarvex::ParseCasterRecord(tarvex::CasterRecordLine(caster), kOwn, again, errors) ==
            tarvex::PortError::None);
    (void)caster.PortNumber();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view text(reinterpret_cast<const char*>(data), size);
  while (const auto line = tarvex::TakeLine(text)) TakeLine(*line);
  return 0;
}
