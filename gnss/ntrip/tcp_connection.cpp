#include <memory>
#include <utility>

#include "gnss/ntrip/connection.h"
#include "platform/tcp_socket.h"

namespace tarvex {
namespace {

constexpr std::uint32_t kConnectTimeoutMs = 10000;
constexpr int kConnectingProgress = 5;

class TcpNtripConnection final : public NtripConnection {
 public:
  TcpNtripConnection(LastErrorRecord& errors, StopAsked stop)
      : errors_(errors), stop_(std::move(stop)) {}

  bool Supports(NtripOperation operation) override { return operation == NtripOperation::OpenTcp; }

  PortError Perform(NtripOperation operation, const NtripTarget& target,
                    Progress& progress) override {
    if (operation != NtripOperation::OpenTcp) return Report(errors_, PortError::NothingGiven);
    const bool bare_ipv6 = target.host.find(':') != std::string::npos;
    port_ = std::make_unique<Port>(
        (bare_ipv6 ? "[" + target.host + "]" : target.host) + ":" + target.port,
        MakeTcpDevice(kConnectTimeoutMs, [this] { return StopAskedFor(); }), errors_);
    stopped_ = false;
    progress_ = &progress;
    const PortError error = port_->Open();
    progress_ = nullptr;
    return stopped_ ? Report(errors_, PortError::Cancelled) : error;
  }

  PortError Send(std::string_view bytes, int timeout_ms) override {
    if (port_ == nullptr) return Report(errors_, PortError::NotOpen);
    return port_->Write(bytes, timeout_ms);
  }

  // The first byte within the time, then whatever stands behind it.
  PortError Receive(std::span<char> out, std::size_t& count, int timeout_ms) override {
    count = 0;
    if (port_ == nullptr) return Report(errors_, PortError::NotOpen);
    if (out.empty()) return PortError::None;
    if (const PortError error = port_->Read(out.first(1), timeout_ms); error != PortError::None) {
      return stopped_ ? Report(errors_, PortError::Cancelled) : error;
    }
    if (port_->lastCount() == 0) return PortError::FewerBytesRead;
    count = 1;
    if (out.size() == 1) return PortError::None;
    // An error here is told by the next call: the byte that came is not lost over it.
    (void)port_->Read(out.subspan(1), kReturnAtOnce);
    count += port_->lastCount();
    return PortError::None;
  }

  void Close() override { port_.reset(); }

 private:
  bool StopAskedFor() {
    stopped_ =
        (stop_ && stop_()) || (progress_ != nullptr && progress_->Report(kConnectingProgress) != 0);
    return stopped_;
  }

  LastErrorRecord& errors_;
  StopAsked stop_;
  Progress* progress_ = nullptr;  // while connecting
  bool stopped_ = false;
  std::unique_ptr<Port> port_;
};

}  // namespace

std::unique_ptr<NtripConnection> MakeTcpNtripConnection(LastErrorRecord& errors, StopAsked stop) {
  return std::make_unique<TcpNtripConnection>(errors, std::move(stop));
}

}  // namespace tarvex
