#include "gnss/receivers/dop_request.h"

#include <array>
#include <string>

#include "gnss/nmea/nmea_number.h"
#include "gnss/nmea/sentences.h"
#include "gnss/nmea/text_fields.h"
#include "gnss/receivers/receiver_make.h"
#include "gnss/receivers/request.h"

namespace tarvex {
namespace {

constexpr int kReplyTimeoutMs = 1500;
constexpr int kGsaTimeoutMs = 500;
constexpr std::size_t kReplyCapacity = 500;
constexpr std::size_t kGsaCapacity = 200;

// What to send, what to look for in the reply, and what to make of it.
struct DopRequest {
  std::string command;
  std::string_view wanted;
  int timeoutMs = kReplyTimeoutMs;
  std::size_t capacity = kReplyCapacity;
};

DopRequest RequestOf(const ReceiverMake& make, const std::string& port) {
  switch (make.dop) {
    case DopSource::Psrdop:
      return {.command = "LOG " + port + " PSRDOPA ONCE", .wanted = "#PSRDOPA"};
    case DopSource::Dop:
      return {.command = "LOG " + port + " DOPA ONCE", .wanted = "#PSRDOPA"};
    case DopSource::GsaOnce:
      return {.command = "LOG GPGSA ONCE",
              .wanted = "$GPGSA",
              .timeoutMs = kGsaTimeoutMs,
              .capacity = kGsaCapacity};
    case DopSource::Pbn:
      return {.command = "$PASHQ,PBN", .wanted = "$PASHR,PBN"};
    case DopSource::Streamed:
      break;
  }
  return {.command = {}, .wanted = {}};
}

bool TakeReply(std::string_view reply, const SentenceContext& context, GnssPositionState& state) {
  switch (context.make.dop) {
    case DopSource::Psrdop:
    case DopSource::Dop:
      return ReadPsrdop(reply, state);
    case DopSource::GsaOnce:
      return ReadGsa(reply, false, context, state) == SentenceResult::Read;
    case DopSource::Pbn:
      return ReadPashrPbn(reply, state);
    case DopSource::Streamed:
      break;
  }
  return false;
}

bool TakeDop(FieldCursor& fields, double& dop) {
  std::string_view field;
  if (!fields.Take(field)) return false;
  dop = NmeaNumber(field);
  return true;
}

}  // namespace

bool ReadPsrdop(std::string_view log, GnssPositionState& state) {
  const std::size_t headerEnd = log.find(';');
  if (headerEnd == std::string_view::npos) return false;
  FieldCursor fields(log.substr(headerEnd + 1));
  return fields.Skip(1) && TakeDop(fields, state.pdop) && TakeDop(fields, state.hdop) &&
         fields.Skip(1) && TakeDop(fields, state.tdop);
}

bool ReadPashrPbn(std::string_view line, GnssPositionState& state) {
  constexpr int kBeforeDops = 2 + 12;  // "$PASHR,PBN" and the fields before
  FieldCursor fields(line);
  return fields.Skip(kBeforeDops) && TakeDop(fields, state.pdop) && TakeDop(fields, state.hdop) &&
         TakeDop(fields, state.vdop) && TakeDop(fields, state.tdop);
}

GnssReadResult RequestDop(GnssPositionState& state, GnssConnection& connection, int receiverType) {
  const ReceiverMake& make = FindMake(receiverType);
  if (make.dop == DopSource::Streamed) return GnssReadResult::NoPositionSentence;
  if (!connection.ready()) return GnssReadResult::NoFix;
  const PortUse use(*connection.port);
  if (!use) return GnssReadResult::NotPrepared;
  const DopRequest request = RequestOf(make, std::string(connection.settings.ReceiverPort()));
  if (!SendCommand(connection, request.command)) return GnssReadResult::PortReadFailed;
  std::array<char, kReplyCapacity> buffer;
  std::string_view reply;
  const ReplyStatus status = AwaitReply(connection, request.wanted, request.timeoutMs,
                                        std::span(buffer).first(request.capacity), reply);
  if (status == ReplyStatus::PortFailed) return GnssReadResult::PortReadFailed;
  if (status == ReplyStatus::TimedOut) return GnssReadResult::NoPositionSentence;
  const SentenceContext context{.settings = connection.settings, .make = make};
  return TakeReply(reply, context, state) ? GnssReadResult::Accepted
                                          : GnssReadResult::NoPositionSentence;
}

}  // namespace tarvex
