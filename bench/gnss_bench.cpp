// Receiver lines and corrections: the full parse of a recorded log beside a plain scan for its line
// ends and beside the C library's scanner, framing, and a stream over the loopback interface.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "core/text/text.h"
#include "gnss/caster/loopback_caster.h"
#include "gnss/corrections/rtcm_framer.h"
#include "gnss/nmea/sentence_reader.h"
#include "gnss/nmea/sentences.h"
#include "gnss/ntrip/client.h"
#include "gnss/ntrip/tcp_connection.h"
#include "gnss/receivers/receiver_make.h"

namespace tarvex {
namespace {

std::string Data(const std::string& name) {
  std::string bytes;
  (void)ReadWholeFile(SystemFiles(), std::string(TARVEX_TEST_DATA) + "/" + name, 1 << 26, bytes)
      .ok();
  return bytes;
}

// The position sentences of a log, each a line of its own.
std::vector<std::string> PositionLines() {
  const std::string log = Data("gnss/nmea-rtk.log");
  std::vector<std::string> lines;
  std::string_view rest = log;
  while (const auto line = TakeLine(rest)) {
    const Sentence* const sentence = FindSentence(*line, true);
    if (sentence != nullptr && sentence->type == "GGA") lines.emplace_back(*line);
  }
  return lines;
}

void PerLine(benchmark::State& state) {
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

void ParseGga(benchmark::State& state, bool checksum) {
  const std::vector<std::string> lines = PositionLines();
  NmeaSettings settings = FindMake(kMakeAnyNmea).settings.nmea;
  settings.checksum = checksum;
  SentenceReader reader(settings, FindMake(kMakeAnyNmea).nmea);
  GnssPositionState position;
  std::size_t at = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(reader.Take(lines[at], position));
    benchmark::DoNotOptimize(position);
    if (++at == lines.size()) at = 0;
  }
  PerLine(state);
}

// What a program does that leaves the work to the C library: the same fields of the same lines.
void ScanGga(benchmark::State& state) {
  const std::vector<std::string> lines = PositionLines();
  std::size_t at = 0;
  for (auto _ : state) {
    double values[8] = {};
    char north = 0;
    char east = 0;
    int quality = 0;
    benchmark::DoNotOptimize(
        std::sscanf(lines[at].c_str(), "$%*[A-Z],%lf,%lf,%c,%lf,%c,%d,%lf,%lf,%lf,M,%lf,M,%lf",
                    &values[0], &values[1], &north, &values[2], &east, &quality, &values[3],
                    &values[4], &values[5], &values[6], &values[7]));
    benchmark::DoNotOptimize(values);
    if (++at == lines.size()) at = 0;
  }
  PerLine(state);
}

void ParseGgaChecked(benchmark::State& state) {
  ParseGga(state, true);
}
void ParseGgaUnchecked(benchmark::State& state) {
  ParseGga(state, false);
}
BENCHMARK(ParseGgaUnchecked)->Name("position sentence/tarvex");
BENCHMARK(ScanGga)->Name("position sentence/sscanf");
BENCHMARK(ParseGgaChecked)->Name("position sentence with checksum/tarvex");

void ParseLog(benchmark::State& state) {
  const std::string log = Data("gnss/r2_ptnl_ggk_part1.log");
  const ReceiverMake& make = FindMake(kMakeAnyNmea);
  std::int64_t lines = 0;
  for (auto _ : state) {
    GnssPositionState position;
    SentenceReader reader(make.settings.nmea, make.nmea);
    std::string_view rest = log;
    while (const auto line = TakeLine(rest)) {
      benchmark::DoNotOptimize(reader.Take(*line, position));
      ++lines;
    }
  }
  state.SetItemsProcessed(lines);
}
BENCHMARK(ParseLog)->Name("log of all sentences/tarvex");

void ScanLog(benchmark::State& state) {
  const std::string log = Data("gnss/r2_ptnl_ggk_part1.log");
  std::int64_t lines = 0;
  for (auto _ : state) {
    std::string_view rest = log;
    while (const auto line = TakeLine(rest)) {
      benchmark::DoNotOptimize(line);
      ++lines;
    }
  }
  state.SetItemsProcessed(lines);
}
BENCHMARK(ScanLog)->Name("log of all sentences/line scan alone");

struct Nobody final : RtcmFramer::Listener {
  void OnMessage(std::string_view message) override { benchmark::DoNotOptimize(message); }
};

void FrameCorrections(benchmark::State& state) {
  const std::string capture = Data("ntrip/rtcm3.bndm.log");
  RtcmFramer framer;
  Nobody nobody;
  for (auto _ : state) framer.Feed(capture, nobody);
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * capture.size()));
}
BENCHMARK(FrameCorrections)->Name("framing 11.7 kB of corrections/tarvex");

// One receive of corrections from a caster that sends as fast as they are taken.
void ReceiveCorrections(benchmark::State& state) {
  LastErrorRecord errors;
  CasterContent content{.data = Data("ntrip/ublox-zed-f9t-rtcm3.log"), .bytesPerSecond = 0};
  content.stream.mountpoint.Assign("MNT");
  LoopbackCaster caster(std::move(content), SystemClock());
  if (!caster.Start(0).ok()) return state.SkipWithError("no loopback port");
  const auto connection = MakeTcpNtripConnection(errors);
  NtripClient client(connection.get(), "bench",
                     {.clock = SystemClock(), .files = SystemFiles(), .errors = errors});
  NoProgress progress;
  const CasterLogin login{.host = FixedText<128>("127.0.0.1"),
                          .port = std::to_string(caster.port())};
  if (client.ConnectMountpoint(login, "MNT", progress) != PortError::None) {
    return state.SkipWithError("no stream");
  }
  std::vector<char> buffer(65536);
  std::int64_t bytes = 0;
  for (auto _ : state) {
    std::size_t count = 0;
    if (client.Receive(buffer, count, 1000) != PortError::None) {
      return state.SkipWithError("stream lost");
    }
    bytes += static_cast<std::int64_t>(count);
  }
  state.SetBytesProcessed(bytes);
}
BENCHMARK(ReceiveCorrections)->Name("one receive of corrections/tarvex")->UseRealTime();

// From nothing to the first byte of the stream.
void FirstByte(benchmark::State& state) {
  LastErrorRecord errors;
  CasterContent content{.data = Data("ntrip/rtcm3.bndm.log"), .bytesPerSecond = 0};
  content.stream.mountpoint.Assign("MNT");
  LoopbackCaster caster(std::move(content), SystemClock());
  if (!caster.Start(0).ok()) return state.SkipWithError("no loopback port");
  const CasterLogin login{.host = FixedText<128>("127.0.0.1"),
                          .port = std::to_string(caster.port())};
  NoProgress progress;
  for (auto _ : state) {
    const auto connection = MakeTcpNtripConnection(errors);
    NtripClient client(connection.get(), "bench",
                       {.clock = SystemClock(), .files = SystemFiles(), .errors = errors});
    char byte = 0;
    std::size_t count = 0;
    if (client.ConnectMountpoint(login, "MNT", progress) != PortError::None ||
        client.Receive({&byte, 1}, count, 1000) != PortError::None) {
      return state.SkipWithError("no stream");
    }
  }
}
BENCHMARK(FirstByte)->Name("connect to first byte of corrections/tarvex")->UseRealTime();

}  // namespace
}  // namespace tarvex
