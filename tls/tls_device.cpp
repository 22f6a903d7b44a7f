#include "tls/tls_device.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <mutex>
#include <optional>
#include <utility>

#include "platform/run_time_library.h"
#include "tls/tls_failure.h"
#include "tls/tls_interface.h"

namespace tarvex {
namespace {

using SteadyTime = std::chrono::steady_clock::time_point;

constexpr std::size_t kRecord = 16384;        // the most that one record holds
constexpr std::uint32_t kReplyTimeMs = 1000;  // for what the protocol itself sends
constexpr std::size_t kReadAhead = 65536;     // a sender that floods is not followed for ever
constexpr std::size_t kLongestSaid = 60;
constexpr char kHandshakeRecord = 0x16;
constexpr char kAlertRecord = 0x15;

// Loaded once and kept: the protocol's library does not like to be unloaded. Null with the reason
// in `why`; a later call tries again.
const TlsFunctions* ModuleFunctions(std::string& why) {
  static std::mutex mutex;
  static RunTimeLibrary* library = nullptr;
  const std::lock_guard lock(mutex);
  if (library == nullptr) library = SystemRunTimeLibraries().Load("tls.dll", why).release();
  if (library == nullptr) return nullptr;
  void* const entry = library->Find("TlsFunctionsOfModule");
  if (entry != nullptr) return reinterpret_cast<TlsFunctionsEntry*>(entry)();
  why = "tls.dll: an entry point is missing";
  return nullptr;
}

std::string HostOf(std::string_view name) {
  std::string_view host = name.substr(0, name.rfind(':'));
  if (host.starts_with('[') && host.ends_with(']')) host = host.substr(1, host.size() - 2);
  return std::string(host);
}

TlsFailure FailureOf(int code) {
  switch (code) {
    case kTlsFailureAuthorityFile:
      return TlsFailure::AuthorityFile;
    case kTlsFailureWrongName:
      return TlsFailure::WrongName;
    case kTlsFailureExpired:
      return TlsFailure::Expired;
    case kTlsFailureNotYetValid:
      return TlsFailure::NotYetValid;
    case kTlsFailureSelfSigned:
      return TlsFailure::SelfSigned;
    case kTlsFailureUnknownAuthority:
      return TlsFailure::UnknownAuthority;
    case kTlsFailureCertificate:
      return TlsFailure::Certificate;
    default:
      return TlsFailure::Protocol;
  }
}

// When a read that began now is out of time; nothing when it has no limit.
std::optional<SteadyTime> Deadline(const ReadTimeouts& timeouts, std::size_t count) {
  if (timeouts.multiplierMs == 0 && timeouts.constantMs == 0) return {};
  return std::chrono::steady_clock::now() +
         std::chrono::milliseconds(std::uint64_t{timeouts.multiplierMs} * count +
                                   timeouts.constantMs);
}

// What is left until then, for a device that takes 0 as no limit; rounded up.
std::uint32_t MillisecondsUntil(SteadyTime until) {
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
  return static_cast<std::uint32_t>(
      std::clamp<std::int64_t>(left.count(), 0, std::int64_t{1} << 30));
}

class TlsDevice final : public ByteDevice {
 public:
  TlsDevice(std::unique_ptr<ByteDevice> carrier, std::string authorityFile,
            std::uint32_t handshakeTimeoutMs)
      : carrier_(std::move(carrier)),
        authorityFile_(std::move(authorityFile)),
        handshakeTimeoutMs_(handshakeTimeoutMs) {}
  TlsDevice(const TlsDevice&) = delete;
  TlsDevice& operator=(const TlsDevice&) = delete;
  ~TlsDevice() override { (void)Close(); }

  DeviceStatus Open(const std::string& name) override {
    (void)Close();
    why_.clear();
    host_ = HostOf(name);
    std::string missing;
    functions_ = ModuleFunctions(missing);
    if (functions_ == nullptr) return Refuse(TlsFailure::NoLibrary, missing);
    session_ = functions_->Begin(host_.c_str(), authorityFile_.c_str());
    if (session_ == nullptr) return {ENOMEM};
    DeviceStatus status = FailureOfSession().value_or(DeviceStatus{});
    if (status.ok()) status = carrier_->Open(name);
    if (status.ok()) status = ShakeHands();
    open_ = status.ok();
    if (!open_) (void)Close();
    return status;
  }

  DeviceStatus Close() override {
    const std::lock_guard lock(mutex_);
    if (open_) {
      functions_->SayGoodbye(session_);
      (void)Flush({.constantMs = kReplyTimeMs});
    }
    open_ = false;
    if (session_ != nullptr) functions_->End(std::exchange(session_, nullptr));
    held_.clear();
    toSend_.clear();
    return carrier_->isOpen() ? carrier_->Close() : DeviceStatus{};
  }

  bool isOpen() const override { return open_; }

  std::string Explain(const DeviceStatus& status) const override {
    return status.code == DeviceStatus::kRefused ? why_ : carrier_->Explain(status);
  }

  DeviceStatus GetTimeouts(DeviceTimeouts& timeouts) override {
    timeouts = timeouts_;
    return {};
  }
  DeviceStatus SetTimeouts(const DeviceTimeouts& timeouts) override {
    timeouts_ = timeouts;
    return {};
  }

  DeviceStatus Read(std::span<char> out, std::size_t& got) override {
    const ReadTimeouts timeouts = timeouts_.read;
    const std::optional<SteadyTime> until = Deadline(timeouts, out.size());
    std::optional<SteadyTime> interval;
    got = TakeHeld(out);
    while (got < out.size()) {
      bool came = false;
      if (const DeviceStatus status = Decrypt(came); !status.ok()) {
        return got > 0 ? DeviceStatus{} : status;
      }
      if (came) {
        got += TakeHeld(out.subspan(got));
        if (timeouts.intervalMs != 0) {
          interval =
              std::chrono::steady_clock::now() + std::chrono::milliseconds(timeouts.intervalMs);
        }
        continue;
      }
      bool fetched = false;
      const std::optional<SteadyTime> sooner =
          until && interval ? std::min(*until, *interval) : (until ? until : interval);
      const DeviceStatus status = Fetch(timeouts.atOnce() ? SteadyTime{} : sooner, fetched);
      if (!status.ok()) return got > 0 && !status.cancelled() ? DeviceStatus{} : status;
      if (!fetched) return {};
    }
    return {};
  }

  // What was encrypted is on its way, also when the carrier has not taken all of it in time: it
  // goes out in front of what comes next.
  DeviceStatus Write(std::string_view bytes, const WriteTimeouts& timeouts,
                     std::size_t& written) override {
    written = 0;
    const std::lock_guard lock(mutex_);
    if (!open_) return {DeviceStatus::kHungUp};
    while (written < bytes.size()) {
      if (const DeviceStatus status = Flush(timeouts); !status.ok()) return status;
      if (!toSend_.empty()) return {};
      const std::string_view piece = bytes.substr(written, kRecord);
      if (functions_->Write(session_, piece.data(), piece.size()) != kTlsDone) {
        return FailureOfSession().value_or(DeviceStatus{EPROTO});
      }
      written += piece.size();
    }
    return Flush(timeouts);
  }

  DeviceStatus BytesWaiting(std::size_t& count) override {
    bool came = true;
    bool fetched = true;
    DeviceStatus status;
    while (status.ok() && (came || fetched) && held_.size() < kReadAhead) {
      status = Decrypt(came);
      fetched = false;
      if (status.ok() && !came) status = Fetch(SteadyTime{}, fetched);
    }
    count = held_.size();
    return count > 0 ? DeviceStatus{} : status;
  }
  DeviceStatus PurgeInput() override {
    std::size_t count = 0;
    const DeviceStatus status = BytesWaiting(count);
    held_.clear();
    return status;
  }

  std::string_view Held() const override { return held_; }
  void Skip(std::size_t count) override { held_.erase(0, count); }

 private:
  DeviceStatus Refuse(TlsFailure failure, const std::string& detail) {
    why_ = TlsFailureText(failure, detail, host_);
    return {DeviceStatus::kRefused};
  }

  // Nothing while the session has not failed.
  std::optional<DeviceStatus> FailureOfSession() {
    std::array<char, 256> detail{};
    const int code = functions_->Failure(session_, detail.data(), detail.size());
    if (code == kTlsFailureNone) return {};
    std::string text = detail.data();
    if (code == kTlsFailureAuthorityFile) text = authorityFile_ + ": " + text;
    return Refuse(FailureOf(code), text);
  }

  std::size_t TakeHeld(std::span<char> out) {
    const std::size_t count = std::min(out.size(), held_.size());
    if (count > 0) std::memcpy(out.data(), held_.data(), count);
    held_.erase(0, count);
    return count;
  }

  // Sends what the protocol wants sent, as far as the carrier takes it in time.
  DeviceStatus Flush(const WriteTimeouts& timeouts) {
    std::array<char, 4096> piece;
    while (const std::size_t count = functions_->TakeToSend(session_, piece.data(), piece.size())) {
      toSend_.append(piece.data(), count);
    }
    std::size_t written = 0;
    if (toSend_.empty()) return {};
    const DeviceStatus status = carrier_->Write(toSend_, timeouts, written);
    toSend_.erase(0, written);
    return status;
  }

  // What the session can make of what it has.
  DeviceStatus Decrypt(bool& came) {
    came = false;
    const std::lock_guard lock(mutex_);
    if (!open_) return {DeviceStatus::kHungUp};
    std::array<char, kRecord> plain;
    std::size_t got = 0;
    switch (functions_->Read(session_, plain.data(), plain.size(), &got)) {
      case kTlsDone:
        held_.append(plain.data(), got);
        came = true;
        return {};
      case kTlsWantsBytes:
        return Flush({.constantMs = kReplyTimeMs});
      case kTlsEnded:
        return {DeviceStatus::kHungUp};
      default:
        return FailureOfSession().value_or(DeviceStatus{EPROTO});
    }
  }

  // Waits for bytes of the carrier and hands the session all that came; without a time it waits as
  // long as it takes.
  DeviceStatus Fetch(std::optional<SteadyTime> until, bool& fetched) {
    fetched = false;
    ReadTimeouts timeouts;
    if (until) timeouts.constantMs = MillisecondsUntil(*until);
    if (until && timeouts.constantMs == 0) timeouts = {.intervalMs = ReadTimeouts::kAtOnce};
    (void)carrier_->SetTimeouts({.read = timeouts});
    char first = 0;
    std::size_t got = 0;
    const DeviceStatus status = carrier_->Read({&first, 1}, got);
    if (!status.ok() || got == 0) return status;
    fetched = true;
    const std::lock_guard lock(mutex_);
    const std::string_view more = carrier_->Held();
    if (firstSaid_.size() < kLongestSaid) {
      firstSaid_ += first;
      firstSaid_ += more.substr(0, kLongestSaid);
    }
    functions_->PutReceived(session_, &first, 1);
    functions_->PutReceived(session_, more.data(), more.size());
    carrier_->Skip(more.size());
    return {};
  }

  DeviceStatus ShakeHands() {
    firstSaid_.clear();
    const SteadyTime until =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(handshakeTimeoutMs_);
    for (;;) {
      const int step = functions_->Handshake(session_);
      // Also when it failed: the far end is told why.
      const DeviceStatus sent = Flush({.constantMs = kReplyTimeMs});
      if (step == kTlsDone) return sent;
      if (SaidSomethingElse()) return Refuse(TlsFailure::NotTls, SaidLine());
      if (step == kTlsFailed) return FailureOfSession().value_or(DeviceStatus{EPROTO});
      if (step == kTlsEnded) return Refuse(TlsFailure::Cut, "");
      if (!sent.ok()) return sent.cancelled() ? sent : Refuse(TlsFailure::Cut, "");
      bool fetched = false;
      const DeviceStatus status = Fetch(until, fetched);
      if (status.cancelled()) return status;
      if (!status.ok()) return Refuse(TlsFailure::Cut, "");
      if (!fetched) return Refuse(TlsFailure::NoAnswer, "");
    }
  }

  bool SaidSomethingElse() const {
    return !firstSaid_.empty() && firstSaid_.front() != kHandshakeRecord &&
           firstSaid_.front() != kAlertRecord;
  }
  std::string SaidLine() const {
    return firstSaid_.substr(0, std::min(firstSaid_.find_first_of("\r\n"), kLongestSaid));
  }

  std::unique_ptr<ByteDevice> carrier_;
  const std::string authorityFile_;
  const std::uint32_t handshakeTimeoutMs_;
  const TlsFunctions* functions_ = nullptr;
  std::mutex mutex_;  // of the session, and of what is to be sent
  TlsSession* session_ = nullptr;
  bool open_ = false;
  std::string host_;
  std::string why_;
  std::string firstSaid_;  // of the handshake
  std::string held_;       // decrypted and not read yet; the reading thread's own
  std::string toSend_;     // encrypted and not taken by the carrier yet
  DeviceTimeouts timeouts_;
};

}  // namespace

std::unique_ptr<ByteDevice> MakeTlsDevice(std::unique_ptr<ByteDevice> carrier,
                                          std::string authorityFile,
                                          std::uint32_t handshakeTimeoutMs) {
  return std::make_unique<TlsDevice>(std::move(carrier), std::move(authorityFile),
                                     handshakeTimeoutMs);
}

}  // namespace tarvex
