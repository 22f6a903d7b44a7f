#include "gnss/receivers/position_reader.h"

#include <algorithm>
#include <cmath>

#include "core/text/string_table.h"
#include "gnss/gnss_texts.h"
#include "gnss/receivers/dop_request.h"
#include "gnss/receivers/nmea_reading.h"
#include "gnss/receivers/receiver_make.h"

namespace tarvex {
namespace {

constexpr std::int64_t kPiledUpAfterMs = 2000;
constexpr std::int64_t kBetweenUnansweredMs = 10'000;

// What came in between two readings is a position of the past.
PortError DropWhatPiledUp(GnssConnection& connection) {
  const std::int64_t last = connection.lastReadAtMs;
  if (connection.port->isRecording() || last < 0 ||
      connection.clock.SteadyMilliseconds() - last <= kPiledUpAfterMs) {
    return PortError::None;
  }
  connection.streamText.clear();
  connection.returnedLine.clear();
  return connection.port->PurgeInput();
}

GnssReadResult Validate(const GnssPositionState& state) {
  if (state.latitude == 0.0 && state.longitude == 0.0) return GnssReadResult::NoFix;
  if (!(std::abs(state.latitude) <= 90.0)) return GnssReadResult::InvalidData;
  if (!(std::abs(state.longitude) <= 180.0)) return GnssReadResult::InvalidData;
  return GnssReadResult::Accepted;
}

GnssReadResult Finish(GnssPositionState& state, GnssConnection& connection, int receiverType) {
  AcceptInRange inRange;
  PositionAcceptance& acceptance =
      connection.acceptance != nullptr ? *connection.acceptance : inRange;
  state.repeatedEpoch = state.epochMs != kNoEpoch && state.epochMs == connection.acceptedEpochMs;
  state.precisionCarriedOver =
      state.precisionEpochMs != kNoEpoch && state.precisionEpochMs != state.epochMs;
  if (!acceptance.Accepts(state, receiverType)) return GnssReadResult::Declined;
  connection.acceptedEpochMs = connection.linkEpochMs = state.epochMs;
  const std::int64_t nowMs = connection.clock.SteadyMilliseconds();
  if (state.positions > 0 && !state.repeatedEpoch) {
    state.positionIntervalMs = nowMs - state.positionReadAtMs;
  }
  state.positionReadAtMs = nowMs;
  ++state.positions;
  return GnssReadResult::Accepted;
}

GnssReadResult ReadFromPort(GnssPositionState& state, GnssConnection& connection,
                            const ReceiverMake& make) {
  if (!connection.ready()) return GnssReadResult::NoFix;
  const PortUse use(*connection.port);
  if (!use || DropWhatPiledUp(connection) != PortError::None) return GnssReadResult::NotPrepared;
  const GnssReadResult result = make.read(state, connection, make);
  connection.lastReadAtMs = connection.clock.SteadyMilliseconds();
  return result;
}

// A receiver that does not answer is left alone for a while.
void AskForDop(GnssPositionState& state, GnssConnection& connection, const ReceiverMake& make) {
  if (!connection.settings.requestDop || make.dop == nullptr || !state.dopCarriedOver ||
      connection.clock.SteadyMilliseconds() < connection.noDopRequestBeforeMs) {
    return;
  }
  const std::int32_t satellites = state.satellites;  // those of the position stay
  state.dopCarriedOver = RequestDop(state, connection, make.code) != GnssReadResult::Accepted;
  if (state.dopCarriedOver) {
    connection.noDopRequestBeforeMs = connection.clock.SteadyMilliseconds() + kBetweenUnansweredMs;
  }
  state.satellites = satellites;
}

}  // namespace

GnssReadResult ReadGnssPosition(GnssPositionState& state, GnssConnection& connection,
                                int receiverType) {
  const ReceiverMake& make = FindMake(receiverType);
  state.reading = 1;
  connection.reconfigured = false;
  GnssReadResult result =
      make.hasPort ? ReadFromPort(state, connection, make) : make.read(state, connection, make);
  if (result == GnssReadResult::Accepted) result = Validate(state);
  if (result == GnssReadResult::Accepted) result = Finish(state, connection, receiverType);
  if (result == GnssReadResult::Accepted) AskForDop(state, connection, make);
  state.lastResult = static_cast<std::int32_t>(result);
  state.reading = 0;
  return result;
}

std::string ResultSentence(GnssReadResult result, const GnssConnection& connection) {
  if (result == GnssReadResult::InvalidData && connection.reconfigured) {
    return Strings().Text(kTextEllipsoidHeightsSet);
  }
  if (result == GnssReadResult::PortReadFailed && connection.ended()) {
    return Strings().Text(connection.linkLost() ? kTextLinkLost : kTextRecordingEnded);
  }
  return ResultSentence(result);
}

bool PrecisionMayFollow(const GnssPositionState& state, const GnssConnection& connection,
                        int receiverType) {
  return FindMake(receiverType).read == ReadNmeaPosition && !connection.settings.noRms &&
         !state.precisionKnown && connection.precisionOrder == PrecisionOrder::Unknown;
}

std::int64_t SilentForMs(const GnssPositionState& state, Clock& clock) {
  if (state.sentenceReadAtMs == 0) return -1;
  return clock.SteadyMilliseconds() - state.sentenceReadAtMs;
}

bool NextSentenceIsDue(GnssReadResult result, const GnssPositionState& state, Clock& clock) {
  constexpr std::int64_t kSilenceMs = 3000;
  constexpr std::int64_t kLongestMs = 90'000;
  const std::int64_t dueMs =
      std::min(std::max(kSilenceMs, state.positionIntervalMs * 3 / 2), kLongestMs);
  if (result == GnssReadResult::PortReadFailed) {
    const std::int64_t silentMs = SilentForMs(state, clock);
    return silentMs >= 0 && silentMs < dueMs;
  }
  return result == GnssReadResult::NoPositionSentence && state.positionReadAtMs != 0 &&
         clock.SteadyMilliseconds() - state.positionReadAtMs < dueMs;
}

}  // namespace tarvex
