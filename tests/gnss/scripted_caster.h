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

  /// Bytes, or the error of a receive. Behind the last step `at_end` goes on for ever.
  std::deque<std::variant<std::string, PortError>> steps;
  std::variant<std::string, PortError> at_end = PortError::FewerBytesRead;
  PortError open_result = PortError::None;
  PortError send_result = PortError::None;
  std::vector<NtripOperation> supported = {NtripOperation::OpenTcp};
  std::vector<NtripTarget> performed;
  std::string sent;
  std::vector<int> receive_timeouts;
  bool closed = false;

  bool Supports(NtripOperation operation) override {
    return std::find(supported.begin(), supported.end(), operation) != supported.end();
  }
  PortError Perform(NtripOperation /*operation*/, const NtripTarget& target,
                    NtripProgress& /*progress*/) override {
    performed.push_back(target);
    closed = false;
    return open_result;
  }
  PortError Send(std::string_view bytes, int /*timeout_ms*/) override {
    sent += bytes;
    return send_result;
  }
  PortError Receive(std::span<char> out, std::size_t& count, int timeout_ms) override {
    receive_timeouts.push_back(timeout_ms);
    count = 0;
    std::variant<std::string, PortError> step = at_end;
    if (!steps.empty()) {
      step = std::move(steps.front());
      steps.pop_front();
    }
    if (const auto* error = std::get_if<PortError>(&step)) {
      if (*error == PortError::FewerBytesRead) clock_.milliseconds += timeout_ms;
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
