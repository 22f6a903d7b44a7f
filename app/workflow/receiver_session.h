// A session with a receiver: it reads position by position, watches the corrections, the limits and
// the link, takes what a person commands, and stores observations. What a position is for, the
// session of a kind says (collect_session.h, stake_session.h).
//
// It runs on the thread that calls Run, tells what happens as events, and takes commands from any
// thread between two readings.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "app/workflow/chosen_receiver.h"
#include "app/workflow/correction_base.h"
#include "app/workflow/correction_link.h"
#include "app/workflow/damage_watch.h"
#include "app/workflow/observation.h"
#include "app/workflow/receiver_link.h"
#include "app/workflow/recorded_clock.h"
#include "app/workflow/session_commands.h"
#include "app/workflow/session_events.h"
#include "gnss/quality/quality_gate.h"

namespace tarvex {

struct ReceiverPlan {
  ChosenReceiver receiver = {};
  std::string description = {};  ///< of the points; what a person types takes its place
  double antennaHeight = 0.0;    ///< above the point, job's unit
  std::string antennaType = {};  ///< for the raw file; empty: not known
  std::int64_t patienceMs =
      60000;                  ///< without a new position the session ends; recordings never wait
  GateLimits gate = {};       ///< what a position must keep to be stored
  bool overrideGate = false;  ///< store it all the same, and journal that
  std::size_t average = 1;    ///< distinct epochs that make one point
  std::optional<CorrectionPlan> corrections = {};
  RecordedClock* recorded = nullptr;  ///< follows the epochs of a recording; not owned
  std::int64_t simulatedPaceMs = 0;   ///< between two epochs of a simulated receiver
  std::string streamLog = {};         ///< a new file for what the receiver sends; empty: none
};

class ReceiverSession {
 public:
  virtual ~ReceiverSession() = default;
  ReceiverSession(const ReceiverSession&) = delete;
  ReceiverSession& operator=(const ReceiverSession&) = delete;

  /// Opens the receiver, works and tells what happens. The job's current point id is the first one
  /// that is stored under.
  SessionEnd Run();

  long long stored() const { return stored_; }
  /// The receiver was lost and is not back.
  bool receiverLost() const { return link_.lost(); }
  std::uint64_t badChecksums() const { return link_.state().badChecksums; }
  /// What became of the corrections; nothing when there are none.
  const std::optional<CorrectionStatus>& corrections() const { return correctionStatus_; }

 protected:
  /// `stop` ends every waiting, like the command EndSession. `ports` is for tests.
  ReceiverSession(const Workplace& work, JobSession& session, const CTrgCalculator& calculator,
                  ReceiverPlan plan, SessionListener& listener, SessionCommands& commands,
                  StopAsked stop, const PortMaker& ports);

  /// What was asked for is done.
  virtual bool Finished() const = 0;
  /// A recording may end here.
  virtual bool MayEnd() const = 0;
  /// A new epoch, and the limit that it does not keep. False when the session has to end.
  virtual bool TakeEpoch(const std::optional<GateRefusal>& refusal) = 0;
  /// A person chooses each point, and can choose another id when one exists.
  virtual bool ChosenOneByOne() const { return false; }
  /// With which description work goes on behind a point that is stored.
  virtual std::string NextDescription() const { return plan_.description; }
  /// A command, after the session itself took it.
  virtual void TakeCommand(const SessionCommand&) {}

  /// Takes the epoch into the point that is stored next; true when it is complete.
  bool PointComplete();
  /// Stores the complete point, with further comments for the raw file. False when the session has
  /// to end.
  bool StorePoint(const std::string& description, const std::vector<std::string>& comments = {});
  /// Forgets the epochs that were taken, and that a point was asked for.
  void DropPoint();
  /// The point that is complete.
  const CollectedPoint& collected() const { return point_; }
  /// The present epoch on the job's grid.
  GridPosition Place() const { return PlaceOf(link_.state()); }
  /// The complete point there.
  GridPosition PointPlace() const { return PlaceOf(point_.state); }

  const GnssPositionState& state() const { return link_.state(); }
  const ReceiverPlan& plan() const { return plan_; }
  bool paused() const { return paused_; }
  /// StoreNow was sent and nothing was stored since.
  bool storeWanted() const { return storeWanted_; }
  /// A person gave the description.
  bool descriptionTyped() const { return descriptionTyped_; }
  std::size_t epochsTaken() const { return average_.epochs(); }
  std::int64_t steadyMs() const { return work_.clock.SteadyMilliseconds(); }
  void Tell(const SessionEvent& event) { listener_.On(event); }
  void TellPosition(const std::optional<GateRefusal>& refusal);
  void WarnOnce(const std::string& sentence);
  void Problem(const std::string& sentence);
  void MarkFailed() { failed_ = true; }

 private:
  GridPosition PlaceOf(const GnssPositionState& state) const;
  bool Open();
  bool OpenRawFile();
  void StartCorrections();
  void StopCorrections();
  SessionEnd ReadUntilDone();
  bool EndAsked() const;
  void TakeCommands();
  void Do(StoreNow);
  void Do(SetDescription& set);
  void Do(SetAntennaHeight set);
  void Do(SetNextId& set);
  void Do(SetAverage set);
  void Do(TakeBack);
  void Do(PauseStoring);
  void Do(ResumeStoring);
  void Do(RetryCorrections);
  void Do(EndSession) {}
  void Do(const NextTarget&) {}
  void Do(const SkipTarget&) {}
  void Do(const ChooseTarget&) {}
  void Answer(bool done, const std::string& sentence) { Tell(CommandAnswered{done, sentence}); }
  void WatchCorrections();
  void WatchLog();
  void WatchDamage();
  bool WaitForReceiver();
  void WaitForSimulation();
  bool OutOfPatience() const;
  std::int64_t ReadDeadlineMs() const;
  bool TakeReading(GnssReadResult result);
  std::optional<GateRefusal> Refusal();
  std::optional<BaseStation> BaseInUse() const;
  bool TakeStored(const StoredPoint& stored, const std::string& wanted);
  void AdvanceId();
  void KeepForTakingBack(const StoredPoint& stored);
  std::optional<double> DistanceFromLast() const;
  bool RefusePlace(const GridPosition& position);
  void CheckPlace(const GridPoint& at);
  void Settle();

  // A store of this session, and how work went on behind it.
  struct OwnStore {
    StoredPoint stored;
    std::string description;
    std::string nextDescription;
  };

  Workplace work_;
  JobSession& session_;
  Job& job_;
  const CTrgCalculator& calculator_;
  ReceiverPlan plan_;
  SessionListener& listener_;
  SessionCommands& commands_;
  StopAsked stop_;
  ReceiverLink link_;
  std::unique_ptr<CorrectionLink> corrections_;
  std::optional<CorrectionStatus> correctionStatus_;
  BaseWatch base_;
  CollectedPoint point_;
  PositionAverage average_;
  std::string overridden_;  ///< the limit that the last epoch did not keep
  long long stored_ = 0;
  std::int64_t lastNewPositionMs_ = 0;
  std::optional<Limit> refusedBy_;
  std::int64_t refusedSinceMs_ = 0;
  std::deque<OwnStore> ownStores_;  ///< the last ones, for taking them back
  std::set<std::string> warned_;
  DamageWatch damage_;
  bool placeChecked_ = false;
  bool held_ = false;  ///< the last epoch waits for its precision
  bool paused_ = false;
  bool storeWanted_ = false;
  bool descriptionTyped_ = false;
  bool failed_ = false;
};

}  // namespace tarvex
