// A job in memory with everything that a session needs: calculator, listener, commands, and a
// receiver that plays what a test gives it.
#pragma once

#include <gtest/gtest.h>

#include <cerrno>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/workflow/job_session.h"
#include "app/workflow/receiver_link.h"
#include "app/workflow/session_commands.h"
#include "app/workflow/session_events.h"
#include "coordsys/chain/calculator.h"
#include "core/coordinates/coordinate_file.h"
#include "tests/support/manual_clock.h"
#include "tests/support/memory_files.h"

namespace tarvex {

inline std::string WithChecksum(const std::string& body) {
  unsigned sum = 0;
  for (const char c : body) sum ^= static_cast<unsigned char>(c);
  char text[8];
  std::snprintf(text, sizeof text, "*%02X\r\n", sum & 0xFFU);
  return "$" + body + text;
}

/// GST and GGA of one second; `quality` 4 is RTK fixed, 2 DGPS.
inline std::string Epoch(int second, int quality = 4, const std::string& hrms = "0.010") {
  char time[16];
  std::snprintf(time, sizeof time, "0930%02d.00", second);
  return WithChecksum("GNGST," + std::string(time) + ",0.9,,,," + hrms + ",0.000,0.020") +
         WithChecksum("GNGGA," + std::string(time) + ",4717.11200000,N,00915.91200000,E," +
                      std::to_string(quality) + ",12,0.8,499.600,M,48.000,M,1.0,0001");
}

/// Remembers what was said.
class RememberingObserver final : public WorkObserver {
 public:
  void OnError(const std::string& sentence) override { errors.push_back(sentence); }
  void OnWarning(const std::string& sentence) override { warnings.push_back(sentence); }
  void OnMessage(std::string_view title, std::string_view text) override {
    warnings.push_back(std::string(title) + ": " + std::string(text));
  }
  void OnProgress(std::string_view) override {}
  void OnProgressEnd() override {}
  ExistingPointAnswer AskExistingPoint(const ExistingPointQuestion& question) override {
    asked.push_back(question);
    return answer;
  }

  std::vector<std::string> errors;
  std::vector<std::string> warnings;
  std::vector<ExistingPointQuestion> asked;
  ExistingPointAnswer answer;
};

/// Keeps the events, and may act on one.
class RememberingListener final : public SessionListener {
 public:
  void On(const SessionEvent& event) override {
    events.push_back(event);
    if (then) then(event);
  }

  template <typename Event>
  std::vector<Event> Of() const {
    std::vector<Event> found;
    for (const SessionEvent& event : events) {
      if (const auto* of = std::get_if<Event>(&event)) found.push_back(*of);
    }
    return found;
  }

  std::vector<SessionEvent> events;
  std::function<void(const SessionEvent&)> then;
};

/// What a receiver does from one opening of its port to the next.
struct Connection {
  std::string input;
  bool hangsUp = false;     ///< behind the input; else it is silent
  bool refused = false;     ///< it cannot be opened at all
  std::int64_t lineMs = 0;  ///< between two lines; 0: all at once
  bool recording = false;   ///< behind the input is its end
};

/// Plays one connection after the other; an empty read lets its time-out pass on the clock.
class ScriptedLine final : public ByteDevice {
 public:
  ScriptedLine(Clock& clock, std::deque<Connection>& connections)
      : clock_(clock), connections_(connections) {}

  DeviceStatus Open(const std::string&) override {
    if (connections_.empty()) return {ENODEV};
    now_ = connections_.front();
    connections_.pop_front();
    open_ = !now_.refused;
    return now_.refused ? DeviceStatus{ENODEV} : DeviceStatus{};
  }
  DeviceStatus Close() override {
    open_ = false;
    return {};
  }
  bool isOpen() const override { return open_; }
  DeviceStatus GetTimeouts(DeviceTimeouts& out) override {
    out = timeouts_;
    return {};
  }
  DeviceStatus SetTimeouts(const DeviceTimeouts& in) override {
    timeouts_ = in;
    return {};
  }
  DeviceStatus Read(std::span<char> out, std::size_t& got) override {
    got = std::min(out.size(), LineIsDue());
    now_.input.copy(out.data(), got);
    now_.input.erase(0, got);
    if (got > 0 && out[got - 1] == '\n') {
      nextLineMs_ = clock_.SteadyMilliseconds() + now_.lineMs;
    }
    if (got > 0 || !now_.input.empty()) return {};
    if (now_.hangsUp) return {DeviceStatus::kHungUp};
    if (now_.recording) return {DeviceStatus::kEndOfData};
    clock_.SleepMilliseconds(std::max<std::int64_t>(1, timeouts_.read.constantMs));
    return {};
  }
  DeviceStatus Write(std::string_view bytes, const WriteTimeouts&, std::size_t& written) override {
    written = bytes.size();
    return {};
  }
  DeviceStatus BytesWaiting(std::size_t& count) override {
    count = now_.input.size();
    return {};
  }
  DeviceStatus PurgeInput() override { return {}; }

 private:
  // How many bytes there are to read within the time-out, which passes when there are none.
  std::size_t LineIsDue() {
    if (now_.lineMs == 0 || now_.input.empty()) return now_.input.size();
    const std::int64_t waitMs = nextLineMs_ - clock_.SteadyMilliseconds();
    const auto timeoutMs = std::max<std::int64_t>(1, timeouts_.read.constantMs);
    if (waitMs > 0) clock_.SleepMilliseconds(std::min(waitMs, timeoutMs));
    if (waitMs > timeoutMs) return 0;
    return now_.input.find('\n') + 1;
  }

  std::int64_t nextLineMs_ = 0;
  Clock& clock_;
  std::deque<Connection>& connections_;
  Connection now_;
  DeviceTimeouts timeouts_;
  bool open_ = false;
};

constexpr const char* kSitePath = "/jobs/site.crd";
constexpr const char* kUtm32 =
    R"(PROJCS["UTM 32",GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563]]],)"
    R"(PROJECTION["Transverse_Mercator"],PARAMETER["latitude_of_origin",0],)"
    R"(PARAMETER["central_meridian",9],PARAMETER["scale_factor",0.9996],)"
    R"(PARAMETER["false_easting",500000],PARAMETER["false_northing",0],UNIT["metre",1]])";

/// A receiver at the far end of a connection, which sends NMEA sentences.
inline ChosenReceiver ConnectedReceiver() {
  ChosenReceiver receiver;
  receiver.address.kind = PortKind::Tcp;
  receiver.settings = FindMake(receiver.makeCode).settings;
  return receiver;
}

class FieldSite : public testing::Test {
 protected:
  FieldSite() {
    memory.Put("/jobs/site.job", "units=metres\nids=alphanumeric\n");
    session.emplace(work, kSitePath);
    EXPECT_TRUE(session->Load());
    EXPECT_NE(OpenCoordinateFile(session->job(), true), nullptr);
    calculator.ParseDefinition(kUtm32, nullptr);
    session->job().ids.current = "1";
  }

  /// The ports of a session play `connections`.
  PortMaker Ports() {
    return [this](const PortAddress&, StopAsked) {
      return std::make_unique<Port>("script", std::make_unique<ScriptedLine>(clock, connections),
                                    SystemLastError());
    };
  }

  std::string Raw() const { return memory.Bytes("/jobs/site.rw5"); }
  std::string Notes() const { return memory.Bytes("/jobs/site.not"); }

  MemoryFiles memory;
  ManualClock clock;
  RememberingObserver observer;
  Workplace work{.files = memory, .clock = clock, .observer = observer};
  std::optional<JobSession> session;
  CTrgCalculator calculator;
  RememberingListener listener;
  SessionCommands commands;
  std::deque<Connection> connections;
};

}  // namespace tarvex
