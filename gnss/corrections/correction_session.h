// The correction session: keeps one stream of a caster open, pumps its corrections to the receiver
// and the rover's GGA to the caster, and reconnects when the stream breaks. It runs on a thread of
// its own beside the one that reads the receiver.
//
// After a lost or silent stream it waits 10 s, doubling to 300 s, and starts again at 10 s after
// five minutes of data. Before a stream is opened the caster's table is asked whether the stream
// needs the rover's position, until it has said so. A refused user and an unknown mountpoint are
// not tried again: asking again changes nothing, and casters lock out who hammers them. One that
// has worked in this session is: casters refuse a user while they hold his lost connection open,
// and a base that starts anew is missing from its caster for a while.
#pragma once

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <string>

#include "gnss/corrections/back_off.h"
#include "gnss/corrections/correction_status.h"
#include "gnss/corrections/latest_gga.h"
#include "gnss/corrections/rtcm_framer.h"
#include "gnss/ntrip/client.h"
#include "gnss/port/port.h"

namespace tarvex {

/// Where the corrections go.
class CorrectionSink {
 public:
  virtual ~CorrectionSink() = default;
  /// WriteFailed when the receiver does not take them, Cancelled when the end was asked for.
  [[nodiscard]] virtual PortError Write(std::string_view bytes) = 0;
};

/// The receiver's own port, written beside the thread that reads it. A slow line is waited for as
/// long as it takes something; a receiver that takes nothing for kPatienceMs has failed.
class PortSink final : public CorrectionSink {
 public:
  /// `stop` ends the waiting within kSliceMs.
  explicit PortSink(Port& port, StopAsked stop = {}) : port_(port), stop_(std::move(stop)) {}
  PortError Write(std::string_view bytes) override;

  static constexpr std::uint32_t kSliceMs = 100;
  static constexpr std::uint32_t kPatienceMs = 5000;

 private:
  Port& port_;
  StopAsked stop_;
};

/// Whether the rover's position goes up.
enum class GgaUpload {
  Never,
  WhenWanted,  ///< when the caster's table says that the stream needs it
  Always,
};

struct CorrectionPlan {
  CasterLogin caster = {};
  std::string mountpoint = {};
  GgaUpload gga = GgaUpload::WhenWanted;
  bool ggaTalkerGp = true;  ///< rewrite the talker for casters that take GP alone
  std::int64_t ggaIntervalMs = 10'000;
  std::int64_t ggaLimitMs = 30'000;     ///< a position that is older is not sent
  std::int64_t tableLimitMs = 15'000;   ///< for asking what the stream wants
  std::int64_t silentAfterMs = 15'000;  ///< told as silence
  std::int64_t deadAfterMs = 60'000;    ///< the stream is opened anew
};

class CorrectionSession final : private RtcmFramer::Listener {
 public:
  CorrectionSession(CorrectionPlan plan, NtripConnection& connection,
                    NtripSurroundings surroundings);

  /// Who receives the corrections, and whose GGA is sent; neither is owned, either may be missing.
  void Attach(CorrectionSink* sink, const LatestGga* gga);

  /// One bounded piece of work: a try to connect, one receive (`waitMs` at most), or nothing but
  /// the waiting for the next try. False when nothing is left to do until Retry.
  bool Step(int waitMs, NtripProgress& progress);

  /// Ends the stream; on the thread that calls Step.
  void Stop();

  /// Connects anew at once, also after a refusal. May be called from any thread.
  void Retry() { retryRequested_ = true; }
  /// May be called from any thread.
  CorrectionStatus Status() const;

 private:
  class Telling;

  void OnMessage(std::string_view message) override;

  void Open(NtripProgress& progress);
  void Failed(PortError cause);
  bool LearnWhatIsWanted(NtripProgress& progress);
  void LookForMountpoint(NtripProgress& progress);
  bool LoadTable(CasterList& list, NtripProgress& progress);
  void Pump(int waitMs);
  void TakeBytes(std::string_view bytes);
  void NotePosition();
  void SendGga();
  void Wait(int waitMs, NtripProgress& progress);
  void TryLater();
  void NoteDoing(std::string_view text);
  void SetState(CorrectionState state);
  void NoteBase(const BaseStation& station);
  std::int64_t Now() const { return surroundings_.clock.SteadyMilliseconds(); }

  const CorrectionPlan plan_;
  NtripConnection& connection_;
  NtripSurroundings surroundings_;
  NtripClient client_;
  CorrectionSink* sink_ = nullptr;
  const LatestGga* gga_ = nullptr;
  BackOff backOff_;
  RtcmFramer framer_;
  std::optional<BaseStation> firstBase_;
  std::atomic<std::int64_t> nextTryAtMs_ = 0;
  std::int64_t openedAtMs_ = 0;
  std::atomic<std::int64_t> lastByteAtMs_ = 0;
  std::atomic<std::int64_t> lastFrameAtMs_ = -1;
  std::int64_t nextGgaAtMs_ = 0;
  std::uint64_t positions_ = 0;  // of the rover, as many as have been seen
  std::int64_t positionAtMs_ = 0;
  bool hasWorked_ = false;   // data came in this session
  bool tableAsked_ = false;  // and need not be asked again
  bool ggaKnown_ = false;    // the table has told whether the stream wants the position
  bool ggaWanted_ = false;
  std::atomic<bool> retryRequested_ = false;
  std::array<char, 65536> buffer_;

  static constexpr std::size_t kMessageNumbers = 4096;  // twelve bits
  std::array<std::atomic<std::uint32_t>, kMessageNumbers> messages_ = {};

  mutable std::mutex mutex_;
  CorrectionStatus status_;  // guarded by mutex_; state_ below is the session's own copy
  CorrectionState state_ = CorrectionState::Idle;
};

}  // namespace tarvex
