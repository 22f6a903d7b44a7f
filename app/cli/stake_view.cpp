#include "app/cli/stake_view.h"

#include "app/cli/correction_text.h"
#include "app/cli/stake_text.h"
#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr int kPrecisionDecimals = 3;
constexpr int kGridDecimals = 4;

std::string ReceiverText(const PositionSeen& seen) {
  const GnssPositionState& state = seen.state;
  std::string text = "  " + std::string(SolutionText(state.solutionType)) + " " +
                     std::to_string(state.satellites) + " sat";
  if (state.precisionKnown) text += " HRMS " + FixedNumber(state.hrms, kPrecisionDecimals);
  if (seen.epochs > 1) {
    text += "  epoch " + std::to_string(seen.epoch) + " of " + std::to_string(seen.epochs);
  }
  if (seen.paused) text += "  paused";
  if (seen.corrections) text += "  " + CorrectionLine(*seen.corrections, state);
  return text;
}

}  // namespace

void StakeView::On(const SessionEvent& event) {
  if (words_.json) return events_.On(event);
  const auto* seen = std::get_if<PositionSeen>(&event);
  if (seen != nullptr) position_ = *seen;
  if (seen != nullptr && words_.inPlace) return;
  if (std::holds_alternative<PointStored>(event)) return;  // StakeStored says more
  session_.On(event);
}

void StakeView::OnStake(const StakeEvent& event) {
  std::visit([this](const auto& what) { Show(what); }, event);
}

void StakeView::Show(const StakeSeen& seen) {
  if (words_.json) {
    return PrintEvent(program_, "stake",
                      StakeSeenJson(seen, words_.stationJson, words_.elevationFrom));
  }
  if (words_.inPlace) return Draw(seen);
  program_.console.Print(StakeSeenText(seen) + "\n");
}

void StakeView::Finish() {
  if (drawn_) program_.console.Print(StakeSeenText(*drawn_) + "\n");
  drawn_.reset();
}

void StakeView::Draw(const StakeSeen& seen) {
  drawn_ = seen;
  program_.console.ShowProgress(StakeSeenShort(seen) + (position_ ? ReceiverText(*position_) : ""));
}

void StakeView::Show(const StakeStored& stored) {
  drawn_.reset();  // it is what was stored
  if (words_.json) return PrintEvent(program_, "staked", StakeStoredJson(stored));
  const std::string told = "Stored point " + stored.point.id.str() + " for " +
                           stored.record.design + ": " + StakeDifferenceText(stored.record) + ".\n";
  program_.console.Print(told);
}

void StakeView::Show(const StakeDoubted& doubted) {
  if (words_.json) {
    return PrintEvent(program_, "doubted",
                      {{"distance", doubted.distance}, {"text", StakeDoubtText(doubted)}});
  }
  program_.console.PrintError(StakeDoubtText(doubted) + "\n");
}

void StakeView::Show(const TargetTaken& target) {
  if (words_.json) {
    return PrintEvent(program_, "target",
                      {{"name", target.name}, {"open", target.open}, {"of", target.size}});
  }
  if (target.size == 1) return;
  std::string line = "Now " + target.name;
  if (target.place) {
    line += ": N " + FixedNumber(target.place->northing, kGridDecimals) + "  E " +
            FixedNumber(target.place->easting, kGridDecimals);
    line += target.place->elevation ? "  EL " + FixedNumber(*target.place->elevation, kGridDecimals)
                                    : "  (no elevation)";
  }
  program_.console.PrintError(line + "  (" + std::to_string(target.open) + " of " +
                              std::to_string(target.size) + " open)\n");
}

void StakeView::Show(const TargetsDone& done) {
  if (words_.json) {
    return PrintEvent(program_, "targets_done", {{"staked", done.staked}, {"of", done.size}});
  }
  if (done.size == 1) return;
  program_.console.PrintError("Nothing is left to be staked: " + std::to_string(done.staked) +
                              " of " + std::to_string(done.size) + " are.\n");
}

void StakeView::Show(const NoSuchTarget& none) {
  if (words_.json) return PrintEvent(program_, "no_such_target", {{"name", none.name}});
  program_.console.PrintError(none.name.empty()
                                  ? "No other target is open.\n"
                                  : "\"" + none.name + "\" is not among what is to be staked.\n");
}

void StakeView::Show(const FixChanged& fix) {
  const std::string solution(SolutionText(fix.solution));
  if (words_.json) return PrintEvent(program_, "fix", {{"solution", solution}});
  program_.console.PrintError(fix.solution == SolutionType::Fixed
                                  ? "The position is FIXED again.\n"
                                  : "NO FIX: the position is " + solution +
                                        "; nothing counts as on the stake until it is FIXED.\n");
}

}  // namespace tarvex
