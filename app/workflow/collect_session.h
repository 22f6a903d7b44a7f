// Collecting points from a receiver: read a position, bring it into the job's grid, store the
// point, journal the observation, note its quality.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "app/cli/program.h"
#include "app/workflow/collected_point.h"
#include "app/workflow/correction_link.h"
#include "app/workflow/receiver_tap.h"
#include "app/workflow/recorded_clock.h"
#include "coordsys/calculator.h"
#include "core/point_store.h"
#include "gnss/gnss_connection.h"
#include "gnss/port_address.h"
#include "gnss/position_reader.h"
#include "gnss/quality/quality_gate.h"
#include "gnss/receiver_make.h"

namespace tarvex {

struct CollectPlan {
  PortAddress receiver;
  int receiver_type = kMakeAnyNmea;
  ReceiverSettings receiver_settings;
  long long count = 1;  ///< points to store; 0: until the receiver ends or the person stops
  std::string description;
  double antenna_height = 0.0;  ///< above the point, job's unit
  std::int64_t patience_ms =
      60000;                   ///< without a new position the session ends; recordings never wait
  GateLimits gate;             ///< what a position must keep to be stored
  bool override_gate = false;  ///< store it all the same, and journal that
  std::size_t average = 1;     ///< distinct epochs that make one point
  std::optional<CorrectionPlan> corrections;
  RecordedClock* recorded = nullptr;  ///< follows the epochs of a recording; not owned
  std::string stream_log;             ///< a new file for what the receiver sends; empty: none
};

class CollectSession final : private StopRequest {
 public:
  CollectSession(Program& program, Job& job, const CTrgCalculator& calculator,
                 const CollectPlan& plan);

  /// Opens the receiver, stores the points and tells what happens. The job's current point id is
  /// the first one used.
  ExitCode Run();

 private:
  bool StopRequested() override { return InterruptRequested(); }

  bool OpenReceiver();
  ExitCode ReadUntilDone();
  ExitCode Ending() const;
  /// False when the session has to end.
  bool TakeReading(GnssReadResult result);
  /// Whether the position may be stored; says so when not.
  bool PassesGate();
  /// Takes the epoch; true when the point is complete.
  bool PointComplete();
  bool StorePosition();
  StorePointResult StoreInFile(const GridPoint& at);
  std::vector<std::string> Records() const;
  bool Journal();
  bool WriteQualityNote();
  void TellBadChecksums() const;
  void TellStored();
  /// Says a sentence unless it was the last one said.
  void TellOnce(const std::string& sentence);
  /// Says a sentence once a session.
  void Warn(const std::string& sentence);
  void TellCorrections();
  void ShowState();
  bool OutOfPatience() const;

  Program& program_;
  Job& job_;
  const CTrgCalculator& calculator_;
  CollectPlan plan_;
  std::unique_ptr<Port> port_;
  GnssConnection connection_;
  GnssPositionState state_;
  CollectedPoint point_;
  PositionAverage average_;
  CalculationReport steps_;
  ReceiverTap tap_;
  std::unique_ptr<CorrectionLink> link_;
  long long stored_ = 0;
  std::int64_t last_new_position_ms_ = 0;
  std::string told_;
  CorrectionState told_corrections_ = CorrectionState::Idle;
  std::set<std::string> warned_;
  bool failed_ = false;
};

}  // namespace tarvex
