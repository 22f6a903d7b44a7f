#include "app/workflow/receiver_link.h"

#include <algorithm>

#include "gnss/port/port_error.h"

namespace tarvex {

ReceiverLink::ReceiverLink(FileSystem& files, Clock& clock, const ChosenReceiver& receiver,
                           DistanceUnit unit, StopAsked stop, const PortMaker& maker)
    : clock_(clock),
      receiver_(receiver),
      stop_(std::move(stop)),
      port_(maker ? maker(receiver.address, stop_)
                  : MakePort(receiver.address, files, clock, SystemLastError(), stop_)),
      tap_(files, clock),
      connection_{.port = port_.get(), .clock = clock, .settings = receiver.settings} {
  state_.unit = unit;
  connection_.stop = this;
  connection_.listener = &tap_;
  tap_.ShowSatellitesOf(receiver.settings.satelliteFamily);
}

bool ReceiverLink::OpenPort() {
  if (!port_) return true;
  SystemLastError().Clear();
  return port_->Open() == PortError::None;
}

bool ReceiverLink::Open(std::string& problem) {
  if (OpenPort()) return true;
  problem = ErrorSentences(SystemLastError());
  return false;
}

std::string ReceiverLink::Sentence(GnssReadResult result) const {
  if (result == GnssReadResult::NoPositionSentence && damagedInReading_ > 0) {
    return "The positions of the receiver come damaged: their checksums are wrong.";
  }
  return ResultSentence(result, connection_);
}

bool ReceiverLink::PrecisionMayFollow() const {
  return tarvex::PrecisionMayFollow(state_, connection_, receiver_.makeCode);
}

GnssReadResult ReceiverLink::Read(std::int64_t deadlineMs) {
  connection_.deadlineMs = deadlineMs;
  const std::uint64_t damagedBefore = state_.badChecksums;
  const GnssReadResult result = ReadGnssPosition(state_, connection_, receiver_.makeCode);
  damagedInReading_ = state_.badChecksums - damagedBefore;
  if (result != GnssReadResult::Accepted && connection_.linkLost()) NoteLost();
  return result;
}

void ReceiverLink::NoteLost() {
  if (lost_) return;
  lost_ = true;
  retry_ = {};
  nextTryAtMs_ = clock_.SteadyMilliseconds() + retry_.NextMs();
  (void)port_->Close();
}

std::int64_t ReceiverLink::NextTryMs() const {
  return std::max<std::int64_t>(0, nextTryAtMs_ - clock_.SteadyMilliseconds());
}

bool ReceiverLink::TryAgain() {
  if (!lost_ || NextTryMs() > 0) return false;
  if (OpenPort()) {
    connection_.Reconnected();
    ForgetQuality(state_);
    lost_ = false;
    return true;
  }
  nextTryAtMs_ = clock_.SteadyMilliseconds() + retry_.NextMs();
  return false;
}

}  // namespace tarvex
