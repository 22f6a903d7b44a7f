// The live view of a receiver: a screen of its own in a terminal, whatever its size; one line a
// position elsewhere.
#pragma once

#include <string>
#include <utility>

#include "app/cli/program.h"
#include "app/workflow/correction_link.h"
#include "app/workflow/job_place.h"
#include "app/workflow/receiver_tap.h"
#include "gnss/receivers/position_reader.h"

namespace tarvex {

class WatchView {
 public:
  explicit WatchView(Console& console);
  WatchView(const WatchView&) = delete;
  WatchView& operator=(const WatchView&) = delete;
  ~WatchView();

  /// `trouble` is what keeps a new position from coming; empty when one came.
  void Show(const std::string& trouble, const GnssPositionState& state, const ReceiverTap& tap,
            const CorrectionLink* link, Clock& clock);
  /// What a job makes of the positions from now on, in a line; empty: there is no job.
  void setPlace(std::string line) { place_ = std::move(line); }
  /// Gives the terminal back, with what was shown last.
  void End();

 private:
  void ShowLine(const std::string& trouble, const GnssPositionState& state,
                const CorrectionLink* link);
  std::string Screen(const std::string& trouble, const GnssPositionState& state,
                     const ReceiverTap& tap, const CorrectionLink* link, Clock& clock) const;

  Console& console_;
  bool drawn_ = false;
  bool open_ = false;
  std::string lastScreen_;
  std::string told_;
  std::string place_;
};

/// "N 5184659.913 E 520400.693 EL 1099.398; to A1: 12.346 at 45.0 (NE), N +8.730 E +8.730 EL
/// -0.120".
std::string PlaceLine(const JobPlace& place);

/// "46.815172514 9.267419103 1101.400 FIXED 12 satellites HRMS 0.012 VRMS 0.020 10:15:23".
std::string PositionLine(const GnssPositionState& state);

}  // namespace tarvex
