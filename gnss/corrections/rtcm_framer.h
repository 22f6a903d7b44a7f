// RTCM 3 frames in a stream of bytes: preamble 0xD3, six reserved bits, ten bits of length, the
// message, CRC-24Q. Bytes may come in any pieces; what is no frame is counted and left out. A frame
// whose CRC fails gives up its first byte alone, and the search goes on behind it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarvex {

class RtcmFramer {
 public:
  /// Receives each good frame's message, without preamble and CRC; valid during the call.
  class Listener {
   public:
    virtual ~Listener() = default;
    virtual void OnMessage(std::string_view message) = 0;
  };

  void Feed(std::string_view bytes, Listener& listener);

  std::uint64_t frames() const { return frames_; }
  std::uint64_t badCrcs() const { return badCrcs_; }
  /// Bytes outside of good frames, those still waiting for their frame's end not counted.
  std::uint64_t skippedBytes() const { return skippedBytes_; }
  std::size_t waitingBytes() const { return held_.size(); }

 private:
  /// How much of `bytes` was used up; the rest is the start of a frame.
  std::size_t Scan(std::string_view bytes, Listener& listener);

  std::string held_;  // at most one frame
  std::uint64_t frames_ = 0;
  std::uint64_t badCrcs_ = 0;
  std::uint64_t skippedBytes_ = 0;
};

}  // namespace tarvex
