// A connection that plays what a caster sends, receive by receive.
#pragma once

#include <algorithm>
#include <cstring>
#include <deque>
#include <string>
#include <variant>
#include <vector>

#include "gnss/ntrip/connection.h"
#include "tests/support/manual_clock.h"

namespace tarvex {

class ScriptedCaster final : public NtripConnection {
 public:
  explicit ScriptedCaster(ManualClock& clock) : clock_(clock) {}

  /// Bytes, or the error of a receive. Behind the last step `atEnd` goes on for ever.
  std::deque<std::variant<std::string, PortError>> steps;
  std::variant<std::string, PortError> atEnd = PortError::FewerBytesRead;
  PortError openResult = PortError::None;
  PortError sendResult = PortError::None;
  std::vector<NtripOperation> supported = {NtripOperation::OpenTcp};
  std::vector<NtripTarget> performed;
  std::string sent;
  std::vector<int> receiveTimeouts;
  bool closed = false;

  bool Supports(NtripOperation operation) override {
    return std::find(supported.begin(), supported.end(), operation) != supported.end();
  }
  PortError Perform(NtripOperation /*operation*/, const NtripTarget& target,
                    NtripProgress& /*progress*/) override {
    performed.push_back(target);
    closed = false;
    return openResult;
  }
  PortError Send(std::string_view bytes, int /*timeoutMs*/) override {
    sent += bytes;
    return sendResult;
  }
  PortError Receive(std::span<char> out, std::size_t& count, int timeoutMs) override {
    receiveTimeouts.push_back(timeoutMs);
    count = 0;
    std::variant<std::string, PortError> step = atEnd;
    if (!steps.empty()) {
      step = std::move(steps.front());
      steps.pop_front();
    }
    if (const auto* error = std::get_if<PortError>(&step)) {
      if (*error == PortError::FewerBytesRead) clock_.milliseconds += timeoutMs;
      return *error;
    }
    std::string& bytes = std::get<std::string>(step);
    count = std::min(out.size(), bytes.size());
    std::memcpy(out.data(), bytes.data(), count);
    if (count < bytes.size()) steps.emplace_front(bytes.substr(count));
    clock_.milliseconds += 10;
    return PortError::None;
  }
  void Close() override { closed = true; }

 private:
  ManualClock& clock_;
};

}  // namespace tarvex
