#include "gnss/corrections/correction_session.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace tarvex {
namespace {

constexpr int kGgaTimeoutMs = 2000;
constexpr std::int64_t kSteadyDataMs = 300'000;
constexpr std::size_t kAlikeNames = 3;
constexpr std::int64_t kNoLimit = std::numeric_limits<std::int64_t>::max();
// A stream of which no table tells anything, and which says nothing, may wait for the position.
constexpr std::int64_t kSilentUnknownMs = 5000;

}  // namespace

PortError PortSink::Write(std::string_view bytes) {
  std::uint32_t idleMs = 0;
  while (!bytes.empty()) {
    if (stop_ && stop_()) return PortError::Cancelled;
    if (idleMs >= kPatienceMs) return PortError::WriteFailed;
    std::size_t written = 0;
    if (port_.WriteBeside(bytes, {.constantMs = kSliceMs}, written) != PortError::None) {
      return PortError::WriteFailed;
    }
    bytes.remove_prefix(written);
    idleMs = written > 0 ? 0 : idleMs + kSliceMs;
  }
  return PortError::None;
}

// Passes on what the client tells, and ends what takes longer than it may.
class CorrectionSession::Telling final : public NtripProgress {
 public:
  Telling(CorrectionSession& session, NtripProgress& progress, std::int64_t limitMs)
      : session_(session),
        progress_(progress),
        untilMs_(limitMs == kNoLimit ? kNoLimit : session.Now() + limitMs) {}

  int Progress(int value, int minimum, int elapsedS) override {
    if (const int cancelled = progress_.Progress(value, minimum, elapsedS); cancelled != 0) {
      return cancelled;
    }
    ranOut_ = ranOut_ || session_.Now() > untilMs_;
    return ranOut_ ? 1 : 0;
  }
  void Status(std::string_view text) override {
    session_.NoteDoing(text);
    progress_.Status(text);
  }
  bool ranOut() const { return ranOut_; }

 private:
  CorrectionSession& session_;
  NtripProgress& progress_;
  std::int64_t untilMs_;
  bool ranOut_ = false;
};

CorrectionSession::CorrectionSession(CorrectionPlan plan, NtripConnection& connection,
                                     NtripSurroundings surroundings)
    : plan_(std::move(plan)),
      connection_(connection),
      surroundings_(std::move(surroundings)),
      client_(&connection, "corrections", surroundings_),
      backOff_(static_cast<std::uint64_t>(surroundings_.clock.SteadyMilliseconds())) {
  status_.caster = CasterName(plan_.caster);
  status_.mountpoint = plan_.mountpoint;
}

void CorrectionSession::Attach(CorrectionSink* sink, const LatestGga* gga) {
  sink_ = sink;
  gga_ = gga;
}

bool CorrectionSession::Step(int waitMs, NtripProgress& progress) {
  if (retryRequested_.exchange(false)) {
    connection_.Close();
    backOff_.Reset();
    SetState(CorrectionState::Idle);
  }
  NotePosition();
  switch (state_) {
    case CorrectionState::Idle:
      Open(progress);
      return true;
    case CorrectionState::Waiting:
    case CorrectionState::ReceiverFailed:
      Wait(waitMs, progress);
      return true;
    case CorrectionState::Connecting:
    case CorrectionState::Receiving:
    case CorrectionState::Silent:
      Pump(waitMs);
      return true;
    default:
      return false;
  }
}

void CorrectionSession::Wait(int waitMs, NtripProgress& progress) {
  const std::int64_t leftMs = nextTryAtMs_ - Now();
  if (leftMs <= 0) return Open(progress);
  surroundings_.clock.SleepMilliseconds(std::min<std::int64_t>(leftMs, waitMs));
}

// Stopping changes nothing about what flowed until then.
void CorrectionSession::SetState(CorrectionState state) {
  state_ = state;
  const std::lock_guard lock(mutex_);
  status_.state = state;
  if (state != CorrectionState::Stopped) status_.flowing = state == CorrectionState::Receiving;
  if (state != CorrectionState::Connecting) status_.doing.clear();
  if (state == CorrectionState::Receiving) status_.cause = PortError::None;
}

void CorrectionSession::NoteDoing(std::string_view text) {
  const std::lock_guard lock(mutex_);
  status_.doing = text;
}

void CorrectionSession::Open(NtripProgress& progress) {
  SetState(CorrectionState::Connecting);
  framer_ = {};
  surroundings_.errors.Clear();
  if (!LearnWhatIsWanted(progress)) return Failed(client_.cause());
  Telling telling(*this, progress, kNoLimit);
  if (client_.ConnectMountpoint(plan_.caster, plan_.mountpoint, telling) != PortError::None) {
    Failed(client_.cause());
    if (state_ == CorrectionState::UnknownMountpoint) LookForMountpoint(progress);
    return;
  }
  openedAtMs_ = nextGgaAtMs_ = Now();
  lastByteAtMs_ = openedAtMs_;
  const std::lock_guard lock(mutex_);
  ++status_.connections;
  status_.mostAlike.clear();
  status_.doing.clear();
}

void CorrectionSession::TryLater() {
  nextTryAtMs_ = Now() + backOff_.Next();
}

// What never worked and is refused for good is not tried again, everything else is.
void CorrectionSession::Failed(PortError cause) {
  connection_.Close();
  if (cause == PortError::Cancelled) return SetState(CorrectionState::Stopped);
  {
    const std::lock_guard lock(mutex_);
    status_.cause = cause;
    status_.causeDetail = cause == client_.cause() ? client_.causeDetail() : std::string();
  }
  if (cause == PortError::NotAuthorized && !hasWorked_) return SetState(CorrectionState::Refused);
  if (cause == PortError::MountpointUnknown && !hasWorked_) {
    return SetState(CorrectionState::UnknownMountpoint);
  }
  TryLater();
  SetState(CorrectionState::Waiting);
}

bool CorrectionSession::LoadTable(CasterList& list, NtripProgress& progress) {
  list.current = plan_.caster;
  const PortError error = client_.LoadBases(list, progress);
  connection_.Close();
  return error == PortError::None;
}

// False when the caster is not reached at all, or the asking was cancelled. A table that was cut
// before the stream, a slow one and none at all tell nothing: it is asked for again with the next
// connection, unless the caster keeps it to itself.
bool CorrectionSession::LearnWhatIsWanted(NtripProgress& progress) {
  if (plan_.gga == GgaUpload::Always) ggaWanted_ = true;
  if (plan_.gga != GgaUpload::WhenWanted || gga_ == nullptr || tableAsked_) return true;
  Telling telling(*this, progress, plan_.tableLimitMs);
  CasterList list;
  if (LoadTable(list, telling)) {
    const StreamRecord* const stream = list.Find(plan_.mountpoint);
    ggaKnown_ = tableAsked_ = stream != nullptr || list.complete;
    if (ggaKnown_) ggaWanted_ = stream != nullptr && stream->nmea;
    return true;
  }
  if (telling.ranOut()) return true;
  tableAsked_ = client_.cause() == PortError::NotAuthorized;
  return client_.cause() != PortError::CasterNotOpened && client_.cause() != PortError::Cancelled;
}

// The caster does not know the mountpoint; perhaps it was mistyped.
void CorrectionSession::LookForMountpoint(NtripProgress& progress) {
  Telling telling(*this, progress, plan_.tableLimitMs);
  CasterList list;
  if (!LoadTable(list, telling)) return;
  const std::lock_guard lock(mutex_);
  status_.mostAlike = list.MostAlike(plan_.mountpoint, kAlikeNames);
}

void CorrectionSession::Pump(int waitMs) {
  SendGga();
  if (state_ == CorrectionState::Waiting) return;
  std::size_t count = 0;
  const PortError error = client_.Receive(buffer_, count, waitMs);
  if (error != PortError::None && error != PortError::FewerBytesRead) {
    return Failed(error == PortError::Cancelled ? error : PortError::Disconnected);
  }
  if (count > 0) return TakeBytes({buffer_.data(), count});
  const std::int64_t silentMs = Now() - lastByteAtMs_;
  if (silentMs > kSilentUnknownMs && plan_.gga == GgaUpload::WhenWanted && !ggaKnown_) {
    ggaWanted_ = true;
  }
  if (silentMs > plan_.deadAfterMs) return Failed(PortError::NoAnswer);
  if (silentMs > plan_.silentAfterMs) SetState(CorrectionState::Silent);
}

void CorrectionSession::TakeBytes(std::string_view bytes) {
  const std::int64_t now = Now();
  lastByteAtMs_ = now;
  hasWorked_ = true;
  if (state_ != CorrectionState::Receiving) SetState(CorrectionState::Receiving);
  if (now - openedAtMs_ > kSteadyDataMs) backOff_.Reset();
  const PortError written = sink_ == nullptr ? PortError::None : sink_->Write(bytes);
  const bool taken = written == PortError::None;
  const std::uint64_t framesBefore = framer_.frames();
  const std::uint64_t damagedBefore = framer_.badCrcs();
  framer_.Feed(bytes, *this);
  const std::uint64_t frames = framer_.frames() - framesBefore;
  if (frames > 0) lastFrameAtMs_ = now;
  {
    const std::lock_guard lock(mutex_);
    status_.frames += frames;
    status_.bytes += bytes.size();
    if (taken && sink_ != nullptr) status_.bytesToReceiver += bytes.size();
    status_.badCrcs += framer_.badCrcs() - damagedBefore;
    if (written == PortError::WriteFailed) status_.cause = written;
  }
  if (taken) return;
  if (written == PortError::Cancelled) return Failed(written);
  connection_.Close();
  TryLater();
  SetState(CorrectionState::ReceiverFailed);
}

// A sentence has no time of its own that could be trusted: its age is counted from when it came.
void CorrectionSession::NotePosition() {
  if (gga_ == nullptr || gga_->taken() == positions_) return;
  positions_ = gga_->taken();
  positionAtMs_ = Now();
}

void CorrectionSession::SendGga() {
  if (!ggaWanted_ || gga_ == nullptr || Now() < nextGgaAtMs_) return;
  if (Now() - positionAtMs_ > plan_.ggaLimitMs) return;
  const std::string gga = gga_->Get();
  if (gga.empty()) return;
  nextGgaAtMs_ = Now() + plan_.ggaIntervalMs;
  const PortError error = client_.Send(plan_.ggaTalkerGp ? WithGpTalker(gga) : gga, kGgaTimeoutMs);
  if (error != PortError::None) return Failed(PortError::Disconnected);
  const std::lock_guard lock(mutex_);
  ++status_.ggasSent;
}

void CorrectionSession::OnMessage(std::string_view message) {
  const int number = RtcmMessageNumber(message);
  if (number < 0 || number >= static_cast<int>(messages_.size())) return;
  // One thread counts: nothing is lost between the two.
  std::atomic<std::uint32_t>& count = messages_[static_cast<std::size_t>(number)];
  count.store(count.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
  if (const auto station = ReadBaseStation(message)) {
    const std::lock_guard lock(mutex_);
    NoteBase(*station);
  }
}

void CorrectionSession::NoteBase(const BaseStation& station) {
  if (!firstBase_) firstBase_ = station;
  status_.base = station;
  status_.baseMovedM = Distance(firstBase_->position, station.position);
}

void CorrectionSession::Stop() {
  connection_.Close();
  SetState(CorrectionState::Stopped);
}

CorrectionStatus CorrectionSession::Status() const {
  const std::lock_guard lock(mutex_);
  CorrectionStatus status = status_;
  const std::int64_t now = surroundings_.clock.SteadyMilliseconds();
  const std::int64_t lastFrame = lastFrameAtMs_;
  for (std::size_t number = 0; number < messages_.size(); ++number) {
    const std::uint32_t count = messages_[number].load(std::memory_order_relaxed);
    if (count > 0) status.messages[static_cast<int>(number)] = count;
  }
  status.ageMs = lastFrame < 0 ? -1 : now - lastFrame;
  status.silentMs = now - lastByteAtMs_;
  status.nextTryInMs = std::max<std::int64_t>(0, nextTryAtMs_ - now);
  return status;
}

}  // namespace tarvex
