// The NTRIP client (version 1, and 2 where it is asked for): fetches a caster's source table and
// opens one stream, so that corrections flow from the Internet to the rover. It blocks in its
// receives; the progress object, called once a receive, cancels it. Every failure goes to the
// last-error record and is returned.
//
// No password ever reaches an error argument, a status text or a log.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "gnss/ntrip/caster_list.h"
#include "gnss/ntrip/connection.h"
#include "gnss/ntrip/http_reply.h"
#include "gnss/ntrip/progress.h"
#include "gnss/ntrip/reply.h"
#include "gnss/ntrip/surroundings.h"

namespace tarvex {

/// No blank and no control character in it: they would end the request's line.
bool IsMountpointName(std::string_view mountpoint);

/// "GET /MOUNT HTTP/1.0 ..." whole, to be sent in one piece. What IsMountpointName forbids is left
/// out of the mountpoint.
std::string NtripRequest(std::string_view mountpoint, std::string_view user,
                         std::string_view password);

/// The same as a request of version 2, to a caster that is known as `host` ("caster.example:443").
std::string NtripRequest2(std::string_view host, std::string_view mountpoint, std::string_view user,
                          std::string_view password);

class NtripClient {
 public:
  /// `connection` is not owned and may be missing; every operation then fails with NothingGiven.
  NtripClient(NtripConnection* connection, std::string_view name, NtripSurroundings surroundings);

  PortError Connect(const std::string& host, const std::string& port, NtripProgress& progress);
  /// NothingGiven for a mountpoint that cannot be asked for.
  PortError SendRequest(std::string_view mountpoint, std::string_view user,
                        std::string_view password);
  /// None when the caster answered "ICY 200 OK", or HTTP 200 with a body that is no refusal, table
  /// or page; what came behind the answer is handed out by the first Receive.
  PortError OpenStream(std::string_view mountpoint, std::string_view user,
                       std::string_view password, NtripProgress& progress);
  PortError FetchSourceTable(const std::string& fileName, NtripProgress& progress);
  /// Fetches the table of the list's current caster and reads it into the list. It is asked for
  /// without the login, and again with it when the caster wants one. BasesNotLoaded for any
  /// failure; cause() says which.
  PortError LoadBases(CasterList& list, NtripProgress& progress);
  /// Opens the stream at the caster. MountpointNotConnected for any failure; cause() says which.
  PortError ConnectMountpoint(const CasterLogin* caster, const StreamRecord* stream,
                              NtripProgress& progress);
  /// The same for a mountpoint that a person gave, whatever its length.
  PortError ConnectMountpoint(const CasterLogin& caster, const std::string& mountpoint,
                              NtripProgress& progress);

  /// The next bytes of the open stream; none of them when only a part of a chunk's head came.
  PortError Receive(std::span<char> out, std::size_t& count, int waitMs);
  PortError Send(std::string_view bytes, int waitMs);

  PortError cause() const { return cause_; }
  /// What the caster or the system said to the cause, for a sentence; often empty.
  const std::string& causeDetail() const { return causeDetail_; }
  const std::string& name() const { return name_; }

  /// How long a receive waits; the first one after a request twice as long.
  std::uint32_t timeoutMs = 2000;
  /// Of the requests; ConnectMountpoint and LoadBases take it from the caster's login.
  NtripVersion version = NtripVersion::One;

 private:
  PortError Fail(PortError error);
  PortError Caused(PortError error, PortError cause);
  int ElapsedSeconds(std::int64_t sinceMs) const;
  PortError AwaitStream(NtripProgress& progress, std::int64_t sinceMs);
  void ForgetStream();
  bool TakeAnswer(std::string_view received);
  void TakeBody(std::string_view received);
  bool InBody() const;
  bool BodyIsUndecided() const;
  PortError HeadRefusal() const;
  PortError BeginStream();
  PortError Refusal() const;
  PortError RefusalWhenClosed(PortError error) const;
  PortError Refused(PortError refusal);
  bool MayKnowOneAlone(PortError error) const;
  PortError OpenAs(NtripVersion asked, const CasterLogin& caster, const std::string& mountpoint,
                   NtripProgress& progress);
  PortError FetchAs(std::string_view user, std::string_view password, const std::string& fileName,
                    NtripProgress& progress);
  PortError FetchTableAs(NtripVersion asked, const CasterLogin& caster, const std::string& fileName,
                         NtripProgress& progress);
  PortError FetchTable(const CasterLogin& caster, const std::string& fileName,
                       NtripProgress& progress);
  PortError OpenAt(const CasterLogin& caster, const std::string& mountpoint,
                   NtripProgress& progress);
  NtripConnection* connection_;
  std::string name_;
  std::string host_;               // as it was connected to, with its port
  bool knowsOneAlone_ = false;     // the caster, as it turned out
  bool closedUnanswered_ = false;  // the last request
  NtripSurroundings surroundings_;
  PortError cause_ = PortError::None;
  std::string causeDetail_;
  ReplyWindow reply_;
  HttpHead head_;
  StreamStart start_;
  ChunkedBody chunks_;
  bool chunked_ = false;
  std::string pending_;  // stream bytes that came with the answer
};

}  // namespace tarvex
