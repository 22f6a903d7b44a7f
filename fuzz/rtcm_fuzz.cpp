// Any bytes as a stream of corrections: every byte is in a frame, skipped or waiting, however the
// stream is cut into pieces.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "gnss/corrections/rtcm_framer.h"
#include "gnss/corrections/rtcm_messages.h"

namespace {

struct Count final : tarvex::RtcmFramer::Listener {
  void OnMessage(std::string_view message) override {
    constexpr std::size_t kAround = 6;
    bytes += message.size() + kAround;
    (void)tarvex::RtcmMessageNumber(message);
    (void)tarvex::ReadBaseStation(message);
  }
  std::size_t bytes = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const std::string_view stream(reinterpret_cast<const char*>(data) + 1, size - 1);
  (void)tarvex::ReadBaseStation(stream);
  const std::size_t piece = 1 + data[0];
  tarvex::RtcmFramer framer;
  Count count;
  for (std::size_t at = 0; at < stream.size(); at += piece) {
    framer.Feed(stream.substr(at, piece), count);
  }
  if (count.bytes + framer.skippedBytes() + framer.waitingBytes() != stream.size()) std::abort();
  return 0;
}
