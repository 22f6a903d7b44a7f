// Staking on the terminal: each position is a line that says how to go. Where a person looks on the
// line is drawn anew in its place; a pipe or a file gets a line a position, another program the
// events of every session (docs/json.md) and those of staking.
#pragma once

#include <functional>
#include <string>

#include "app/cli/collect_view.h"
#include "app/cli/json_events.h"
#include "app/cli/json_text.h"
#include "app/workflow/stake_events.h"

namespace tarvex {

/// How a command shows what it stakes.
struct StakeWords {
  bool json = false;
  bool inPlace = false;       ///< draw the position's line in its place
  std::string elevationFrom;  ///< of a road: where the design elevation comes from
  /// Of an alignment: the station as JSON has it.
  std::function<Json(double station)> stationJson = {};
};

class StakeView final : public StakeListener {
 public:
  StakeView(Program& program, StakeWords words)
      : program_(program), words_(std::move(words)), session_(program), events_(program) {}

  /// Commands are single keys, not lines.
  void TakesKeys() { session_.TakesKeys(); }

  void On(const SessionEvent& event) override;
  void OnStake(const StakeEvent& event) override;
  /// The session is over: the last position that was drawn stays as a line.
  void Finish();

 private:
  void Show(const StakeSeen& seen);
  void Show(const StakeStored& stored);
  void Show(const StakeDoubted& doubted);
  void Show(const TargetTaken& target);
  void Show(const TargetsDone& done);
  void Show(const NoSuchTarget& none);
  void Show(const FixChanged& fix);
  void Draw(const StakeSeen& seen);

  Program& program_;
  StakeWords words_;
  CollectView session_;
  JsonEvents events_;
  std::optional<StakeSeen> drawn_;        ///< the position in the line at the bottom
  std::optional<PositionSeen> position_;  ///< what the receiver says of the position shown
};

}  // namespace tarvex
