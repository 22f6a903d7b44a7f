#include "gnss/ntrip/client.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "core/printable.h"
#include "core/string_table.h"
#include "gnss/ntrip/base64.h"

namespace tarvex {
namespace {

constexpr std::size_t kReceiveSize = 1023;
constexpr int kSendTimeoutMs = 1000;
constexpr std::int64_t kAnswerLimitMs = 60000;
constexpr int kTextConnecting = 3310;
constexpr int kTextConnectingToBroadcaster = 3311;
constexpr int kOpenProgressBase = 25;
constexpr std::string_view kStreamMark = "ICY 200 OK";
constexpr std::string_view kTlsAlert = "\x15\x03";
constexpr std::size_t kLongestAnswer = 100;
constexpr int kHttpOk = 200;

}  // namespace

PortError HttpRefusal(const HttpHead& head) {
  switch (head.status()) {
    case 0:
    case kHttpOk:
      return PortError::None;
    case 401:
    case 403:
      return PortError::NotAuthorized;
    case 404:
      return PortError::MountpointUnknown;
    default:
      return PortError::CasterRefused;
  }
}

std::string NtripRequest(std::string_view mountpoint, std::string_view user,
                         std::string_view password) {
  std::string request = "GET /";
  std::copy_if(mountpoint.begin(), mountpoint.end(), std::back_inserter(request),
               [](char c) { return static_cast<unsigned char>(c) > ' ' && c != 0x7F; });
  request += " HTTP/1.0\r\nUser-Agent: NTRIP Morwend\r\n";
  if (!user.empty()) {
    const std::string login = std::string(user) + ":" + std::string(password);
    request += "Authorization: Basic " + Base64Of(login) + "\r\n";
  }
  return request + "Accept: */*\r\nConnection: close\r\n\r\n";
}

NtripClient::NtripClient(NtripConnection* connection, std::string_view name,
                         NtripSurroundings surroundings)
    : connection_(connection), name_(name), surroundings_(std::move(surroundings)) {}

PortError NtripClient::Fail(PortError error) {
  return Report(surroundings_.errors, error);
}

// The operation's own error stands above its cause in the record; what the cause said is kept.
PortError NtripClient::Caused(PortError error, PortError cause) {
  cause_ = cause;
  cause_detail_.clear();
  const int wanted =
      static_cast<int>(cause == PortError::CasterNotOpened ? PortError::System : cause);
  for (const LastError& entry : surroundings_.errors.History()) {
    if (entry.code == wanted && !entry.arguments.empty()) cause_detail_ = entry.arguments.front();
  }
  return Fail(error);
}

int NtripClient::ElapsedSeconds(std::int64_t since_ms) const {
  return static_cast<int>((surroundings_.clock.SteadyMilliseconds() - since_ms) / 1000);
}

PortError NtripClient::Connect(const std::string& host, const std::string& port,
                               Progress& progress) {
  if (connection_ == nullptr) return Fail(PortError::NothingGiven);
  progress.Status(Strings().Text(kTextConnecting));
  return connection_->Perform(NtripOperation::OpenTcp, {.host = host, .port = port}, progress);
}

PortError NtripClient::SendRequest(std::string_view mountpoint, std::string_view user,
                                   std::string_view password) {
  if (connection_ == nullptr) return Fail(PortError::NothingGiven);
  return connection_->Send(NtripRequest(mountpoint, user, password), kSendTimeoutMs);
}

PortError NtripClient::ReceiveText(std::string& received, int timeout_ms) {
  std::array<char, kReceiveSize> buffer;
  std::size_t count = 0;
  const PortError error = connection_->Receive(buffer, count, timeout_ms);
  received.assign(buffer.data(), error == PortError::None ? count : 0);
  return error;
}

PortError NtripClient::OpenStream(std::string_view mountpoint, std::string_view user,
                                  std::string_view password, Progress& progress) {
  if (const PortError error = SendRequest(mountpoint, user, password); error != PortError::None) {
    return error;
  }
  const std::int64_t since_ms = surroundings_.clock.SteadyMilliseconds();
  std::string received;
  if (const PortError error = ReceiveText(received, static_cast<int>(2 * timeout_ms_));
      error != PortError::None) {
    return Fail(error == PortError::Cancelled ? error : PortError::FirstReceiveFailed);
  }
  ForgetStream();
  if (TakeAnswer(received)) return BeginBody();
  return AwaitStream(progress, since_ms);
}

PortError NtripClient::AwaitStream(Progress& progress, std::int64_t since_ms) {
  std::string received;
  do {
    if (surroundings_.clock.SteadyMilliseconds() - since_ms > kAnswerLimitMs) {
      return Fail(PortError::NoAnswer);
    }
    const int elapsed = ElapsedSeconds(since_ms);
    if (progress.Report(elapsed + kOpenProgressBase, 0, elapsed) != 0) {
      return Fail(PortError::Cancelled);
    }
    if (const PortError refusal = Refusal(); refusal != PortError::None) return Refused(refusal);
    const PortError error = ReceiveText(received, static_cast<int>(timeout_ms_));
    if (error == PortError::Cancelled) return Fail(error);
    if (error == PortError::FewerBytesRead) continue;
    if (error != PortError::None) return Refused(RefusalWhenClosed());
  } while (received.empty() || !TakeAnswer(received));
  return BeginBody();
}

void NtripClient::ForgetStream() {
  reply_ = {};
  head_ = {};
  start_ = {};
  chunks_ = {};
  chunked_ = false;
  pending_.clear();
}

// True when the caster has begun to send; what came with its answer is then pending.
bool NtripClient::TakeAnswer(std::string_view received) {
  reply_.Take(received);
  head_.Feed(received);
  if (head_.state() == HttpHead::State::Complete && head_.status() == kHttpOk) {
    start_.Skip();
    pending_ = received;
    return true;
  }
  if (!reply_.Holds(kStreamMark)) return false;
  start_.Feed(reply_.Behind(kStreamMark), pending_);
  return true;
}

// The body of an HTTP answer is the stream, unless it says that it is something else.
PortError NtripClient::BeginBody() {
  if (head_.state() != HttpHead::State::Complete) return PortError::None;
  constexpr std::string_view kType = "Content-Type";
  if (head_.Holds(kType, "sourcetable")) return Fail(PortError::MountpointUnknown);
  if (head_.Holds(kType, "html")) return Fail(PortError::NotCorrections);
  chunked_ = head_.Holds("Transfer-Encoding", "chunked");
  if (!chunked_) return PortError::None;
  const std::string received = std::exchange(pending_, {});
  chunks_.Feed(received, pending_);
  return PortError::None;
}

// Authorization is looked at first: a caster may send its table along.
PortError NtripClient::Refusal() const {
  if (reply_.Holds("401 Unauthorized") || reply_.Holds("WWW-Authenticate: Basic")) {
    return PortError::NotAuthorized;
  }
  if (reply_.Holds("SOURCETABLE 200 OK")) return PortError::MountpointUnknown;
  if (reply_.Holds("DISCONNECT")) return PortError::Disconnected;
  if (reply_.bytes().starts_with(kTlsAlert)) return PortError::CasterSpeaksTls;
  return head_.state() == HttpHead::State::Complete ? HttpRefusal(head_) : PortError::None;
}

// A caster that closed without one of the marks may have said why in other words.
PortError NtripClient::RefusalWhenClosed() const {
  if (reply_.Holds("Bad Password")) return PortError::NotAuthorized;
  if (reply_.Holds("Bad Mountpoint")) return PortError::MountpointUnknown;
  if (head_.status() != 0) return HttpRefusal(head_);
  return reply_.bytes().starts_with("ERROR") ? PortError::CasterRefused
                                             : PortError::FirstReceiveFailed;
}

PortError NtripClient::Refused(PortError refusal) {
  if (refusal != PortError::CasterRefused) return Fail(refusal);
  const std::string_view answer = reply_.bytes();
  return Report(
      surroundings_.errors, refusal,
      {head_.status() != 0 ? head_.StatusLine()
                           : PrintableLine(answer.substr(
                                 0, std::min(answer.find_first_of("\r\n"), kLongestAnswer)))});
}

PortError NtripClient::LoadBases(CasterList& list, Progress& progress) {
  if (connection_ == nullptr || !list.current) return Fail(PortError::NothingGiven);
  constexpr int kTextLoading = 3312;
  progress.Status(Strings().Text(kTextConnectingToBroadcaster));
  const std::string file_name = surroundings_.work_folder + "tmp_sourcetable.txt";
  PortError error = FetchTable(*list.current, file_name, progress);
  if (error != PortError::None) return Caused(PortError::BasesNotLoaded, error);
  progress.Status(Strings().Text(kTextLoading));
  error = list.ReadTable(surroundings_.files, file_name, RecordOrigin::Caster);
  if (error == PortError::None) return PortError::None;
  (void)Fail(error);
  return Caused(PortError::BasesNotLoaded, error);
}

PortError NtripClient::FetchTable(const CasterLogin& caster, const std::string& file_name,
                                  Progress& progress) {
  if (connection_->Supports(NtripOperation::FetchTable)) {
    return connection_->Perform(
        NtripOperation::FetchTable,
        {.host = caster.host.str(), .port = caster.port, .file_name = file_name}, progress);
  }
  if (const PortError error = Connect(caster.host.str(), caster.port, progress);
      error != PortError::None) {
    return error == PortError::Cancelled ? error : Fail(PortError::CasterNotOpened);
  }
  return FetchSourceTable(file_name, progress);
}

PortError NtripClient::ConnectMountpoint(const CasterLogin* caster, const StreamRecord* stream,
                                         Progress& progress) {
  if (connection_ == nullptr || caster == nullptr || stream == nullptr) {
    return Fail(PortError::NothingGiven);
  }
  return ConnectMountpoint(*caster, stream->mountpoint.str(), progress);
}

PortError NtripClient::ConnectMountpoint(const CasterLogin& caster, const std::string& mountpoint,
                                         Progress& progress) {
  if (connection_ == nullptr) return Fail(PortError::NothingGiven);
  progress.Status(caster.host.str() + ":" + caster.port + " " + mountpoint);
  const PortError error = OpenAt(caster, mountpoint, progress);
  return error == PortError::None ? error : Caused(PortError::MountpointNotConnected, error);
}

PortError NtripClient::OpenAt(const CasterLogin& caster, const std::string& mountpoint,
                              Progress& progress) {
  if (connection_->Supports(NtripOperation::OpenMountpoint)) {
    ForgetStream();
    start_.Skip();
    return connection_->Perform(NtripOperation::OpenMountpoint,
                                {.host = caster.host.str(),
                                 .port = caster.port,
                                 .mountpoint = mountpoint,
                                 .user = caster.user,
                                 .password = caster.password},
                                progress);
  }
  if (const PortError error = Connect(caster.host.str(), caster.port, progress);
      error != PortError::None) {
    return error == PortError::Cancelled ? error : Fail(PortError::CasterNotOpened);
  }
  return OpenStream(mountpoint, caster.user, caster.password, progress);
}

PortError NtripClient::Receive(std::span<char> out, std::size_t& count, int timeout_ms) {
  count = 0;
  if (connection_ == nullptr) return Fail(PortError::NothingGiven);
  if (pending_.empty()) {
    if (chunked_ && chunks_.ended()) return Fail(PortError::Disconnected);
    std::size_t got = 0;
    if (const PortError error = connection_->Receive(out, got, timeout_ms);
        error != PortError::None) {
      return error;
    }
    if (start_.done() && !chunked_) {
      count = got;
      return PortError::None;
    }
    if (chunked_) {
      chunks_.Feed({out.data(), got}, pending_);
    } else {
      start_.Feed({out.data(), got}, pending_);
    }
  }
  count = std::min(out.size(), pending_.size());
  std::memcpy(out.data(), pending_.data(), count);
  pending_.erase(0, count);
  return PortError::None;
}

PortError NtripClient::Send(std::string_view bytes, int timeout_ms) {
  if (connection_ == nullptr) return Fail(PortError::NothingGiven);
  return connection_->Send(bytes, timeout_ms);
}

}  // namespace tarvex
