#include "gnss/corrections/correction_session.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarvex {
namespace {

constexpr int kGgaTimeoutMs = 2000;
constexpr std::int64_t kSteadyDataMs = 300'000;
constexpr std::size_t kAlikeNames = 3;

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

CorrectionSession::CorrectionSession(CorrectionPlan plan, NtripConnection& connection,
                                     NtripSurroundings surroundings)
    : plan_(std::move(plan)),
      connection_(connection),
      surroundings_(std::move(surroundings)),
      client_(&connection, "corrections", surroundings_),
      back_off_(static_cast<std::uint64_t>(surroundings_.clock.SteadyMilliseconds())) {
  status_.caster = plan_.caster.host.str() + ":" + plan_.caster.port;
  status_.mountpoint = plan_.mountpoint;
}

void CorrectionSession::Attach(CorrectionSink* sink, const LatestGga* gga) {
  sink_ = sink;
  gga_ = gga;
}

bool CorrectionSession::Step(int wait_ms, Progress& progress) {
  if (retry_requested_.exchange(false)) {
    connection_.Close();
    back_off_.Reset();
    SetState(CorrectionState::Idle);
  }
  switch (state_) {
    case CorrectionState::Idle:
      Open(progress);
      return true;
    case CorrectionState::Waiting:
      if (Now() < next_try_at_ms_) {
        surroundings_.clock.SleepMilliseconds(
            std::clamp<std::int64_t>(next_try_at_ms_ - Now(), 0, wait_ms));
      } else {
        Open(progress);
      }
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

void CorrectionSession::SetState(CorrectionState state) {
  state_ = state;
  const std::lock_guard lock(mutex_);
  status_.state = state;
}

void CorrectionSession::Open(Progress& progress) {
  SetState(CorrectionState::Connecting);
  framer_ = {};
  surroundings_.errors.Clear();
  if (!LearnWhatIsWanted(progress)) return Failed(client_.cause());
  if (client_.ConnectMountpoint(plan_.caster, plan_.mountpoint, progress) != PortError::None) {
    Failed(client_.cause());
    if (state_ == CorrectionState::UnknownMountpoint) LookForMountpoint(progress);
    return;
  }
  opened_at_ms_ = next_gga_at_ms_ = Now();
  last_byte_at_ms_ = opened_at_ms_;
  const std::lock_guard lock(mutex_);
  ++status_.connections;
  status_.most_alike.clear();
}

// Permanent refusals end the session, everything else is tried again later.
void CorrectionSession::Failed(PortError cause) {
  connection_.Close();
  {
    const std::lock_guard lock(mutex_);
    status_.cause = cause;
    status_.cause_detail = cause == client_.cause() ? client_.cause_detail() : std::string();
  }
  switch (cause) {
    case PortError::NotAuthorized:
      return SetState(CorrectionState::Refused);
    case PortError::MountpointUnknown:
      return SetState(CorrectionState::UnknownMountpoint);
    case PortError::Cancelled:
      return SetState(CorrectionState::Stopped);
    default:
      next_try_at_ms_ = Now() + back_off_.Next();
      SetState(CorrectionState::Waiting);
  }
}

bool CorrectionSession::LoadTable(CasterList& list, Progress& progress) {
  list.current = plan_.caster;
  const PortError error = client_.LoadBases(list, progress);
  connection_.Close();
  return error == PortError::None;
}

// Asked once. A caster that gives no table is taken to want nothing; false when it is not reached
// at all, or the asking was cancelled.
bool CorrectionSession::LearnWhatIsWanted(Progress& progress) {
  if (plan_.gga == GgaUpload::Always) gga_wanted_ = true;
  if (plan_.gga != GgaUpload::WhenWanted || gga_ == nullptr || table_asked_) return true;
  CasterList list;
  if (LoadTable(list, progress)) {
    const StreamRecord* const stream = list.Find(plan_.mountpoint);
    gga_wanted_ = stream != nullptr && stream->nmea;
  } else if (client_.cause() == PortError::CasterNotOpened ||
             client_.cause() == PortError::Cancelled) {
    return false;
  }
  table_asked_ = true;
  return true;
}

// The caster does not know the mountpoint; perhaps it was mistyped.
void CorrectionSession::LookForMountpoint(Progress& progress) {
  CasterList list;
  if (!LoadTable(list, progress)) return;
  const std::lock_guard lock(mutex_);
  status_.most_alike = list.MostAlike(plan_.mountpoint, kAlikeNames);
}

void CorrectionSession::Pump(int wait_ms) {
  SendGga();
  if (state_ == CorrectionState::Waiting) return;
  std::size_t count = 0;
  const PortError error = client_.Receive(buffer_, count, wait_ms);
  if (error != PortError::None && error != PortError::FewerBytesRead) {
    return Failed(PortError::Disconnected);
  }
  if (count > 0) return TakeBytes({buffer_.data(), count});
  const std::int64_t silent_ms = Now() - last_byte_at_ms_;
  if (silent_ms > plan_.dead_after_ms) return Failed(PortError::NoAnswer);
  if (silent_ms > plan_.silent_after_ms) SetState(CorrectionState::Silent);
}

void CorrectionSession::TakeBytes(std::string_view bytes) {
  const std::int64_t now = Now();
  last_byte_at_ms_ = now;
  if (state_ != CorrectionState::Receiving) SetState(CorrectionState::Receiving);
  if (now - opened_at_ms_ > kSteadyDataMs) back_off_.Reset();
  const bool taken = sink_ == nullptr || sink_->Write(bytes);
  const std::uint64_t frames_before = framer_.frames();
  framer_.Feed(bytes, *this);
  const std::uint64_t frames = framer_.frames() - frames_before;
  if (frames > 0) last_frame_at_ms_ = now;
  {
    const std::lock_guard lock(mutex_);
    status_.frames += frames;
    status_.bytes += bytes.size();
    if (taken && sink_ != nullptr) status_.bytes_to_receiver += bytes.size();
    status_.bad_crcs = framer_.bad_crcs();
  }
  if (taken) return;
  connection_.Close();
  SetState(CorrectionState::ReceiverFailed);
}

void CorrectionSession::SendGga() {
  if (!gga_wanted_ || gga_ == nullptr || Now() < next_gga_at_ms_) return;
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
