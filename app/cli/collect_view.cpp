#include "app/cli/collect_view.h"

#include <utility>

#include "app/cli/status_line.h"
#include "app/cli/storing_text.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr int kPrecisionDecimals = 3;
constexpr int kGridDecimals = 4;

// The line at the bottom is drawn anew so often at most: a receiver of 10 Hz would make it flicker.
constexpr std::int64_t kRedrawMs = 200;

std::string StateText(const GnssPositionState& state) {
  return std::string(SolutionText(state.solutionType)) + ", " + std::to_string(state.satellites) +
         " satellites, " + PrecisionText(state);
}

}  // namespace

void CollectView::On(const SessionEvent& event) {
  std::visit([this](const auto& what) { Show(what); }, event);
}

void CollectView::Show(const PositionSeen& seen) {
  if (!program_.console.ShowsProgress()) return;
  const std::int64_t now = program_.clock.SteadyMilliseconds();
  if (const auto line = refusals_.Look(now)) program_.console.PrintError(*line + "\n");
  if (drawnMs_ && now - *drawnMs_ < kRedrawMs) return;
  drawnMs_ = now;
  program_.console.ShowProgress(StatusLine(seen));
}

void CollectView::Show(const PointStored& stored) {
  told_.clear();
  drawnMs_.reset();
  if (how_ != Stored::WithPosition) {
    const std::string told = "Stored point " + stored.point.id.str() + ".\n";
    return how_ == Stored::InAWord ? program_.console.Print(told)
                                   : program_.console.PrintError(told);
  }
  std::string line = "Point " + stored.point.id.str() + ": N " +
                     FixedNumber(stored.point.at.northing, kGridDecimals) + "  E " +
                     FixedNumber(stored.point.at.easting, kGridDecimals) + "  EL " +
                     FixedNumber(stored.point.at.elevation, kGridDecimals) + "  (" +
                     StateText(stored.state);
  if (stored.mean) {
    const auto length = [&](double valueM) {
      return FixedNumber(FromMetres(valueM, stored.unit), kPrecisionDecimals);
    };
    line += ", mean of " + std::to_string(stored.mean->epochs) + ": scatter N " +
            length(stored.mean->scatterNorth) + ", E " + length(stored.mean->scatterEast) +
            ", EL " + length(stored.mean->scatterUp) + ", farthest " +
            length(stored.mean->farthest);
  }
  line += ")";
  if (!stored.overridden.empty()) line += " Limit overridden: " + stored.overridden;
  program_.console.Print(line + "\n");
}

void CollectView::Show(const PointTakenBack& back) {
  const std::string id = back.point.id.str();
  drawnMs_.reset();
  program_.console.PrintError(back.restored ? "Point " + id + " is again what it was before.\n"
                                            : "Point " + id + " is taken back.\n");
}

// A script that sends commands is told what was not done.
void CollectView::Show(const CommandAnswered& answer) {
  if (answer.done && !program_.console.ShowsProgress()) return;
  program_.console.PrintError(answer.sentence + "\n");
}

void CollectView::Show(const LimitRefuses& limit) {
  if (program_.console.ShowsProgress()) {
    const auto line = refusals_.Take(limit, program_.clock.SteadyMilliseconds());
    if (line) program_.console.PrintError(*line + "\n");
    return;
  }
  if (limit.refusal) TellOnce("Not stored: " + RefusalSentence(*limit.refusal));
}

void CollectView::Show(const NoPosition& none) {
  TellOnce(none.sentence);
}

// With some receivers each position comes twice: for a person that is said once.
void CollectView::Show(const EpochRepeated&) {
  if (program_.console.ShowsProgress() && std::exchange(repetitionTold_, true)) return;
  TellOnce("The receiver repeats its last position; it is not stored again.");
}

void CollectView::Show(const SentencesDamaged& damaged) {
  program_.Warn(std::to_string(damaged.count) + " sentences of the receiver came damaged within " +
                std::to_string(damaged.inMs / 1000) +
                " s (wrong checksum) and were left out: look at the cable and the baud rate, and "
                "whether another program uses the line.");
}

void CollectView::Show(const PointExists& exists) {
  (void)program_.Fail(ExistsSentence(exists.id));
}

void CollectView::Show(const ReceiverLost& lost) {
  told_.clear();
  program_.console.PrintError("The receiver " + lost.receiver + " is lost; it is tried again in " +
                              std::to_string((lost.nextTryMs + 999) / 1000) + " s.\n");
}

void CollectView::Show(const ReceiverBack&) {
  program_.console.PrintError("The receiver is back.\n");
}

// A change of the corrections is part of the text, so that it is known afterwards as well.
void CollectView::Show(const CorrectionsChanged& changed) {
  const CorrectionState state = changed.status.state;
  const bool waitsForAWord =
      state == CorrectionState::Refused || state == CorrectionState::UnknownMountpoint;
  program_.console.PrintError(CorrectionSentence(changed.status) +
                              (!waitsForAWord || !program_.console.IsTyped() ? "\n"
                               : takesKeys_                                  ? " r asks it again.\n"
                                            : " r and Enter ask it again.\n"));
}

void CollectView::TellOnce(const std::string& sentence) {
  program_.console.ShowProgress(sentence);
  if (sentence == told_) return;
  told_ = sentence;
  program_.console.PrintError(sentence + "\n");
}

}  // namespace tarvex
