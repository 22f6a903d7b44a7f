#include "gnss/receivers/novatel_reading.h"

#include <array>
#include <string>

#include "gnss/receivers/bestpos.h"
#include "gnss/receivers/request.h"

namespace tarvex {
namespace {

constexpr std::int64_t kBetweenRequestsMs = 400;
constexpr int kReplyTimeoutMs = 1500;
constexpr std::size_t kReplyCapacity = 500;

constexpr std::string_view kUserDatum =
    "USERDATUM 6378137 298.257222101 -.9956 1.9013 .5215 .000000125639 .0000000456985 "
    ".0000000562335 -.00062";

void WaitForNextRequest(GnssConnection& connection) {
  std::int64_t& last = connection.lastRequestAtMs;
  if (last >= 0) {
    const std::int64_t passed = connection.clock.SteadyMilliseconds() - last;
    if (passed < kBetweenRequestsMs) {
      connection.clock.SleepMilliseconds(kBetweenRequestsMs - passed);
    }
  }
  last = connection.clock.SteadyMilliseconds();
}

bool Set(GnssConnection& connection, std::string_view command) {
  if (!SendCommand(connection, command)) return false;
  TakeAnswer(connection);
  return true;
}

// The receiver must deliver ellipsoid heights.
GnssReadResult SwitchUndulationOff(GnssConnection& connection, const ReceiverMake& make) {
  connection.reconfigured = true;
  return Set(connection, make.undulationOff) ? GnssReadResult::InvalidData
                                             : GnssReadResult::PortReadFailed;
}

GnssReadResult SetUserDatum(GnssConnection& connection) {
  const bool sent =
      Set(connection, kUserDatum) && Set(connection, "DATUM USER") && Set(connection, "SAVECONFIG");
  return sent ? GnssReadResult::DatumReset : GnssReadResult::PortReadFailed;
}

GnssReadResult SetWgs84(GnssConnection& connection) {
  const bool sent = Set(connection, "DATUM WGS84") && Set(connection, "SAVECONFIG");
  return sent ? GnssReadResult::DatumReset : GnssReadResult::PortReadFailed;
}

GnssReadResult CheckDatum(GnssConnection& connection, const Bestpos& bestpos) {
  const bool wgs84 = bestpos.datum.view() == "WGS84";
  if (bestpos.omnistarHp && connection.settings.novatel.omnistarUserDatum) {
    return wgs84 ? SetUserDatum(connection) : GnssReadResult::Accepted;
  }
  return wgs84 ? GnssReadResult::Accepted : SetWgs84(connection);
}

std::string LogRequest(const GnssConnection& connection) {
  return "LOG " + std::string(connection.settings.novatel.Port()) + " BESTPOSA ONCE";
}

}  // namespace

GnssReadResult ReadNovAtelPosition(GnssPositionState& state, GnssConnection& connection,
                                   const ReceiverMake& make) {
  state.dopCarriedOver = true;
  WaitForNextRequest(connection);
  // An answer that came too late must not be taken for the next one.
  (void)connection.port->PurgeInput();
  if (!SendCommand(connection, LogRequest(connection))) {
    return GnssReadResult::PortReadFailed;
  }
  std::array<char, kReplyCapacity> buffer;
  std::string_view reply;
  switch (AwaitReply(connection, "#BESTPOSA", kReplyTimeoutMs, buffer, reply)) {
    case ReplyStatus::Found:
      break;
    case ReplyStatus::TimedOut:
      return GnssReadResult::NoPositionSentence;
    case ReplyStatus::PortFailed:
      return GnssReadResult::PortReadFailed;
  }
  state.sentenceReadAtMs = connection.clock.SteadyMilliseconds();
  if (connection.settings.nmea.checksum && !LogCrcHolds(reply)) {
    ++state.badChecksums;
    return GnssReadResult::NoPositionSentence;
  }
  Bestpos bestpos;
  const GnssReadResult result = ReadBestpos(reply, state, bestpos);
  if (result != GnssReadResult::Accepted) return result;
  if (bestpos.undulationM != 0.0) {
    if (connection.settings.novatel.zeroUndulation) return SwitchUndulationOff(connection, make);
    state.height += bestpos.undulationM;
  }
  return CheckDatum(connection, bestpos);
}

}  // namespace tarvex
