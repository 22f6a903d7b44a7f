#include "gnss/corrections/rtcm_framer.h"

#include <algorithm>

#include "gnss/corrections/crc24q.h"

namespace tarvex {
namespace {

constexpr char kPreamble = '\xD3';
constexpr std::size_t kHeader = 3;
constexpr std::size_t kCrc = 3;

std::uint32_t Byte(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

bool ReservedBitsClear(std::string_view bytes) {
  return (Byte(bytes, 1) & 0xFCU) == 0;
}

std::size_t FrameLength(std::string_view bytes) {
  return kHeader + ((Byte(bytes, 1) & 3U) << 8 | Byte(bytes, 2)) + kCrc;
}

bool CrcHolds(std::string_view frame) {
  const std::size_t at = frame.size() - kCrc;
  const std::uint32_t sent = Byte(frame, at) << 16 | Byte(frame, at + 1) << 8 | Byte(frame, at + 2);
  return Crc24qOf(frame.substr(0, at)) == sent;
}

}  // namespace

std::size_t RtcmFramer::Scan(std::string_view bytes, Listener& listener) {
  std::size_t at = 0;
  for (;;) {
    const std::size_t begin = bytes.find(kPreamble, at);
    if (begin == std::string_view::npos) {
      skippedBytes_ += bytes.size() - at;
      return bytes.size();
    }
    skippedBytes_ += begin - at;
    at = begin;
    const std::string_view rest = bytes.substr(at);
    if (rest.size() >= 2 && !ReservedBitsClear(rest)) {
      ++skippedBytes_;
      ++at;
      continue;
    }
    if (rest.size() < kHeader || rest.size() < FrameLength(rest)) return at;
    const std::string_view frame = rest.substr(0, FrameLength(rest));
    if (CrcHolds(frame)) {
      ++frames_;
      listener.OnMessage(frame.substr(kHeader, frame.size() - kHeader - kCrc));
      at += frame.size();
    } else {
      ++badCrcs_;
      ++skippedBytes_;
      ++at;
    }
  }
}

// What is held is the start of one frame: only as much as completes it is put behind it, so that
// the rest is looked at in place.
void RtcmFramer::Feed(std::string_view bytes, Listener& listener) {
  while (!held_.empty() && !bytes.empty()) {
    const std::size_t wanted = held_.size() < kHeader ? kHeader : FrameLength(held_);
    const std::size_t taken = std::min(bytes.size(), wanted - held_.size());
    held_ += bytes.substr(0, taken);
    bytes.remove_prefix(taken);
    held_.erase(0, Scan(held_, listener));
  }
  if (held_.empty()) held_ = bytes.substr(Scan(bytes, listener));
}

}  // namespace tarvex
