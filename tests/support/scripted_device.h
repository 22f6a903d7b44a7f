// A device that plays a script: what it has to say, and what it answers to what is written to it.
// It never waits: where a real device would let a time-out pass, the read comes back short.
#pragma once

#include <algorithm>
#include <cstring>
#include <deque>
#include <string>
#include <utility>

#include "platform/byte_device.h"

namespace tarvex {

class ScriptedDevice final : public ByteDevice {
 public:
  std::string input;       ///< what a read gets next
  DeviceStatus whenEmpty;  ///< ok: the read times out; else it fails with this
  std::string written;     ///< everything written so far
  std::deque<std::pair<std::string, std::string>> replies;  ///< written text, then input
  DeviceTimeouts timeouts;
  DeviceStatus openStatus;
  DeviceStatus getTimeoutsStatus;
  DeviceStatus setTimeoutsStatus;
  std::size_t writeLimit = std::string::npos;  ///< bytes that one write takes
  int purges = 0;
  bool purgeDrops = false;

  DeviceStatus Open(const std::string& /*name*/) override {
    open_ = openStatus.ok();
    return openStatus;
  }
  DeviceStatus Close() override {
    open_ = false;
    return {};
  }
  bool isOpen() const override { return open_; }

  DeviceStatus GetTimeouts(DeviceTimeouts& out) override {
    out = timeouts;
    return getTimeoutsStatus;
  }
  DeviceStatus SetTimeouts(const DeviceTimeouts& in) override {
    if (setTimeoutsStatus.ok()) timeouts = in;
    return setTimeoutsStatus;
  }

  DeviceStatus Read(std::span<char> out, std::size_t& got) override {
    got = std::min(out.size(), input.size());
    std::memcpy(out.data(), input.data(), got);
    input.erase(0, got);
    return got > 0 || out.empty() ? DeviceStatus{} : whenEmpty;
  }

  DeviceStatus Write(std::string_view bytes, const WriteTimeouts& /*timeouts*/,
                     std::size_t& count) override {
    count = std::min(bytes.size(), writeLimit);
    written += bytes.substr(0, count);
    if (!replies.empty() && bytes.find(replies.front().first) != std::string_view::npos) {
      input += replies.front().second;
      replies.pop_front();
    }
    return {};
  }

  DeviceStatus BytesWaiting(std::size_t& count) override {
    count = input.size();
    return {};
  }
  DeviceStatus PurgeInput() override {
    ++purges;
    if (purgeDrops) input.clear();
    return {};
  }

 private:
  bool open_ = false;
};

}  // namespace tarvex
