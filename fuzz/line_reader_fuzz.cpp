// Any bytes through the line reader, in every framing: each byte comes out once or is a line end.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "gnss/port/line_reader.h"
#include "tests/support/scripted_device.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  constexpr tarvex::Framing kFramings[] = {tarvex::Framing::TextLines, tarvex::Framing::EtxFrames,
                                           tarvex::Framing::BinaryPackets};
  tarvex::LastErrorRecord errors;
  auto device = std::make_unique<tarvex::ScriptedDevice>();
  device->input.assign(reinterpret_cast<const char*>(data) + 2, size - 2);
  device->whenEmpty = {tarvex::DeviceStatus::kEndOfData};
  tarvex::Port port("fuzz", std::move(device), errors);
  (void)port.Open();
  std::array<char, 300> buffer;
  const std::size_t capacity = 2 + data[1];
  std::size_t lines = 0;
  std::size_t bytes = 0;
  for (;; ++lines) {
    const tarvex::ReadLineResult read =
        tarvex::ReadLine(port, std::span(buffer).first(capacity), 10, kFramings[data[0] % 3]);
    bytes += read.text.size();
    if (read.text.size() >= capacity || buffer[read.text.size()] != '\0') std::abort();
    if (!read.ok()) break;
    if (lines > size) std::abort();
  }
  if (bytes > size) std::abort();
  return 0;
}
