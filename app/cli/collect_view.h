// A collecting session on the terminal: each stored point is a line of the output, everything else
// goes to the error output and the line at the bottom.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "app/cli/program.h"
#include "app/cli/refusal_lines.h"
#include "app/workflow/session_events.h"

namespace tarvex {

class CollectView final : public SessionListener {
 public:
  enum class Stored {
    WithPosition,  ///< a line of the output for each point
    InAWord,       ///< beside lines that show the position already
    OnErrors       ///< the same beside JSON
  };

  explicit CollectView(Program& program, Stored how = Stored::WithPosition)
      : program_(program), how_(how) {}

  /// Commands are single keys, not lines.
  void TakesKeys() { takesKeys_ = true; }

  void On(const SessionEvent& event) override;

 private:
  void Show(const PositionSeen& seen);
  void Show(const PointStored& stored);
  void Show(const PointTakenBack& back);
  void Show(const CommandAnswered& answer);
  void Show(const LimitRefuses& limit);
  void Show(const NoPosition& none);
  void Show(const EpochRepeated&);
  void Show(const SentencesDamaged& damaged);
  void Show(const PointExists& exists);
  void Show(const ReceiverLost& lost);
  void Show(const ReceiverBack&);
  void Show(const CorrectionsChanged& changed);
  void Show(const SessionWarning& warning) { program_.Warn(warning.sentence); }
  void Show(const SessionProblem& problem) { (void)program_.Fail(problem.sentence); }
  /// Says a sentence unless it was the last one said.
  void TellOnce(const std::string& sentence);

  Program& program_;
  Stored how_;
  std::string told_;
  bool takesKeys_ = false;
  bool repetitionTold_ = false;
  std::optional<std::int64_t> drawnMs_;  ///< the line at the bottom
  RefusalLines refusals_;
};

}  // namespace tarvex
