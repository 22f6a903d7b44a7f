#include "gnss/ntrip/tcp_connection.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "platform/tcp_socket.h"

namespace tarvex {
namespace {

constexpr std::uint32_t kConnectTimeoutMs = 10000;
constexpr int kConnectingProgress = 5;

class TcpNtripConnection final : public NtripConnection {
 public:
  TcpNtripConnection(LastErrorRecord& errors, StopAsked stop, CasterDeviceMaker makeDevice)
      : errors_(errors), stop_(std::move(stop)), makeDevice_(std::move(makeDevice)) {}

  bool Supports(NtripOperation operation) override { return operation == NtripOperation::OpenTcp; }

  PortError Perform(NtripOperation operation, const NtripTarget& target,
                    NtripProgress& progress) override {
    if (operation != NtripOperation::OpenTcp) return Report(errors_, PortError::NothingGiven);
    const bool bareIpv6 = target.host.find(':') != std::string::npos;
    port_ = std::make_unique<Port>(
        (bareIpv6 ? "[" + target.host + "]" : target.host) + ":" + target.port,
        makeDevice_(kConnectTimeoutMs, [this] { return StopAskedFor(); }), portErrors_);
    stopped_ = false;
    progress_ = &progress;
    const PortError error = port_->Open();
    progress_ = nullptr;
    return Told(error);
  }

  PortError Send(std::string_view bytes, int timeoutMs) override {
    if (port_ == nullptr) return Report(errors_, PortError::NotOpen);
    return Told(port_->Write(bytes, timeoutMs));
  }

  // The first byte within the time, then whatever came with it.
  PortError Receive(std::span<char> out, std::size_t& count, int timeoutMs) override {
    count = 0;
    if (port_ == nullptr) return Report(errors_, PortError::NotOpen);
    if (out.empty()) return PortError::None;
    if (const PortError error = port_->Read(out.first(1), timeoutMs); error != PortError::None) {
      return Told(error);
    }
    if (port_->lastCount() == 0) return PortError::FewerBytesRead;
    const std::string_view held = port_->Held().substr(0, out.size() - 1);
    std::copy(held.begin(), held.end(), out.begin() + 1);
    port_->Skip(held.size());
    count = 1 + held.size();
    return PortError::None;
  }

  void Close() override { port_.reset(); }

 private:
  // A time-out of a receive is no failure of the connection: the record of errors does not hear of
  // it.
  PortError Told(PortError error) {
    if (error == PortError::None) return error;
    if (stopped_) error = PortError::Cancelled;
    const std::vector<LastError> happened = portErrors_.History();
    portErrors_.Clear();
    if (error == PortError::Cancelled) return Report(errors_, error);
    if (error == PortError::FewerBytesRead) return error;
    for (const LastError& one : happened) errors_.Set(one.code, one.arguments);
    return error;
  }

  bool StopAskedFor() {
    stopped_ = (stop_ && stop_()) ||
               (progress_ != nullptr && progress_->Progress(kConnectingProgress) != 0);
    return stopped_;
  }

  LastErrorRecord& errors_;
  LastErrorRecord portErrors_;
  StopAsked stop_;
  CasterDeviceMaker makeDevice_;
  NtripProgress* progress_ = nullptr;  // while connecting
  bool stopped_ = false;
  std::unique_ptr<Port> port_;
};

}  // namespace

std::unique_ptr<NtripConnection> MakeTcpNtripConnection(LastErrorRecord& errors, StopAsked stop,
                                                        CasterDeviceMaker makeDevice) {
  if (!makeDevice) makeDevice = MakeTcpDevice;
  return std::make_unique<TcpNtripConnection>(errors, std::move(stop), std::move(makeDevice));
}

}  // namespace tarvex
