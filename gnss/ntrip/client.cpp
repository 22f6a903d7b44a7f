#include "gnss/ntrip/client.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

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

}  // namespace

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

PortError NtripClient::Caused(PortError error, PortError cause) {
  cause_ = cause;
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

void NtripClient::BeginStream() {
  start_ = {};
  pending_.clear();
  start_.Feed(reply_.Behind(kStreamMark), pending_);
}

PortError NtripClient::OpenStream(std::string_view mountpoint, std::string_view user,
                                  std::string_view password, Progress& progress) {
  if (const PortError error = SendRequest(mountpoint, user, password); error != PortError::None) {
    return error;
  }
  const std::int64_t since_ms = surroundings_.clock.SteadyMilliseconds();
  std::string received;
  if (ReceiveText(received, static_cast<int>(2 * timeout_ms_)) != PortError::None) {
    return Fail(PortError::FirstReceiveFailed);
  }
  reply_ = {};
  reply_.Take(received);
  return AwaitStream(progress, since_ms);
}

PortError NtripClient::AwaitStream(Progress& progress, std::int64_t since_ms) {
  while (!reply_.Holds(kStreamMark)) {
    if (surroundings_.clock.SteadyMilliseconds() - since_ms > kAnswerLimitMs) {
      return Fail(PortError::NoAnswer);
    }
    const int elapsed = ElapsedSeconds(since_ms);
    if (progress.Report(elapsed + kOpenProgressBase, 0, elapsed) != 0) {
      return Fail(PortError::Cancelled);
    }
    if (const PortError refusal = Refusal(); refusal != PortError::None) return Fail(refusal);
    std::string received;
    const PortError error = ReceiveText(received, static_cast<int>(timeout_ms_));
    if (error == PortError::FewerBytesRead) continue;
    if (error != PortError::None) return Fail(RefusalWhenClosed());
    reply_.Take(received);
  }
  BeginStream();
  return PortError::None;
}

// Authorization is looked at first: a caster may send its table along.
PortError NtripClient::Refusal() const {
  if (reply_.Holds("401 Unauthorized") || reply_.Holds("WWW-Authenticate: Basic")) {
    return PortError::NotAuthorized;
  }
  if (reply_.Holds("SOURCETABLE 200 OK")) return PortError::MountpointUnknown;
  return reply_.Holds("DISCONNECT") ? PortError::Disconnected : PortError::None;
}

// A caster that closed without one of the marks may have said why in other words.
PortError NtripClient::RefusalWhenClosed() const {
  if (reply_.Holds("Bad Password") || reply_.Holds("403 Forbidden")) {
    return PortError::NotAuthorized;
  }
  if (reply_.Holds("Bad Mountpoint") || reply_.Holds("404 Not Found")) {
    return PortError::MountpointUnknown;
  }
  return PortError::FirstReceiveFailed;
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
  if (Connect(caster.host.str(), caster.port, progress) != PortError::None) {
    return Fail(PortError::CasterNotOpened);
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
    pending_.clear();
    start_.Skip();
    return connection_->Perform(NtripOperation::OpenMountpoint,
                                {.host = caster.host.str(),
                                 .port = caster.port,
                                 .mountpoint = mountpoint,
                                 .user = caster.user,
                                 .password = caster.password},
                                progress);
  }
  if (Connect(caster.host.str(), caster.port, progress) != PortError::None) {
    return Fail(PortError::CasterNotOpened);
  }
  return OpenStream(mountpoint, caster.user, caster.password, progress);
}

PortError NtripClient::Receive(std::span<char> out, std::size_t& count, int timeout_ms) {
  count = 0;
  if (connection_ == nullptr) return Fail(PortError::NothingGiven);
  if (pending_.empty()) {
    std::size_t got = 0;
    if (const PortError error = connection_->Receive(out, got, timeout_ms);
        error != PortError::None) {
      return error;
    }
    if (start_.done()) {
      count = got;
      return PortError::None;
    }
    start_.Feed({out.data(), got}, pending_);
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
