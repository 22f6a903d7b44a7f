// DOP values on request, for receivers that do not send GSA by themselves.
#pragma once

#include <string_view>

#include "gnss/nmea/sentence.h"
#include "gnss/position/position_state.h"
#include "gnss/position/read_result.h"
#include "gnss/receivers/gnss_connection.h"

namespace tarvex {

/// What to send, what to look for in the reply, and what takes it into the state (false when the
/// reply is not usable).
struct DopRequest {
  std::string_view command;  ///< "%s" in it is the receiver's own name of the port
  std::string_view wanted;
  bool (*take)(std::string_view reply, const SentenceContext& context, GnssPositionState& state);
  int timeoutMs = 1500;
  std::size_t capacity = 500;
};

/// Asks the make for its DOP values and takes them into the state. PortReadFailed when nothing can
/// be sent, NoPositionSentence when no usable reply comes or the make cannot be asked.
GnssReadResult RequestDop(GnssPositionState& state, GnssConnection& connection, int receiverType);

extern const DopRequest kPsrdopRequest;  ///< NovAtel's PSRDOPA
extern const DopRequest kDopRequest;     ///< NovAtel's DOPA, which older receivers have
extern const DopRequest kGsaRequest;     ///< one GSA
extern const DopRequest kPbnRequest;     ///< Ashtech's PBN

/// "#PSRDOPA,...;gdop,pdop,hdop,htdop,tdop,...": false when a field is missing.
[[nodiscard]] bool ReadPsrdop(std::string_view log, GnssPositionState& state);

/// "$PASHR,PBN,...": PDOP, HDOP, VDOP and TDOP are its fields 13 to 16 behind "PBN".
[[nodiscard]] bool ReadPashrPbn(std::string_view line, GnssPositionState& state);

}  // namespace tarvex
