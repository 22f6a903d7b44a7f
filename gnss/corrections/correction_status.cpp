#include "gnss/corrections/correction_status.h"

#include "core/printable.h"
#include "core/string_table.h"

namespace tarvex {
namespace {

constexpr int kFirstText = 3320;
constexpr int kSilentWithoutPosition = 3331;

std::string Seconds(std::int64_t milliseconds) {
  return std::to_string((milliseconds + 999) / 1000);
}

std::string Names(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + PrintableLine(name);
  return text;
}

}  // namespace

std::string CasterFailureSentence(const std::string& caster, PortError cause,
                                  const std::string& detail) {
  constexpr int kNotReached = 3329;
  if (cause == PortError::CasterNotOpened && !detail.empty()) {
    return Strings().Text(kNotReached, {caster, detail});
  }
  // A port's words for a caster that closes, or says nothing.
  constexpr int kClosed = 3332;
  if (cause == PortError::ReadFailed) return Strings().Text(kClosed);
  if (cause == PortError::FewerBytesRead) cause = PortError::FirstReceiveFailed;
  return ErrorSentence({.code = static_cast<int>(cause), .arguments = {detail}});
}

std::string CorrectionSentence(const CorrectionStatus& status) {
  const int text = kFirstText + static_cast<int>(status.state);
  switch (status.state) {
    case CorrectionState::Connecting:
    case CorrectionState::Receiving:
    case CorrectionState::Refused:
      return Strings().Text(text, {status.caster, status.mountpoint});
    case CorrectionState::Silent:
      return Strings().Text(status.ggasSent == 0 ? kSilentWithoutPosition : text,
                            {status.caster, status.mountpoint, Seconds(status.silentMs)});
    case CorrectionState::Waiting:
      return Strings().Text(text,
                            {CasterFailureSentence(status.caster, status.cause, status.causeDetail),
                             Seconds(status.nextTryInMs)});
    case CorrectionState::ReceiverFailed:
      return Strings().Text(text, {Seconds(status.nextTryInMs)});
    case CorrectionState::UnknownMountpoint: {
      constexpr int kWithNames = 3330;
      return Strings().Text(status.mostAlike.empty() ? text : kWithNames,
                            {status.caster, status.mountpoint, Names(status.mostAlike)});
    }
    default:
      return Strings().Text(text);
  }
}

std::string CorrectionVerdict(const CorrectionStatus& status) {
  if (status.flowing) return {};
  constexpr int kNoneCame = 3333;
  constexpr int kEnded = 3334;
  constexpr int kOthers = 3335;
  std::string why = status.cause == PortError::None
                        ? CorrectionSentence(status)
                        : CasterFailureSentence(status.caster, status.cause, status.causeDetail);
  if (!status.mostAlike.empty()) {
    why += " " + Strings().Text(kOthers, {Names(status.mostAlike)});
  }
  return Strings().Text(status.nothingCame() ? kNoneCame : kEnded,
                        {status.caster, status.mountpoint, why});
}

}  // namespace tarvex
