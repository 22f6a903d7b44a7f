#include "app/workflow/receiver_session.h"

#include <cmath>

#include "app/workflow/coordinate_systems.h"
#include "app/workflow/position_checks.h"
#include "app/workflow/setup_comments.h"
#include "core/observations/job_unit.h"
#include "core/raw_data/raw_file.h"
#include "core/raw_data/raw_records.h"
#include "gnss/receivers/receiver_make.h"

namespace tarvex {
namespace {

// The longest that a command waits for the session while it waits for a receiver that is lost.
constexpr std::int64_t kSliceMs = 100;
// So many stores of a session can be taken back.
constexpr std::size_t kMostTakenBack = 1000;
// A receiver works with old corrections for so long.
constexpr std::int64_t kBaseInUseMs = 60'000;

}  // namespace

ReceiverSession::ReceiverSession(const Workplace& work, JobSession& session,
                                 const CTrgCalculator& calculator, ReceiverPlan plan,
                                 SessionListener& listener, SessionCommands& commands,
                                 StopAsked stop, const PortMaker& ports)
    : work_(work),
      session_(session),
      job_(session.job()),
      calculator_(calculator),
      plan_(std::move(plan)),
      listener_(listener),
      commands_(commands),
      stop_(std::move(stop)),
      link_(
          work.files, work.clock, plan_.receiver, job_.options.unit, [this] { return EndAsked(); },
          ports) {}

bool ReceiverSession::EndAsked() const {
  return (stop_ && stop_()) || commands_.EndSent();
}

SessionEnd ReceiverSession::Run() {
  if (!Open()) return SessionEnd::Failed;
  for (const std::string& warning : SystemWarnings(calculator_)) WarnOnce(warning);
  StartCorrections();
  const SessionEnd end = ReadUntilDone();
  TakeCommands();  // what was said before the end, as to take a point back
  StopCorrections();
  Settle();
  return failed_ && end == SessionEnd::Complete ? SessionEnd::Failed : end;
}

void ReceiverSession::Settle() {
  const FileStatus status = SettleJob(job_);
  if (status.ok()) return;
  Problem("The files of " + job_.path + " could not be made durable: " + status.Text() +
          ". What was stored is in " + job_.path + ".redo until the job is opened again.");
}

bool ReceiverSession::Open() {
  std::string problem;
  if (!plan_.streamLog.empty() && !link_.tap().StartLog(plan_.streamLog)) {
    return Problem(link_.tap().logProblem()), false;
  }
  if (!session_.storingProblem().empty()) return Problem(session_.storingProblem()), false;
  if (!link_.Open(problem)) return Problem(problem), false;
  if (OpenRawFile()) return session_.RawIsOpened(), true;
  return Problem("The raw file " + RawFilePath(job_) + " cannot be written; nothing was stored."),
         false;
}

// Date and time, and what is in force from here on.
bool ReceiverSession::OpenRawFile() {
  const SystemSource system = SystemOfSettings(session_.settings());
  std::vector<std::string> records =
      SetupComments({.systemTitle = CoordinateSystems::SetupTitle(system, calculator_),
                     .calculator = &calculator_,
                     .usesAntenna = true,
                     .antennaType = plan_.antennaType});
  // Not its port: a recording that is played again comes to the same bytes.
  records.push_back(
      CommentRecord("Receiver: " + std::string(FindMake(plan_.receiver.makeCode).name)));
  records.insert(records.begin(), RawOpeningRecords(job_));
  const auto unit = JobUnit::Begin(job_);
  if (!unit) return false;
  unit->AppendRaw(records);
  return unit->Commit() == ChangeResult::Done;
}

void ReceiverSession::StartCorrections() {
  if (!plan_.corrections || link_.port() == nullptr) return;
  corrections_ = std::make_unique<CorrectionLink>(
      work_.files, work_.clock, [this] { return EndAsked(); }, *plan_.corrections, *link_.port(),
      link_.tap().gga());
}

void ReceiverSession::StopCorrections() {
  if (!corrections_) return;
  correctionStatus_ = corrections_->Status();
  corrections_.reset();
}

SessionEnd ReceiverSession::ReadUntilDone() {
  lastNewPositionMs_ = work_.clock.SteadyMilliseconds();
  while (!Finished()) {
    WaitForSimulation();
    TakeCommands();
    if (EndAsked()) return SessionEnd::Asked;
    const GnssReadResult result = link_.Read(ReadDeadlineMs());
    if (EndAsked()) return SessionEnd::Asked;
    WatchCorrections();
    WatchLog();
    WatchDamage();
    if (!TakeReading(result)) return SessionEnd::Failed;
    if (result != GnssReadResult::Accepted && link_.ended()) {
      if (held_ && !TakeEpoch(Refusal())) return SessionEnd::Failed;
      held_ = false;
      if (Finished()) break;
      return MayEnd() ? SessionEnd::Complete : SessionEnd::RecordingEnded;
    }
    if (link_.lost() && !WaitForReceiver()) {
      return EndAsked() ? SessionEnd::Asked : SessionEnd::NoPosition;
    }
    if (OutOfPatience()) return SessionEnd::NoPosition;
  }
  return SessionEnd::Complete;
}

void ReceiverSession::WatchCorrections() {
  if (!corrections_) return;
  const CorrectionStatus status = corrections_->Status();
  const bool changed = !correctionStatus_ || status.state != correctionStatus_->state;
  correctionStatus_ = status;
  if (changed) Tell(CorrectionsChanged{status});
  base_.Look(status);
  if (const std::string far = base_.TakeWarning(state()); !far.empty()) WarnOnce(far);
}

void ReceiverSession::WatchLog() {
  const std::string& problem = link_.tap().logProblem();
  if (problem.empty() || !warned_.insert(problem).second) return;
  Problem(problem);
}

// A recording is read faster than it was made: what was damaged in it is told at its end.
void ReceiverSession::WatchDamage() {
  if (plan_.receiver.isRecorded()) return;
  const auto many =
      damage_.Look(state().badChecksums, state().positions, work_.clock.SteadyMilliseconds());
  if (many) Tell(*many);
}

// The receiver is gone: tries until it is back or the wait is over.
bool ReceiverSession::WaitForReceiver() {
  StopCorrections();
  Tell(ReceiverLost{link_.port()->name(), link_.NextTryMs()});
  while (!EndAsked() && !OutOfPatience()) {
    if (link_.TryAgain()) {
      Tell(ReceiverBack{});
      StartCorrections();
      return true;
    }
    work_.clock.SleepMilliseconds(kSliceMs);
    TakeCommands();
  }
  return false;
}

// A simulated receiver gives epochs as fast as they are read.
void ReceiverSession::WaitForSimulation() {
  const bool simulated = plan_.receiver.address.kind == PortKind::Simulated;
  if (!simulated || plan_.simulatedPaceMs == 0 || state().positions == 0) return;
  const std::int64_t dueMs = lastNewPositionMs_ + plan_.simulatedPaceMs;
  while (!EndAsked() && work_.clock.SteadyMilliseconds() < dueMs) {
    work_.clock.SleepMilliseconds(kSliceMs);
  }
}

std::int64_t ReceiverSession::ReadDeadlineMs() const {
  const bool waits = plan_.receiver.takesCorrections();
  return waits ? lastNewPositionMs_ + plan_.patienceMs : kNoDeadline;
}

bool ReceiverSession::OutOfPatience() const {
  return work_.clock.SteadyMilliseconds() - lastNewPositionMs_ >= plan_.patienceMs;
}

bool ReceiverSession::TakeReading(GnssReadResult result) {
  if (result != GnssReadResult::Accepted) {
    const bool expected =
        link_.ended() || link_.lost() || NextSentenceIsDue(result, state(), work_.clock);
    if (!expected) Tell(NoPosition{result, link_.Sentence(result)});
    return true;
  }
  if (state().repeatedEpoch) {
    Tell(EpochRepeated{});
    return true;
  }
  lastNewPositionMs_ = work_.clock.SteadyMilliseconds();
  if (plan_.recorded != nullptr) plan_.recorded->Follow(state().epochMs);
  // Until a whole epoch was seen its precision may still come, and a point is stored as well
  // measured as it is.
  held_ = link_.PrecisionMayFollow();
  if (held_) return TellPosition(std::nullopt), true;
  return TakeEpoch(Refusal());
}

// The limit that the position does not keep, unless it is to be stored all the same.
std::optional<GateRefusal> ReceiverSession::Refusal() {
  auto refusal = CheckGate(plan_.gate, state(), work_.clock.SteadyMilliseconds());
  overridden_.clear();
  if (refusal && plan_.overrideGate && refusal->limit != Limit::RepeatedEpoch) {
    overridden_ = RefusalSentence(*refusal);
    refusal.reset();
  }
  const std::optional<Limit> limit = refusal ? std::optional(refusal->limit) : std::nullopt;
  if (limit != refusedBy_) {
    refusedBy_ = limit;
    refusedSinceMs_ = steadyMs();
    Tell(LimitRefuses{refusal});
  }
  return refusal;
}

// The base that the receiver may still work with: it does for some time when corrections stay away.
std::optional<BaseStation> ReceiverSession::BaseInUse() const {
  if (!correctionStatus_ || correctionStatus_->ageMs < 0) return std::nullopt;
  return correctionStatus_->ageMs <= kBaseInUseMs ? correctionStatus_->base : std::nullopt;
}

bool ReceiverSession::PointComplete() {
  point_.state = state();
  point_.base = BaseInUse();
  if (!overridden_.empty()) point_.overridden = overridden_;
  if (plan_.average <= 1) return true;
  if (!average_.Add(state()) || average_.epochs() < plan_.average) return false;
  point_.state = average_.State();
  point_.mean = average_.Mean();
  return true;
}

GridPosition ReceiverSession::PlaceOf(const GnssPositionState& state) const {
  return PlaceOnGrid(state, calculator_, plan_.antennaHeight, job_.options.unit);
}

void ReceiverSession::DropPoint() {
  average_ = {};
  point_ = {};
  storeWanted_ = false;
}

bool ReceiverSession::StorePoint(const std::string& description,
                                 const std::vector<std::string>& comments) {
  const Observation observation{.point = point_,
                                .position = PointPlace(),
                                .description = description,
                                .antennaHeight = plan_.antennaHeight,
                                .makeCode = plan_.receiver.makeCode,
                                .expectsPrecision = !plan_.receiver.settings.noRms,
                                .setup = base_.records(),
                                .comments = comments};
  average_ = {};
  storeWanted_ = false;
  const GridPosition& position = observation.position;
  if (position.result != CalculationResult::Done) {
    if (!position.usable()) return RefusePlace(position);
    WarnOnce(CalculationText(position.result, position.steps));
  }
  for (const std::string& warning : PositionWarnings(point_.state, observation.expectsPrecision))
    WarnOnce(warning);
  if (const std::string cut = DescriptionWarning(observation.description); !cut.empty()) {
    WarnOnce(cut);
  }
  CheckPlace(position.at);
  const std::string wanted = job_.ids.current;
  // What is recorded comes as fast as it can be read; with a receiver there is time between two
  // epochs to make the files durable.
  const Settling settling = plan_.receiver.takesCorrections() ? Settling::Now : Settling::Later;
  return TakeStored(StoreObservation(session_, observation, settling), wanted);
}

// A recording is read on: its next positions may lie elsewhere.
bool ReceiverSession::RefusePlace(const GridPosition& position) {
  point_ = {};
  failed_ = true;
  if (plan_.receiver.isRecorded()) {
    WarnOnce(NoGridText(position));
    return true;
  }
  Problem(NoGridText(position));
  return false;
}

void ReceiverSession::CheckPlace(const GridPoint& at) {
  if (placeChecked_) return;
  placeChecked_ = true;
  for (const std::string& warning : PlaceWarnings(job_, calculator_, point_.state, at)) {
    WarnOnce(warning);
  }
}

bool ReceiverSession::TakeStored(const StoredPoint& stored, const std::string& wanted) {
  switch (stored.result) {
    case StoringResult::Exists:
      point_ = {};
      if (ChosenOneByOne()) {
        Answer(false, "Point " + wanted + " exists; nothing was stored. Choose another id.");
        return true;
      }
      Tell(PointExists{wanted});
      return false;
    case StoringResult::NoFreeId:
      Problem("No free point id was found behind " + wanted + ".");
      return false;
    case StoringResult::Failed:
      return false;
    case StoringResult::Stored:
    case StoringResult::StoredLater:
      break;
  }
  ++stored_;
  base_.Recorded();
  KeepForTakingBack(stored);
  Tell(PointStored{stored.point, point_.state, point_.mean, point_.overridden, stored.replaced,
                   job_.options.unit});
  point_ = {};
  AdvanceId();
  return stored.result == StoringResult::Stored;
}

// A person who chooses each point is led past the ids that are taken; a script goes on with the
// next one, and its policy says what happens when that exists.
void ReceiverSession::AdvanceId() {
  const bool passesOver = ChosenOneByOne() && session_.policy() == ExistingPolicy::Cancel;
  const auto stream = passesOver ? OpenForReading(job_) : nullptr;
  const auto free = stream ? stream->store().NextUnused(job_.ids) : std::nullopt;
  if (free) {
    job_.ids.current = *free;
  } else {
    AdvanceCurrentPoint(job_);
  }
}

void ReceiverSession::KeepForTakingBack(const StoredPoint& stored) {
  if (ownStores_.size() == kMostTakenBack) ownStores_.pop_front();
  std::string next = NextDescription();
  ownStores_.push_back({stored, plan_.description, next});
  plan_.description = std::move(next);
}

// A recording is read as fast as it goes, with nobody who walks.
std::optional<double> ReceiverSession::DistanceFromLast() const {
  if (ownStores_.empty() || plan_.receiver.isRecorded()) return std::nullopt;
  const GridPosition here = Place();
  if (!here.usable()) return std::nullopt;
  const GridPoint& last = ownStores_.back().stored.point.at;
  return std::hypot(here.at.northing - last.northing, here.at.easting - last.easting);
}

void ReceiverSession::TellPosition(const std::optional<GateRefusal>& refusal) {
  Tell(PositionSeen{.state = state(),
                    .refusal = refusal,
                    .epoch = average_.epochs(),
                    .epochs = plan_.average,
                    .stored = stored_,
                    .paused = paused_,
                    .storeWanted = storeWanted_,
                    .refusedForMs = refusal ? steadyMs() - refusedSinceMs_ : 0,
                    .nextId = job_.ids.current,
                    .description = plan_.description,
                    .lastId = ownStores_.empty() ? "" : ownStores_.back().stored.point.id.str(),
                    .fromLast = DistanceFromLast(),
                    .corrections = correctionStatus_});
}

void ReceiverSession::WarnOnce(const std::string& sentence) {
  if (warned_.insert(sentence).second) Tell(SessionWarning{sentence});
}

void ReceiverSession::Problem(const std::string& sentence) {
  failed_ = true;
  Tell(SessionProblem{sentence});
}

}  // namespace tarvex
