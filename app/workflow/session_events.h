// What a session with a receiver has to tell, as it happens. A face turns the events into lines, a
// picture or sounds; a test looks at them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "core/points/point.h"
#include "core/units/units.h"
#include "gnss/corrections/correction_status.h"
#include "gnss/position/position_state.h"
#include "gnss/quality/averaging.h"
#include "gnss/quality/quality_gate.h"
#include "gnss/receivers/position_reader.h"

namespace tarvex {

/// A new epoch of the receiver, stored or not.
struct PositionSeen {
  GnssPositionState state;
  std::optional<GateRefusal> refusal;  ///< the limit that it does not keep
  std::size_t epoch = 0;               ///< of an average: how many are taken, this one among them
  std::size_t epochs = 1;
  long long stored = 0;  ///< points so far
  bool paused = false;
  bool storeWanted = false;       ///< by a person, and not done yet
  std::int64_t refusedForMs = 0;  ///< how long the limit of `refusal` has refused
  std::string nextId;             ///< and what the next point is described as
  std::string description;
  std::string lastId;              ///< the last point of this session, empty when there is none
  std::optional<double> fromLast;  ///< horizontal distance to it, job's unit; not of a recording
  std::optional<CorrectionStatus> corrections;
};

/// A point, its observation and its note are on disk.
struct PointStored {
  Point point;
  GnssPositionState state;                   ///< one epoch, or the mean of several
  std::optional<AveragedPosition> mean;      ///< of several
  std::string overridden;                    ///< the limit that was not kept, in a sentence
  std::optional<Point> replaced;             ///< the point of this id that there was
  DistanceUnit unit = DistanceUnit::Metres;  ///< of the job
};

/// A store of this session was taken back: the point is gone, or is what it was before.
struct PointTakenBack {
  Point point;
  std::optional<Point> restored;
};

/// What became of a command, for the person who gave it: done, or why not.
struct CommandAnswered {
  bool done = true;
  std::string sentence;
};

/// The position did not keep a limit, or has it again. Told when the limit changes, not each epoch.
struct LimitRefuses {
  std::optional<GateRefusal> refusal;
};

/// No position came of a reading.
struct NoPosition {
  GnssReadResult result;
  std::string sentence;
};
/// The receiver gave the epoch before once more.
struct EpochRepeated {};

/// Many sentences of the receiver had a wrong checksum and were left out.
struct SentencesDamaged {
  std::uint64_t count = 0;
  std::int64_t inMs = 0;  ///< the time within which they came
};

struct ReceiverLost {
  std::string receiver;        ///< its port, as a person knows it
  std::int64_t nextTryMs = 0;  ///< from now
};
struct ReceiverBack {};

/// A point of the id that comes next exists, and may not be replaced without an answer.
struct PointExists {
  std::string id;
};

struct CorrectionsChanged {
  CorrectionStatus status;
};

/// Something to know before work goes on; told once a session.
struct SessionWarning {
  std::string sentence;
};
/// Something was not done. The session goes on where it can.
struct SessionProblem {
  std::string sentence;
};

using SessionEvent =
    std::variant<PositionSeen, PointStored, PointTakenBack, CommandAnswered, LimitRefuses,
                 NoPosition, EpochRepeated, SentencesDamaged, PointExists, ReceiverLost,
                 ReceiverBack, CorrectionsChanged, SessionWarning, SessionProblem>;

class SessionListener {
 public:
  virtual ~SessionListener() = default;
  /// On the session's own thread.
  virtual void On(const SessionEvent& event) = 0;
};

/// How a session ended.
enum class [[nodiscard]] SessionEnd {
  Complete,        ///< what was asked for is done
  Asked,           ///< by a command or an interrupt
  RecordingEnded,  ///< before what was asked for was done
  NoPosition,  ///< none came for as long as one was to be waited for, or the link did not return
  Failed       ///< told as a problem
};

}  // namespace tarvex
