// What the correction session is doing, has done, and what is wrong with it: a value, taken at one
// moment, and its telling in words.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "gnss/corrections/rtcm_messages.h"
#include "gnss/port/port_error.h"

namespace tarvex {

enum class CorrectionState {
  Idle,
  Connecting,
  Receiving,
  Silent,             ///< connected, and no data for a while
  Waiting,            ///< for the next try
  Refused,            ///< user or password, which never worked here; not tried again by itself
  UnknownMountpoint,  ///< one that never worked here; not tried again by itself
  ReceiverFailed,     ///< corrections cannot be written to the receiver; tried again later
  Stopped,
};

struct CorrectionStatus {
  CorrectionState state = CorrectionState::Idle;
  std::string caster;  ///< "host:port"
  std::string mountpoint;
  std::string doing;                   ///< Connecting: what the client says that it does
  bool flowing = false;                ///< data comes, or came until the session was stopped
  PortError cause = PortError::None;   ///< of the last failure, until data comes
  std::string causeDetail;             ///< what the caster or the system said to it
  std::vector<std::string> mostAlike;  ///< mountpoints that exist, when ours does not
  std::int64_t nextTryInMs = 0;        ///< Waiting
  std::int64_t ageMs = -1;             ///< since the last good frame; -1 before the first
  std::int64_t silentMs = 0;           ///< since the last byte of this connection
  std::uint64_t connections = 0;
  std::uint64_t bytes = 0;  ///< from the caster
  std::uint64_t bytesToReceiver = 0;
  std::uint64_t frames = 0;
  std::uint64_t badCrcs = 0;
  std::uint64_t ggasSent = 0;
  std::map<int, std::uint64_t> messages;  ///< count of each RTCM message number
  std::optional<BaseStation> base;
  double baseMovedM = 0.0;  ///< from where it was first seen in this session

  /// Not one byte came in the whole session, over whatever connections.
  bool nothingCame() const { return bytes == 0; }
};

/// A base that is this far, in metres, from where it was is another base.
inline constexpr double kBaseMovedAlarm = 0.05;

/// Why a caster could not be used: "caster:2101 cannot be reached: Connection refused."
std::string CasterFailureSentence(const std::string& caster, PortError cause,
                                  const std::string& detail);

/// One sentence that names the state, its cause and what to do.
std::string CorrectionSentence(const CorrectionStatus& status);

/// Why a session that ends has no corrections: "caster:2101, mountpoint MNT, sent no corrections:
/// The caster does not accept this user and password." Empty while they flow, and for a session
/// that was stopped while they did.
std::string CorrectionVerdict(const CorrectionStatus& status);

}  // namespace tarvex
