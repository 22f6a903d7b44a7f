// Corrections as they flow, beside Debian's stream tool on the loopback interface: how long a
// megabyte takes, what it costs the processor, how late a message and the first byte arrive; and
// how long the program takes to start.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <time.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "bench/stream_peer.h"
#include "gnss/caster/loopback_caster.h"
#include "gnss/corrections/correction_session.h"
#include "gnss/ntrip/tcp_connection.h"
#include "platform/tcp_socket.h"

namespace tarvex {
namespace {

using Clock_ = std::chrono::steady_clock;

constexpr std::uint64_t kMegabytes = 16;
constexpr std::uint64_t kBytes = kMegabytes * 1'000'000;

double SecondsSince(Clock_::time_point start) {
  return std::chrono::duration<double>(Clock_::now() - start).count();
}

double ThreadSeconds() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

std::string Capture() {
  std::string bytes;
  (void)ReadWholeFile(SystemFiles(), std::string(TARVEX_TEST_DATA) + "/ntrip/rtcm3.bndm.log",
                      1 << 20, bytes)
      .ok();
  return bytes;
}

// Counts, and writes where the stream tool writes.
class NullSink final : public CorrectionSink {
 public:
  NullSink() { (void)SystemFiles().Open("/dev/null", FileAccess::ReadWrite, file_).ok(); }
  PortError Write(std::string_view bytes) override {
    if (count == 0) first = Clock_::now();
    count += bytes.size();
    const bool taken = file_ == nullptr || file_->WriteAt(0, bytes).ok();
    return taken ? PortError::None : PortError::WriteFailed;
  }

  std::uint64_t count = 0;
  Clock_::time_point first;

 private:
  std::unique_ptr<File> file_;
};

CorrectionPlan PlanFor(int port) {
  return {.caster = {.host = FixedText<128>("127.0.0.1"), .port = std::to_string(port)},
          .mountpoint = "MNT",
          .gga = GgaUpload::Never};
}

std::string ToolInput(int port) {
  return "ntrip://127.0.0.1:" + std::to_string(port) + "/MNT";
}

struct Cost {
  double wallS = 0.0;
  double processorS = 0.0;
};

std::unique_ptr<LoopbackCaster> FullSpeedCaster() {
  CasterContent content{.data = Capture(), .bytesPerSecond = 0};
  content.stream.mountpoint.Assign("MNT");
  auto caster = std::make_unique<LoopbackCaster>(std::move(content), SystemClock());
  return caster->Start(0).ok() ? std::move(caster) : nullptr;
}

// Our session with everything that it does: framing, checking, counting, writing on.
Cost OurMegabytes(LoopbackCaster& caster) {
  LastErrorRecord errors;
  const auto connection = MakeTcpNtripConnection(errors);
  CorrectionSession session(PlanFor(caster.port()), *connection,
                            {.clock = SystemClock(), .files = SystemFiles(), .errors = errors});
  NullSink sink;
  session.Attach(&sink, nullptr);
  NoProgress progress;
  const auto start = Clock_::now();
  const double processor = ThreadSeconds();
  while (sink.count < kBytes && SecondsSince(start) < 30.0) (void)session.Step(100, progress);
  const Cost cost{SecondsSince(sink.first), ThreadSeconds() - processor};
  session.Stop();
  return cost;
}

Cost ToolMegabytes(LoopbackCaster& caster) {
  const std::uint64_t before = caster.bytesSent();
  PeerProcess tool({"str2str", "-in", ToolInput(caster.port()), "-out", "file:///dev/null"});
  while (caster.bytesSent() == before) std::this_thread::sleep_for(std::chrono::microseconds(100));
  const auto start = Clock_::now();
  while (caster.bytesSent() < before + kBytes && SecondsSince(start) < 60.0) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  const double wallS = SecondsSince(start);
  return {wallS, tool.End()};
}

using Measure = Cost (*)(LoopbackCaster&);

void MegabyteTime(benchmark::State& state, Measure measure, double Cost::* what) {
  const auto caster = FullSpeedCaster();
  if (!caster) return state.SkipWithError("no loopback port");
  for (auto _ : state) state.SetIterationTime(measure(*caster).*what / kMegabytes);
}

// A caster that sends a message when it is told to.
class MessageCaster {
 public:
  MessageCaster() : listener_(ListenOnLoopback(0, status_)) {}

  int port() const { return listener_->port(); }
  bool AcceptClient() {
    for (int i = 0; i < 200 && !client_; ++i) (void)listener_->Accept(50, client_).ok();
    if (!client_) return false;
    accepted = Clock_::now();
    std::string request;
    (void)client_->SetTimeouts({.read = {.constantMs = 1000}}).ok();
    while (!request.ends_with("\r\n\r\n")) {
      char byte = 0;
      std::size_t got = 0;
      if (!client_->Read({&byte, 1}, got).ok() || got == 0) return false;
      request += byte;
    }
    return Send("ICY 200 OK\r\n");
  }
  bool Send(std::string_view bytes) {
    std::size_t written = 0;
    return client_->Write(bytes, {.constantMs = 1000}, written).ok();
  }

  Clock_::time_point accepted;

 private:
  DeviceStatus status_;
  std::unique_ptr<TcpListener> listener_;
  std::unique_ptr<ByteDevice> client_;
};

// When a message arrived at the far end of whatever passes it on.
class Arrival final : public CorrectionSink {
 public:
  PortError Write(std::string_view /*bytes*/) override {
    at_ = Clock_::now().time_since_epoch().count();
    return PortError::None;
  }
  bool Await() {
    const auto start = Clock_::now();
    while (at_ == 0 && SecondsSince(start) < 5.0) std::this_thread::yield();
    return at_ != 0;
  }
  double SecondsAfter(Clock_::time_point start) {
    return std::chrono::duration<double>(Clock_::duration(at_.exchange(0)) -
                                         start.time_since_epoch())
        .count();
  }

 private:
  std::atomic<Clock_::rep> at_ = 0;
};

// What is between the caster and the arrival: our session, or the tool and a socket.
class OurPath {
 public:
  OurPath(int port, Arrival& arrival)
      : connection_(MakeTcpNtripConnection(errors_)),
        session_(PlanFor(port), *connection_,
                 {.clock = SystemClock(), .files = SystemFiles(), .errors = errors_}) {
    session_.Attach(&arrival, nullptr);
    thread_ = std::jthread([this](const std::stop_token& stop) {
      NoProgress progress;
      while (!stop.stop_requested()) (void)session_.Step(100, progress);
    });
  }

 private:
  LastErrorRecord errors_;
  std::unique_ptr<NtripConnection> connection_;
  CorrectionSession session_;
  std::jthread thread_;
};

class ToolPath {
 public:
  ToolPath(int port, Arrival& arrival)
      : out_(FreePort()),
        tool_({"str2str", "-in", ToolInput(port), "-out", "tcpsvr://:" + std::to_string(out_)}),
        device_(MakeTcpDevice(1000)) {
    for (int i = 0; i < 200 && !device_->Open("127.0.0.1:" + std::to_string(out_)).ok(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    (void)device_->SetTimeouts({.read = {.constantMs = 50}}).ok();
    thread_ = std::jthread([this, &arrival](const std::stop_token& stop) {
      while (!stop.stop_requested()) {
        char byte = 0;
        std::size_t got = 0;
        if (!device_->Read({&byte, 1}, got).ok()) return;
        device_->Skip(device_->Held().size());
        if (got > 0) (void)arrival.Write({&byte, 1});
      }
    });
  }

 private:
  int out_;
  PeerProcess tool_;
  std::unique_ptr<ByteDevice> device_;
  std::jthread thread_;
};

const std::string kMessage = Capture().substr(0, 200);

template <typename Path>
void Latency(benchmark::State& state) {
  MessageCaster caster;
  Arrival arrival;
  Path path(caster.port(), arrival);
  if (!caster.AcceptClient()) return state.SkipWithError("no client");
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  for (auto _ : state) {
    const auto sent = Clock_::now();
    if (!caster.Send(kMessage) || !arrival.Await()) return state.SkipWithError("no message");
    state.SetIterationTime(arrival.SecondsAfter(sent));
    std::this_thread::sleep_for(std::chrono::milliseconds(7));
  }
}

template <typename Path>
void FirstByte(benchmark::State& state) {
  for (auto _ : state) {
    MessageCaster caster;
    Arrival arrival;
    Path path(caster.port(), arrival);
    if (!caster.AcceptClient() || !caster.Send(kMessage) || !arrival.Await()) {
      return state.SkipWithError("no message");
    }
    state.SetIterationTime(arrival.SecondsAfter(caster.accepted));
  }
}

void StartUp(benchmark::State& state, const std::vector<std::string>& words) {
  for (auto _ : state) {
    const auto start = Clock_::now();
    PeerProcess program(words);
    program.Wait();
    state.SetIterationTime(SecondsSince(start));
  }
}

// Each job of ours first, its peer behind it.
const bool kRegistered = [] {
  const bool tool = StreamToolInstalled();
  const auto add = [](const char* name, auto run, int iterations) {
    benchmark::RegisterBenchmark(name, run)->UseManualTime()->Iterations(iterations);
  };
  const auto megabyte = [&](const std::string& job, double Cost::* what) {
    add((job + "/tarvex").c_str(),
        [what](benchmark::State& state) { MegabyteTime(state, OurMegabytes, what); }, 1);
    if (tool) {
      add((job + "/str2str").c_str(),
          [what](benchmark::State& state) { MegabyteTime(state, ToolMegabytes, what); }, 1);
    }
  };
  megabyte("a megabyte of corrections", &Cost::wallS);
  megabyte("its processor time", &Cost::processorS);
  add("a message passed on/tarvex", Latency<OurPath>, 50);
  if (tool) add("a message passed on/str2str", Latency<ToolPath>, 50);
  add("connected to first byte/tarvex", FirstByte<OurPath>, 5);
  if (tool) add("connected to first byte/str2str", FirstByte<ToolPath>, 2);
  add(
      "start of the program/tarvex",
      [](benchmark::State& state) { StartUp(state, {TARVEX_PROGRAM, "--version"}); }, 50);
  if (tool) {
    add(
        "start of the program/str2str",
        [](benchmark::State& state) { StartUp(state, {"str2str", "-h"}); }, 50);
  }
  return true;
}();

}  // namespace
}  // namespace tarvex
