#include "gnss/ntrip/client.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <utility>

#include "core/text/printable.h"
#include "core/text/string_table.h"
#include "gnss/gnss_texts.h"
#include "gnss/ntrip/base64.h"
#include "gnss/ntrip/source_table.h"

namespace tarvex {
namespace {

constexpr int kSendTimeoutMs = 1000;
constexpr std::int64_t kAnswerLimitMs = 60000;
constexpr int kOpenProgressBase = 25;
constexpr std::string_view kStreamMark = "ICY 200 OK";
constexpr std::string_view kTlsAlert = "\x15\x03";
constexpr const char* kAgent = "User-Agent: NTRIP Morwend\r\n";
constexpr const char* kLastHeaders = "Accept: */*\r\nConnection: close\r\n\r\n";
constexpr std::size_t kLongestAnswer = 100;
constexpr std::size_t kLongestRefusal = 128;
constexpr std::string_view kContentType = "Content-Type";

// The marks of the refusals. Authorization is looked at first: a caster may send its table along.
PortError MarkedRefusal(std::string_view text) {
  const auto holds = [text](std::string_view mark) { return text.find(mark) != text.npos; };
  if (holds("401 Unauthorized") || holds("WWW-Authenticate: Basic")) {
    return PortError::NotAuthorized;
  }
  if (holds("SOURCETABLE 200 OK")) return PortError::MountpointUnknown;
  return holds("DISCONNECT") ? PortError::Disconnected : PortError::None;
}

// What of the bytes is text, from the front on.
std::string_view LeadingText(std::string_view bytes) {
  const auto isText = [](char c) { return (c >= ' ' && c <= '~') || (c >= '\t' && c <= '\r'); };
  const auto end = std::find_if_not(bytes.begin(), bytes.end(), isText);
  return bytes.substr(0, static_cast<std::size_t>(end - bytes.begin()));
}

bool EndsTheLine(char c) {
  return static_cast<unsigned char>(c) <= ' ' || c == 0x7F;
}

std::string WithoutLineEnds(std::string_view text) {
  std::string kept;
  std::remove_copy_if(text.begin(), text.end(), std::back_inserter(kept), EndsTheLine);
  return kept;
}

std::string LoginHeader(std::string_view user, std::string_view password) {
  if (user.empty()) return {};
  const std::string login = std::string(user) + ":" + std::string(password);
  return "Authorization: Basic " + Base64Of(login) + "\r\n";
}

// What an HTTP server says to a request that it does not understand.
bool IsBadRequest(int status) {
  return status == 400 || status == 405 || status == 501 || status == 505;
}

}  // namespace

bool IsMountpointName(std::string_view mountpoint) {
  return std::none_of(mountpoint.begin(), mountpoint.end(), EndsTheLine);
}

std::string NtripRequest(std::string_view mountpoint, std::string_view user,
                         std::string_view password) {
  return "GET /" + WithoutLineEnds(mountpoint) + " HTTP/1.0\r\n" + kAgent +
         LoginHeader(user, password) + kLastHeaders;
}

std::string NtripRequest2(std::string_view host, std::string_view mountpoint, std::string_view user,
                          std::string_view password) {
  return "GET /" + WithoutLineEnds(mountpoint) + " HTTP/1.1\r\nHost: " + WithoutLineEnds(host) +
         "\r\nNtrip-Version: Ntrip/2.0\r\n" + kAgent + LoginHeader(user, password) + kLastHeaders;
}

NtripClient::NtripClient(NtripConnection* connection, std::string_view name,
                         NtripSurroundings surroundings)
    : connection_(connection), name_(name), surroundings_(std::move(surroundings)) {}

PortError NtripClient::Fail(PortError error) {
  return Report(surroundings_.errors, error);
}

// The operation's own error is above its cause in the record; what the cause said is kept.
PortError NtripClient::Caused(PortError error, PortError cause) {
  cause_ = cause;
  causeDetail_.clear();
  const int wanted =
      static_cast<int>(cause == PortError::CasterNotOpened ? PortError::System : cause);
  for (const LastError& entry : surroundings_.errors.History()) {
    if (entry.code == wanted && !entry.arguments.empty()) causeDetail_ = entry.arguments.front();
  }
  return Fail(error);
}

int NtripClient::ElapsedSeconds(std::int64_t sinceMs) const {
  return static_cast<int>((surroundings_.clock.SteadyMilliseconds() - sinceMs) / 1000);
}

PortError NtripClient::Connect(const std::string& host, const std::string& port,
                               NtripProgress& progress) {
  if (connection_ == nullptr) return Fail(PortError::NothingGiven);
  host_ = CasterName({.host = FixedText<128>(host), .port = port});
  progress.Status(Strings().Text(kTextConnecting));
  return connection_->Perform(NtripOperation::OpenTcp, {.host = host, .port = port}, progress);
}

PortError NtripClient::SendRequest(std::string_view mountpoint, std::string_view user,
                                   std::string_view password) {
  if (connection_ == nullptr || !IsMountpointName(mountpoint)) return Fail(PortError::NothingGiven);
  return connection_->Send(version == NtripVersion::Two
                               ? NtripRequest2(host_, mountpoint, user, password)
                               : NtripRequest(mountpoint, user, password),
                           kSendTimeoutMs);
}

PortError NtripClient::OpenStream(std::string_view mountpoint, std::string_view user,
                                  std::string_view password, NtripProgress& progress) {
  if (const PortError error = SendRequest(mountpoint, user, password); error != PortError::None) {
    return error;
  }
  const std::int64_t sinceMs = surroundings_.clock.SteadyMilliseconds();
  std::string received;
  closedUnanswered_ = false;
  if (const PortError error = ReceiveText(*connection_, received, 2 * timeoutMs);
      error != PortError::None) {
    closedUnanswered_ = error == PortError::ReadFailed;
    return Fail(error == PortError::Cancelled ? error : PortError::FirstReceiveFailed);
  }
  ForgetStream();
  if (TakeAnswer(received)) return BeginStream();
  return AwaitStream(progress, sinceMs);
}

PortError NtripClient::AwaitStream(NtripProgress& progress, std::int64_t sinceMs) {
  std::string received;
  do {
    if (surroundings_.clock.SteadyMilliseconds() - sinceMs > kAnswerLimitMs) {
      return Fail(PortError::NoAnswer);
    }
    const int elapsed = ElapsedSeconds(sinceMs);
    if (progress.Progress(elapsed + kOpenProgressBase, 0, elapsed) != 0) {
      return Fail(PortError::Cancelled);
    }
    if (const PortError refusal = Refusal(); refusal != PortError::None) return Refused(refusal);
    const PortError error = ReceiveText(*connection_, received, timeoutMs);
    if (error == PortError::Cancelled) return Fail(error);
    if (error == PortError::FewerBytesRead) {
      if (BodyIsUndecided()) break;
      continue;
    }
    if (error != PortError::None) return Refused(RefusalWhenClosed(error));
  } while (received.empty() || !TakeAnswer(received));
  return BeginStream();
}

void NtripClient::ForgetStream() {
  reply_ = {};
  head_ = {};
  start_ = {};
  chunks_ = {};
  chunked_ = false;
  pending_.clear();
}

// True when it is known what the caster sends; what came of it with its answer is then pending.
bool NtripClient::TakeAnswer(std::string_view received) {
  reply_.Take(received);
  head_.Feed(received);
  if (InBody()) {
    TakeBody(received);
    return !BodyIsUndecided();
  }
  if (!reply_.Holds(kStreamMark)) return false;
  start_.Feed(reply_.Behind(kStreamMark), pending_);
  return true;
}

bool NtripClient::InBody() const {
  return head_.state() == HttpHead::State::Complete && head_.status() == kHttpOk;
}

void NtripClient::TakeBody(std::string_view received) {
  start_.Skip();
  chunked_ = head_.Holds("Transfer-Encoding", "chunked");
  if (chunked_) {
    chunks_.Feed(received, pending_);
  } else {
    pending_ += received;
  }
}

// HTTP 200 says little: gateways wrap a version 1 caster's refusal into it. While nothing but text
// has come, and little of it, it may still become one.
bool NtripClient::BodyIsUndecided() const {
  if (!InBody() || chunks_.ended() || pending_.size() >= kLongestRefusal) return false;
  if (HeadRefusal() != PortError::None) return false;
  if (pending_.empty() && head_.Holds(kContentType, "gnss/data")) return false;
  return LeadingText(pending_).size() == pending_.size();
}

// What the head of an HTTP 200 says the body to be instead of a stream.
PortError NtripClient::HeadRefusal() const {
  if (head_.Holds(kContentType, "sourcetable")) return PortError::MountpointUnknown;
  if (head_.Holds(kContentType, "html")) return PortError::NotCorrections;
  const bool login = head_.Holds("WWW-Authenticate", "Basic");
  return login ? PortError::NotAuthorized : PortError::None;
}

// The body of an HTTP answer is the stream, unless it is, or says that it is, something else.
PortError NtripClient::BeginStream() {
  if (!InBody()) return PortError::None;
  PortError refusal = HeadRefusal();
  if (refusal == PortError::None) refusal = MarkedRefusal(LeadingText(pending_));
  return refusal == PortError::None ? refusal : Fail(refusal);
}

PortError NtripClient::Refusal() const {
  if (const PortError refusal = MarkedRefusal(reply_.bytes()); refusal != PortError::None) {
    return refusal;
  }
  if (reply_.bytes().starts_with(kTlsAlert)) return PortError::CasterSpeaksTls;
  return head_.state() == HttpHead::State::Complete ? HttpRefusal(head_) : PortError::None;
}

// A caster that closed without one of the marks may have said why in other words.
PortError NtripClient::RefusalWhenClosed(PortError error) const {
  if (reply_.Holds("Bad Password")) return PortError::NotAuthorized;
  if (reply_.Holds("Bad Mountpoint")) return PortError::MountpointUnknown;
  if (InBody() && !pending_.empty()) return PortError::NotCorrections;
  if (head_.status() != 0 && head_.status() != kHttpOk) return HttpRefusal(head_);
  return reply_.bytes().starts_with("ERROR") ? PortError::CasterRefused : error;
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

PortError NtripClient::FetchSourceTable(const std::string& fileName, NtripProgress& progress) {
  return FetchAs("", "", fileName, progress);
}

PortError NtripClient::FetchAs(std::string_view user, std::string_view password,
                               const std::string& fileName, NtripProgress& progress) {
  if (const PortError error = SendRequest("", user, password); error != PortError::None) {
    return error;
  }
  return SourceTableFetch(*connection_, surroundings_, timeoutMs).Run(fileName, progress);
}

PortError NtripClient::LoadBases(CasterList& list, NtripProgress& progress) {
  if (connection_ == nullptr || !list.current) return Fail(PortError::NothingGiven);
  progress.Status(Strings().Text(kTextConnectingToBroadcaster));
  const std::string fileName = surroundings_.workFolder + "tmp_sourcetable.txt";
  PortError error = FetchTable(*list.current, fileName, progress);
  if (error != PortError::None) return Caused(PortError::BasesNotLoaded, error);
  progress.Status(Strings().Text(kTextLoadingBases));
  error = list.ReadTable(surroundings_.files, fileName, RecordOrigin::Caster, surroundings_.errors);
  if (error == PortError::None) return PortError::None;
  (void)Fail(error);
  return Caused(PortError::BasesNotLoaded, error);
}

PortError NtripClient::FetchTable(const CasterLogin& caster, const std::string& fileName,
                                  NtripProgress& progress) {
  if (connection_->Supports(NtripOperation::FetchTable) && !caster.encrypted) {
    return connection_->Perform(
        NtripOperation::FetchTable,
        {.host = caster.host.str(), .port = caster.port, .fileName = fileName}, progress);
  }
  const NtripVersion asked = knowsOneAlone_ ? NtripVersion::One : caster.version;
  const PortError error = FetchTableAs(asked, caster, fileName, progress);
  if (asked == NtripVersion::One) return error;
  if (error != PortError::ReadFailed && error != PortError::CasterRefused) return error;
  connection_->Close();
  const PortError again = FetchTableAs(NtripVersion::One, caster, fileName, progress);
  knowsOneAlone_ = again == PortError::None;
  return again;
}

PortError NtripClient::FetchTableAs(NtripVersion asked, const CasterLogin& caster,
                                    const std::string& fileName, NtripProgress& progress) {
  version = asked;
  const auto connect = [&] {
    const PortError error = Connect(caster.host.str(), caster.port, progress);
    const bool told = error == PortError::None || error == PortError::Cancelled;
    return told ? error : Fail(PortError::CasterNotOpened);
  };
  if (const PortError error = connect(); error != PortError::None) return error;
  const PortError error = FetchSourceTable(fileName, progress);
  if (error != PortError::NotAuthorized || caster.user.empty()) return error;
  connection_->Close();
  if (const PortError again = connect(); again != PortError::None) return again;
  return FetchAs(caster.user, caster.password, fileName, progress);
}

PortError NtripClient::ConnectMountpoint(const CasterLogin* caster, const StreamRecord* stream,
                                         NtripProgress& progress) {
  if (connection_ == nullptr || caster == nullptr || stream == nullptr) {
    return Fail(PortError::NothingGiven);
  }
  return ConnectMountpoint(*caster, stream->mountpoint.str(), progress);
}

PortError NtripClient::ConnectMountpoint(const CasterLogin& caster, const std::string& mountpoint,
                                         NtripProgress& progress) {
  if (connection_ == nullptr) return Fail(PortError::NothingGiven);
  progress.Status(caster.host.str() + ":" + caster.port + " " + mountpoint);
  const PortError error = OpenAt(caster, mountpoint, progress);
  return error == PortError::None ? error : Caused(PortError::MountpointNotConnected, error);
}

PortError NtripClient::OpenAt(const CasterLogin& caster, const std::string& mountpoint,
                              NtripProgress& progress) {
  if (connection_->Supports(NtripOperation::OpenMountpoint) && !caster.encrypted) {
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
  const NtripVersion asked = knowsOneAlone_ ? NtripVersion::One : caster.version;
  const PortError error = OpenAs(asked, caster, mountpoint, progress);
  if (asked == NtripVersion::One || !MayKnowOneAlone(error)) return error;
  connection_->Close();
  const PortError again = OpenAs(NtripVersion::One, caster, mountpoint, progress);
  knowsOneAlone_ = again == PortError::None;
  return again;
}

PortError NtripClient::OpenAs(NtripVersion asked, const CasterLogin& caster,
                              const std::string& mountpoint, NtripProgress& progress) {
  version = asked;
  if (const PortError error = Connect(caster.host.str(), caster.port, progress);
      error != PortError::None) {
    return error == PortError::Cancelled ? error : Fail(PortError::CasterNotOpened);
  }
  return OpenStream(mountpoint, caster.user, caster.password, progress);
}

// A caster that did not understand the request of version 2: it closed without a word, or said so.
bool NtripClient::MayKnowOneAlone(PortError error) const {
  if (error == PortError::FirstReceiveFailed) return closedUnanswered_;
  if (error == PortError::ReadFailed) return true;
  return error == PortError::CasterRefused && (head_.status() == 0 || IsBadRequest(head_.status()));
}

PortError NtripClient::Receive(std::span<char> out, std::size_t& count, int waitMs) {
  count = 0;
  if (connection_ == nullptr) return Fail(PortError::NothingGiven);
  if (pending_.empty()) {
    if (chunked_ && chunks_.ended()) return Fail(PortError::Disconnected);
    std::size_t got = 0;
    if (const PortError error = connection_->Receive(out, got, waitMs); error != PortError::None) {
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

PortError NtripClient::Send(std::string_view bytes, int waitMs) {
  if (connection_ == nullptr) return Fail(PortError::NothingGiven);
  return connection_->Send(bytes, waitMs);
}

}  // namespace tarvex
