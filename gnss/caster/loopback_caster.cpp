#include "gnss/caster/loopback_caster.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/text/text.h"
#include "gnss/ntrip/base64.h"

namespace tarvex {
namespace {

constexpr int kAcceptMs = 50;
constexpr std::size_t kMostClients = 16;
constexpr std::size_t kLongestRequest = 4096;
constexpr int kRequestSteps = 100;  // of the read interval below
constexpr std::size_t kMostUploads = 10'000;
constexpr std::size_t kLongestUpload = 512;
constexpr std::uint32_t kTickMs = 20;
constexpr std::size_t kBlock = 65536;

constexpr DeviceTimeouts kRequestTimeouts = {.read = {.constantMs = 50}};
constexpr WriteTimeouts kSendSlice = {.constantMs = 100};
constexpr int kIdleSlices = 50;  // after which a client that takes nothing is left

std::string_view MountpointOf(std::string_view request) {
  constexpr std::string_view kGet = "GET /";
  if (!request.starts_with(kGet)) return {};
  request.remove_prefix(kGet.size());
  return request.substr(0, request.find_first_of(" \r\n"));
}

// In steps, so that a client that takes nothing holds up no stop.
bool SendAll(ByteDevice& device, std::string_view bytes, const std::stop_token& stop) {
  for (int idle = 0; !bytes.empty(); ++idle) {
    std::size_t written = 0;
    if (idle == kIdleSlices || stop.stop_requested()) return false;
    if (!device.Write(bytes, kSendSlice, written).ok()) return false;
    if (written > 0) idle = 0;
    bytes.remove_prefix(written);
  }
  return true;
}

// What follows "Authorization: Basic"; header and scheme are known in any letter case.
std::string_view LoginOf(std::string_view request) {
  constexpr std::string_view kName = "authorization:";
  constexpr std::string_view kScheme = "basic ";
  while (const auto line = TakeLine(request)) {
    if (!EqualsIgnoringCase(line->substr(0, kName.size()), kName)) continue;
    const std::string_view value = WithoutOuterBlanks(line->substr(kName.size()));
    if (!EqualsIgnoringCase(value.substr(0, kScheme.size()), kScheme)) continue;
    return WithoutOuterBlanks(value.substr(kScheme.size()));
  }
  return {};
}

// The request up to its blank line, in however many pieces; empty when none comes.
std::string ReadRequest(ByteDevice& device, const std::stop_token& stop) {
  std::string request;
  for (int step = 0; step < kRequestSteps && !stop.stop_requested(); ++step) {
    char byte = 0;
    std::size_t got = 0;
    do {
      if (!device.Read({&byte, 1}, got).ok()) return {};
      if (got == 1) request += byte;
      if (request.ends_with("\r\n\r\n")) return request;
    } while (got == 1 && request.size() < kLongestRequest);
  }
  return {};
}

}  // namespace

LoopbackCaster::LoopbackCaster(CasterContent content, Clock& clock)
    : content_(std::move(content)), clock_(clock) {}

LoopbackCaster::~LoopbackCaster() = default;

DeviceStatus LoopbackCaster::Start(int port) {
  DeviceStatus status;
  listener_ = ListenOnLoopback(port, status);
  if (listener_) {
    acceptor_ = std::jthread([this](const std::stop_token& stop) { AcceptUntilStopped(stop); });
  }
  return status;
}

std::vector<std::string> LoopbackCaster::TakeUploads() {
  const std::lock_guard lock(mutex_);
  return std::exchange(uploads_, {});
}

void LoopbackCaster::RemoveFinished() {
  clients_.remove_if([](const Client& client) { return client.finished.load(); });
}

void LoopbackCaster::AcceptUntilStopped(const std::stop_token& stop) {
  while (!stop.stop_requested()) {
    std::unique_ptr<ByteDevice> device;
    if (!listener_->Accept(kAcceptMs, device).ok()) break;
    RemoveFinished();
    if (!device || clients_.size() == kMostClients) continue;
    Client& client = clients_.emplace_back();
    client.thread =
        std::jthread([this, &client, owned = std::move(device)](const std::stop_token& clientStop) {
          Serve(*owned, clientStop);
          (void)owned->Close();
          client.finished = true;
        });
  }
  clients_.clear();
}

std::string LoopbackCaster::SourceTable() const {
  const std::string table = SourceTableLine(content_.stream) + "ENDSOURCETABLE\r\n";
  return "SOURCETABLE 200 OK\r\nServer: NTRIP Tarvex trial caster\r\nContent-Type: text/plain\r\n"
         "Content-Length: " +
         std::to_string(table.size()) + "\r\n\r\n" + table;
}

std::string LoopbackCaster::Answer(std::string_view request, bool& stream) const {
  stream = false;
  const std::string_view mountpoint = MountpointOf(request);
  if (mountpoint != content_.stream.mountpoint.view()) return SourceTable();
  if (!content_.user.empty() &&
      LoginOf(request) != Base64Of(content_.user + ":" + content_.password)) {
    return "HTTP/1.0 401 Unauthorized\r\nWWW-Authenticate: Basic realm=\"/" +
           std::string(mountpoint) + "\"\r\nConnection: close\r\n\r\n";
  }
  stream = true;
  return "ICY 200 OK\r\n";
}

void LoopbackCaster::Serve(ByteDevice& device, const std::stop_token& stop) {
  if (!device.SetTimeouts(kRequestTimeouts).ok()) return;
  const std::string request = ReadRequest(device, stop);
  if (request.empty()) return;
  ++requests_;
  bool stream = false;
  if (SendAll(device, Answer(request, stream), stop) && stream) Stream(device, stop);
}

void LoopbackCaster::TakeUpload(std::string_view bytes, std::string& line) {
  for (const char c : bytes) {
    if (c != '\n') {
      if (line.size() < kLongestUpload) line += c;
      continue;
    }
    if (line.ends_with('\r')) line.pop_back();
    const std::lock_guard lock(mutex_);
    if (uploads_.size() < kMostUploads) uploads_.push_back(line);
    line.clear();
  }
}

// Sends the data at its rate, over and over, and takes what the client sends meanwhile.
void LoopbackCaster::Stream(ByteDevice& device, const std::stop_token& stop) {
  ++streams_;
  const std::uint64_t generation = generation_;
  const DeviceTimeouts atOnce = {.read = {.intervalMs = ReadTimeouts::kAtOnce}};
  if (!device.SetTimeouts(atOnce).ok() || content_.data.empty()) return;
  const std::int64_t sinceMs = clock_.SteadyMilliseconds();
  std::uint64_t sent = 0;
  std::string line;
  while (!stop.stop_requested() && generation == generation_) {
    std::uint64_t due = kBlock;
    if (content_.bytesPerSecond > 0) {
      const auto elapsedMs = static_cast<std::uint64_t>(clock_.SteadyMilliseconds() - sinceMs);
      due = std::min<std::uint64_t>(kBlock, elapsedMs * content_.bytesPerSecond / 1000 - sent);
    }
    const std::string_view piece =
        std::string_view(content_.data).substr(sent % content_.data.size(), due);
    if (!SendAll(device, piece, stop)) return;
    sent += piece.size();
    bytesSent_ += piece.size();
    std::array<char, 1024> upload;
    std::size_t got = 0;
    if (!device.Read(upload, got).ok()) return;
    TakeUpload({upload.data(), got}, line);
    if (content_.bytesPerSecond > 0) clock_.SleepMilliseconds(kTickMs);
  }
}

}  // namespace tarvex
