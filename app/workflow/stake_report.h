// The stakes of a job, read back from its raw file: what was set out, where each stake is, and how
// good the work is as a whole. The same raw file gives the same bytes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "app/workflow/raw_history.h"
#include "core/job/job.h"
#include "core/raw_data/stake_record.h"

namespace tarvex {

struct StakedPoint {
  PointId id;
  StakeRecord stake;
  std::string solution;  ///< "FIXED"; empty for a position that was typed
  std::string date;      ///< as the raw file has it, month, day, year
  std::string time;
};

/// Of one kind of difference.
struct StakeTotal {
  std::size_t count = 0;
  double worst = 0.0;  ///< the greatest magnitude
  std::string worstOf;
  double rms = 0.0;
};

struct StakeReport {
  std::string job;
  DistanceUnit unit = DistanceUnit::Metres;
  std::vector<StakedPoint> stakes;  ///< in the order of the raw file
  std::vector<BrokenRecord> broken;
  StakeTotal horizontal;
  StakeTotal vertical;  ///< of stakes whose design has an elevation
  std::size_t within = 0;
};

/// The stakes that still are what was stored: not one whose point was deleted, taken back or stored
/// over at another place since. `rawFile` outlives the report, which points into it.
StakeReport MakeStakeReport(std::string_view rawFile, bool alphanumeric);

/// Comma-separated values with a heading, quoted and ended as RFC 4180 has it.
std::string StakeReportCsv(const StakeReport& report);
/// A page of its own, without anything from elsewhere.
std::string StakeReportHtml(const StakeReport& report);

}  // namespace tarvex
