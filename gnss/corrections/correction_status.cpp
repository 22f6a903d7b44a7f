#include "gnss/corrections/correction_status.h"

#include "core/text/printable.h"
#include "core/text/string_table.h"
#include "gnss/gnss_texts.h"

namespace tarvex {
namespace {

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
  if (cause == PortError::CasterNotOpened && !detail.empty()) {
    return Strings().Text(kTextCasterNotReached, {caster, detail});
  }
  // A port's words for a caster that closes, or says nothing.
  if (cause == PortError::ReadFailed) return Strings().Text(kTextCasterClosed);
  if (cause == PortError::FewerBytesRead) cause = PortError::FirstReceiveFailed;
  return ErrorSentence({.code = static_cast<int>(cause), .arguments = {detail}});
}

std::string CorrectionSentence(const CorrectionStatus& status) {
  static_assert(kTextFirstCorrectionState + static_cast<int>(CorrectionState::Stopped) ==
                kTextLastCorrectionState);
  const int text = kTextFirstCorrectionState + static_cast<int>(status.state);
  switch (status.state) {
    case CorrectionState::Connecting:
    case CorrectionState::Receiving:
    case CorrectionState::Refused:
      return Strings().Text(text, {status.caster, status.mountpoint});
    case CorrectionState::Silent:
      return Strings().Text(status.ggasSent == 0 ? kTextSilentWithoutPosition : text,
                            {status.caster, status.mountpoint, Seconds(status.silentMs)});
    case CorrectionState::Waiting:
      return Strings().Text(text,
                            {CasterFailureSentence(status.caster, status.cause, status.causeDetail),
                             Seconds(status.nextTryInMs)});
    case CorrectionState::ReceiverFailed:
      return Strings().Text(text, {Seconds(status.nextTryInMs)});
    case CorrectionState::UnknownMountpoint: {
      return Strings().Text(status.mostAlike.empty() ? text : kTextUnknownMountpointOfThese,
                            {status.caster, status.mountpoint, Names(status.mostAlike)});
    }
    default:
      return Strings().Text(text);
  }
}

std::string CorrectionVerdict(const CorrectionStatus& status) {
  if (status.flowing) return {};
  std::string why = status.cause == PortError::None
                        ? CorrectionSentence(status)
                        : CasterFailureSentence(status.caster, status.cause, status.causeDetail);
  if (!status.mostAlike.empty()) {
    why += " " + Strings().Text(kTextItHas, {Names(status.mostAlike)});
  }
  return Strings().Text(status.nothingCame() ? kTextNoCorrectionsCame : kTextCorrectionsBrokeOff,
                        {status.caster, status.mountpoint, why});
}

}  // namespace tarvex
