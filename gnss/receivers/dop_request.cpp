#include "gnss/receivers/dop_request.h"

#include <array>
#include <string>

#include "core/text/field_cursor.h"
#include "gnss/nmea/nmea_number.h"
#include "gnss/nmea/sentences.h"
#include "gnss/receivers/receiver_make.h"
#include "gnss/receivers/request.h"

namespace tarvex {
namespace {

constexpr std::size_t kMostReply = 500;

bool TakeDop(FieldCursor& fields, double& dop) {
  std::string_view field;
  if (!fields.Take(field)) return false;
  dop = NmeaNumber(field);
  return true;
}

bool TakePsrdop(std::string_view reply, const SentenceContext& /*context*/,
                GnssPositionState& state) {
  return ReadPsrdop(reply, state);
}

bool TakeGsa(std::string_view reply, const SentenceContext& context, GnssPositionState& state) {
  return ReadGsa(reply, context, state) == SentenceResult::Read;
}

bool TakePbn(std::string_view reply, const SentenceContext& /*context*/, GnssPositionState& state) {
  return ReadPashrPbn(reply, state);
}

std::string CommandOf(const DopRequest& request, std::string_view port) {
  constexpr std::string_view kPort = "%s";
  std::string command(request.command);
  if (const std::size_t at = command.find(kPort); at != std::string::npos) {
    command.replace(at, kPort.size(), port);
  }
  return command;
}

}  // namespace

const DopRequest kPsrdopRequest = {
    .command = "LOG %s PSRDOPA ONCE", .wanted = "#PSRDOPA", .take = TakePsrdop};
const DopRequest kDopRequest = {
    .command = "LOG %s DOPA ONCE", .wanted = "#PSRDOPA", .take = TakePsrdop};
const DopRequest kGsaRequest = {.command = "LOG GPGSA ONCE",
                                .wanted = "$GPGSA",
                                .take = TakeGsa,
                                .timeoutMs = 500,
                                .capacity = 200};
const DopRequest kPbnRequest = {.command = "$PASHQ,PBN", .wanted = "$PASHR,PBN", .take = TakePbn};

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
  if (make.dop == nullptr) return GnssReadResult::NoPositionSentence;
  const DopRequest& request = *make.dop;
  if (!connection.ready()) return GnssReadResult::NoFix;
  const PortUse use(*connection.port);
  if (!use) return GnssReadResult::NotPrepared;
  if (!SendCommand(connection, CommandOf(request, connection.settings.novatel.Port()))) {
    return GnssReadResult::PortReadFailed;
  }
  std::array<char, kMostReply> buffer;
  std::string_view reply;
  const ReplyStatus status = AwaitReply(connection, request.wanted, request.timeoutMs,
                                        std::span(buffer).first(request.capacity), reply);
  if (status == ReplyStatus::PortFailed) return GnssReadResult::PortReadFailed;
  if (status == ReplyStatus::TimedOut) return GnssReadResult::NoPositionSentence;
  const SentenceContext context{.settings = connection.settings.nmea, .traits = make.nmea};
  return request.take(reply, context, state) ? GnssReadResult::Accepted
                                             : GnssReadResult::NoPositionSentence;
}

}  // namespace tarvex
