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

double Distance(const Geocentric& a, const Geocentric& b) {
  return std::hypot(a.x_m - b.x_m, a.y_m - b.y_m, a.z_m - b.z_m);
}

}  // namespace

bool PortSink::Write(std::string_view bytes) {
  std::uint32_t idle_ms = 0;
  while (!bytes.empty()) {
    if (idle_ms >= kPatienceMs || (stop_ && stop_())) return false;
    std::size_t written = 0;
    if (port_.WriteBeside(bytes, {.constant_ms = kSliceMs}, written) != PortError::None) {
      return false;
    }
    bytes.remove_prefix(written);
    idle_ms = written > 0 ? 0 : idle_ms + kSliceMs;
  }
  return true;
}

// Passes on what the client tells, and ends what takes longer than it may.
class CorrectionSession::Telling final : public NtripProgress {
 public:
  Telling(CorrectionSession& session, NtripProgress& progress, std::int64_t limit_ms)
      : session_(session),
        progress_(progress),
        until_ms_(limit_ms == kNoLimit ? kNoLimit : session.Now() + limit_ms) {}

  int Progress(int value, int minimum, int elapsed_s) override {
    if (const int cancelled = progress_.Progress(value, minimum, elapsed_s); cancelled != 0) {
      return cancelled;
    }
    ran_out_ = ran_out_ || session_.Now() > until_ms_;
    return ran_out_ ? 1 : 0;
  }
  void Status(std::string_view text) override {
    session_.NoteDoing(text);
    progress_.Status(text);
  }
  bool ran_out() const { return ran_out_; }

 private:
  CorrectionSession& session_;
  NtripProgress& progress_;
  std::int64_t until_ms_;
  bool ran_out_ = false;
};

CorrectionSession::CorrectionSession(CorrectionPlan plan, NtripConnection& connection,
                                     NtripSurroundings surroundings)
    : plan_(std::move(plan)),
      connection_(connection),
      surroundings_(std::move(surroundings)),
      client_(&connection, "corrections", surroundings_),
      back_off_(static_cast<std::uint64_t>(surroundings_.clock.SteadyMilliseconds())) {
  status_.caster = CasterName(plan_.caster);
  status_.mountpoint = plan_.mountpoint;
}

void CorrectionSession::Attach(CorrectionSink* sink, const LatestGga* gga) {
  sink_ = sink;
  gga_ = gga;
}

bool CorrectionSession::Step(int wait_ms, NtripProgress& progress) {
  if (retry_requested_.exchange(false)) {
    connection_.Close();
    back_off_.Reset();
    SetState(CorrectionState::Idle);
  }
  NotePosition();
  switch (state_) {
    case CorrectionState::Idle:
      Open(progress);
      return true;
    case CorrectionState::Waiting:
    case CorrectionState::ReceiverFailed:
      Wait(wait_ms, progress);
      return true;
    case CorrectionState::Connecting:
    case CorrectionState::Receiving:
    case CorrectionState::Silent:
      Pump(wait_ms);
      return true;
    default:
      return false;
  }
}

void CorrectionSession::Wait(int wait_ms, NtripProgress& progress) {
  const std::int64_t left_ms = next_try_at_ms_ - Now();
  if (left_ms <= 0) return Open(progress);
  surroundings_.clock.SleepMilliseconds(std::min<std::int64_t>(left_ms, wait_ms));
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
  opened_at_ms_ = next_gga_at_ms_ = Now();
  last_byte_at_ms_ = opened_at_ms_;
  const std::lock_guard lock(mutex_);
  ++status_.connections;
  status_.most_alike.clear();
  status_.doing.clear();
}

void CorrectionSession::TryLater() {
  next_try_at_ms_ = Now() + back_off_.Next();
}

// What never worked and is refused for good is not tried again, everything else is.
void CorrectionSession::Failed(PortError cause) {
  connection_.Close();
  if (cause == PortError::Cancelled) return SetState(CorrectionState::Stopped);
  {
    const std::lock_guard lock(mutex_);
    status_.cause = cause;
    status_.cause_detail = cause == client_.cause() ? client_.cause_detail() : std::string();
  }
  if (cause == PortError::NotAuthorized && !has_worked_) return SetState(CorrectionState::Refused);
  if (cause == PortError::MountpointUnknown && !has_worked_) {
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
  if (plan_.gga == GgaUpload::Always) gga_wanted_ = true;
  if (plan_.gga != GgaUpload::WhenWanted || gga_ == nullptr || table_asked_) return true;
  Telling telling(*this, progress, plan_.table_limit_ms);
  CasterList list;
  if (LoadTable(list, telling)) {
    const StreamRecord* const stream = list.Find(plan_.mountpoint);
    gga_known_ = table_asked_ = stream != nullptr || list.complete;
    if (gga_known_) gga_wanted_ = stream != nullptr && stream->nmea;
    return true;
  }
  if (telling.ran_out()) return true;
  table_asked_ = client_.cause() == PortError::NotAuthorized;
  return client_.cause() != PortError::CasterNotOpened && client_.cause() != PortError::Cancelled;
}

// The caster does not know the mountpoint; perhaps it was mistyped.
void CorrectionSession::LookForMountpoint(NtripProgress& progress) {
  Telling telling(*this, progress, plan_.table_limit_ms);
  CasterList list;
  if (!LoadTable(list, telling)) return;
  const std::lock_guard lock(mutex_);
  status_.most_alike = list.MostAlike(plan_.mountpoint, kAlikeNames);
}

void CorrectionSession::Pump(int wait_ms) {
  SendGga();
  if (state_ == CorrectionState::Waiting) return;
  std::size_t count = 0;
  const PortError error = client_.Receive(buffer_, count, wait_ms);
  if (error != PortError::None && error != PortError::FewerBytesRead) {
    return Failed(error == PortError::Cancelled ? error : PortError::Disconnected);
  }
  if (count > 0) return TakeBytes({buffer_.data(), count});
  const std::int64_t silent_ms = Now() - last_byte_at_ms_;
  if (silent_ms > kSilentUnknownMs && plan_.gga == GgaUpload::WhenWanted && !gga_known_) {
    gga_wanted_ = true;
  }
  if (silent_ms > plan_.dead_after_ms) return Failed(PortError::NoAnswer);
  if (silent_ms > plan_.silent_after_ms) SetState(CorrectionState::Silent);
}

void CorrectionSession::TakeBytes(std::string_view bytes) {
  const std::int64_t now = Now();
  last_byte_at_ms_ = now;
  has_worked_ = true;
  if (state_ != CorrectionState::Receiving) SetState(CorrectionState::Receiving);
  if (now - opened_at_ms_ > kSteadyDataMs) back_off_.Reset();
  const bool taken = sink_ == nullptr || sink_->Write(bytes);
  const std::uint64_t frames_before = framer_.frames();
  const std::uint64_t damaged_before = framer_.bad_crcs();
  framer_.Feed(bytes, *this);
  const std::uint64_t frames = framer_.frames() - frames_before;
  if (frames > 0) last_frame_at_ms_ = now;
  {
    const std::lock_guard lock(mutex_);
    status_.frames += frames;
    status_.bytes += bytes.size();
    if (taken && sink_ != nullptr) status_.bytes_to_receiver += bytes.size();
    status_.bad_crcs += framer_.bad_crcs() - damaged_before;
    if (!taken) status_.cause = PortError::WriteFailed;
  }
  if (taken) return;
  connection_.Close();
  TryLater();
  SetState(CorrectionState::ReceiverFailed);
}

// A sentence has no time of its own that could be trusted: its age is counted from when it came.
void CorrectionSession::NotePosition() {
  if (gga_ == nullptr || gga_->taken() == positions_) return;
  positions_ = gga_->taken();
  position_at_ms_ = Now();
}

void CorrectionSession::SendGga() {
  if (!gga_wanted_ || gga_ == nullptr || Now() < next_gga_at_ms_) return;
  if (Now() - position_at_ms_ > plan_.gga_limit_ms) return;
  const std::string gga = gga_->Get();
  if (gga.empty()) return;
  next_gga_at_ms_ = Now() + plan_.gga_interval_ms;
  const PortError error =
      client_.Send(plan_.gga_talker_gp ? WithGpTalker(gga) : gga, kGgaTimeoutMs);
  if (error != PortError::None) return Failed(PortError::Disconnected);
  const std::lock_guard lock(mutex_);
  ++status_.ggas_sent;
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
  if (!first_base_) first_base_ = station;
  status_.base = station;
  status_.base_moved_m = Distance(first_base_->position, station.position);
}

void CorrectionSession::Stop() {
  connection_.Close();
  SetState(CorrectionState::Stopped);
}

CorrectionStatus CorrectionSession::Status() const {
  const std::lock_guard lock(mutex_);
  CorrectionStatus status = status_;
  const std::int64_t now = surroundings_.clock.SteadyMilliseconds();
  const std::int64_t last_frame = last_frame_at_ms_;
  for (std::size_t number = 0; number < messages_.size(); ++number) {
    const std::uint32_t count = messages_[number].load(std::memory_order_relaxed);
    if (count > 0) status.messages[static_cast<int>(number)] = count;
  }
  status.age_ms = last_frame < 0 ? -1 : now - last_frame;
  status.silent_ms = now - last_byte_at_ms_;
  status.next_try_in_ms = std::max<std::int64_t>(0, next_try_at_ms_ - now);
  return status;
}

}  // namespace tarvex
