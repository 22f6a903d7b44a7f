#include "gnss/position_reader.h"

#include <cmath>

#include "core/string_table.h"
#include "gnss/makes/ashtech_reading.h"
#include "gnss/makes/novatel_reading.h"
#include "gnss/nmea_reading.h"
#include "gnss/receiver_make.h"

namespace tarvex {
namespace {

constexpr int kFirstResultText = 3400;
constexpr int kAcceptedText = 3420;
constexpr std::int64_t kPiledUpAfterMs = 2000;

// What came in while nobody read is a position of the past.
PortError DropWhatPiledUp(GnssConnection& connection) {
  const std::int64_t last = connection.last_read_at_ms;
  if (last < 0 || connection.clock.SteadyMilliseconds() - last <= kPiledUpAfterMs) {
    return PortError::None;
  }
  connection.stream_text.clear();
  return connection.port->PurgeInput();
}

GnssReadResult Validate(const GnssPositionState& state) {
  if (state.latitude == 0.0 && state.longitude == 0.0) return GnssReadResult::NoFix;
  if (!(std::abs(state.latitude) <= 90.0)) return GnssReadResult::InvalidData;
  if (!(std::abs(state.longitude) <= 180.0)) return GnssReadResult::InvalidData;
  return GnssReadResult::Accepted;
}

GnssReadResult Finish(GnssPositionState& state, GnssConnection& connection, int receiverType) {
  AcceptUsable accept_usable;
  PositionFinish* const finish = connection.finish != nullptr ? connection.finish : &accept_usable;
  state.repeated_epoch =
      state.epoch_ms != kNoEpoch && state.epoch_ms == connection.accepted_epoch_ms;
  state.precision_carried_over =
      state.precision_epoch_ms != kNoEpoch && state.precision_epoch_ms != state.epoch_ms;
  if (finish->Finish(state, receiverType) == FinishResult::Declined) {
    return GnssReadResult::Declined;
  }
  connection.accepted_epoch_ms = state.epoch_ms;
  state.position_read_at_ms = connection.clock.SteadyMilliseconds();
  ++state.positions;
  return GnssReadResult::Accepted;
}

GnssReadResult ReadHolding(GnssPositionState& state, GnssConnection& connection,
                           const ReceiverMake& make) {
  switch (make.reader) {
    case ReaderKind::NovAtel:
      return ReadNovAtelPosition(state, connection, make);
    case ReaderKind::Ashtech:
      return ReadAshtechPosition(state, connection, make);
    default:
      return ReadNmeaPosition(state, connection, make);
  }
}

GnssReadResult ReadFromPort(GnssPositionState& state, GnssConnection& connection,
                            const ReceiverMake& make) {
  if (!connection.ready()) return GnssReadResult::NoFix;
  const PortUse use(*connection.port);
  if (!use || DropWhatPiledUp(connection) != PortError::None) return GnssReadResult::NotPrepared;
  const GnssReadResult result = ReadHolding(state, connection, make);
  connection.last_read_at_ms = connection.clock.SteadyMilliseconds();
  return result;
}

GnssReadResult ReadByMake(GnssPositionState& state, GnssConnection& connection,
                          const ReceiverMake& make) {
  if (make.reader != ReaderKind::Simulated) return ReadFromPort(state, connection, make);
  connection.simulated.Step(connection.clock, connection.settings.unit, state);
  state.sentence_read_at_ms = connection.clock.SteadyMilliseconds();
  return GnssReadResult::Accepted;
}

}  // namespace

GnssReadResult ReadGnssPosition(GnssPositionState& state, GnssConnection& connection,
                                int receiverType) {
  state.reading = 1;
  GnssReadResult result = ReadByMake(state, connection, FindMake(receiverType));
  if (result == GnssReadResult::Accepted) result = Validate(state);
  if (result == GnssReadResult::Accepted) result = Finish(state, connection, receiverType);
  state.lastResult = static_cast<std::int32_t>(result);
  state.reading = 0;
  return result;
}

std::string ResultSentence(GnssReadResult result) {
  const int text = result == GnssReadResult::Accepted ? kAcceptedText
                                                      : kFirstResultText - static_cast<int>(result);
  return Strings().Text(text);
}

std::string OriginSentence(PositionOrigin origin) {
  constexpr int kFirstOriginText = 3430;
  if (origin == PositionOrigin::Measured) return {};
  return Strings().Text(kFirstOriginText + static_cast<int>(origin));
}

std::int64_t SilentForMs(const GnssPositionState& state, Clock& clock) {
  if (state.sentence_read_at_ms == 0) return -1;
  return clock.SteadyMilliseconds() - state.sentence_read_at_ms;
}

bool NextSentenceIsDue(GnssReadResult result, const GnssPositionState& state, Clock& clock) {
  constexpr std::int64_t kSilenceMs = 3000;
  const std::int64_t silent_ms = SilentForMs(state, clock);
  return result == GnssReadResult::PortReadFailed && silent_ms >= 0 && silent_ms < kSilenceMs;
}

}  // namespace tarvex
