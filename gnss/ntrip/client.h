// The NTRIP client (version 1): fetches a caster's source table and opens one stream, so that
// corrections flow from the Internet to the rover. It blocks in its receives; the progress object,
// called once a receive, cancels it. Every failure goes to the last-error record and is returned.
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
#include "platform/clock.h"
#include "platform/file.h"

namespace tarvex {

/// "GET /MOUNT HTTP/1.0 ..." whole, to be sent in one piece. Control characters and blanks are left
/// out of the mountpoint: they would end the line.
std::string NtripRequest(std::string_view mountpoint, std::string_view user,
                         std::string_view password);

/// What an HTTP status other than 200 comes to: 401 and 403 NotAuthorized, 404 MountpointUnknown,
/// any other CasterRefused.
PortError HttpRefusal(const HttpHead& head);

struct NtripSurroundings {
  Clock& clock;
  FileSystem& files;
  LastErrorRecord& errors;
  /// Where "tmp_sourcetable.txt" goes; with its separator, empty for the current folder.
  std::string work_folder = {};
};

class NtripClient {
 public:
  /// `connection` is not owned and may be missing; every operation then fails with NothingGiven.
  NtripClient(NtripConnection* connection, std::string_view name, NtripSurroundings surroundings);

  PortError Connect(const std::string& host, const std::string& port, Progress& progress);
  PortError SendRequest(std::string_view mountpoint, std::string_view user,
                        std::string_view password);
  /// None when the caster answered "ICY 200 OK", or HTTP 200 with a body that is no table and no
  /// page; what came behind the answer is handed out by the first Receive.
  PortError OpenStream(std::string_view mountpoint, std::string_view user,
                       std::string_view password, Progress& progress);
  PortError FetchSourceTable(const std::string& file_name, Progress& progress);
  /// Fetches the table of the list's current caster and reads it into the list. BasesNotLoaded for
  /// any failure; cause() says which.
  PortError LoadBases(CasterList& list, Progress& progress);
  /// Opens the stream at the caster. MountpointNotConnected for any failure; cause() says which.
  PortError ConnectMountpoint(const CasterLogin* caster, const StreamRecord* stream,
                              Progress& progress);
  /// The same for a mountpoint that a person gave, whatever its length.
  PortError ConnectMountpoint(const CasterLogin& caster, const std::string& mountpoint,
                              Progress& progress);

  /// The next bytes of the open stream; none of them when only a part of a chunk's head came.
  PortError Receive(std::span<char> out, std::size_t& count, int timeout_ms);
  PortError Send(std::string_view bytes, int timeout_ms);

  PortError cause() const { return cause_; }
  /// What the caster or the system said to the cause, for a sentence; often empty.
  const std::string& cause_detail() const { return cause_detail_; }
  const std::string& name() const { return name_; }
  std::uint32_t timeout_ms() const { return timeout_ms_; }
  void set_timeout_ms(std::uint32_t timeout_ms) { timeout_ms_ = timeout_ms; }

 private:
  PortError Fail(PortError error);
  PortError Caused(PortError error, PortError cause);
  int ElapsedSeconds(std::int64_t since_ms) const;
  PortError AwaitStream(Progress& progress, std::int64_t since_ms);
  void ForgetStream();
  bool TakeAnswer(std::string_view received);
  PortError BeginBody();
  PortError Refusal() const;
  PortError RefusalWhenClosed() const;
  PortError Refused(PortError refusal);
  PortError AwaitTable(std::string& table, Progress& progress, std::int64_t since_ms);
  PortError TableRefusal(std::string_view reply);
  PortError StoreTable(std::string table, const std::string& file_name, Progress& progress,
                       std::int64_t since_ms);
  PortError FetchTable(const CasterLogin& caster, const std::string& file_name, Progress& progress);
  PortError OpenAt(const CasterLogin& caster, const std::string& mountpoint, Progress& progress);
  PortError ReceiveText(std::string& received, int timeout_ms);
  NtripConnection* connection_;
  std::string name_;
  NtripSurroundings surroundings_;
  std::uint32_t timeout_ms_ = 2000;
  PortError cause_ = PortError::None;
  std::string cause_detail_;
  ReplyWindow reply_;
  HttpHead head_;
  StreamStart start_;
  ChunkedBody chunks_;
  bool chunked_ = false;
  std::string pending_;  // stream bytes that came with the answer
};

}  // namespace tarvex
