#include "app/workflow/stake_report.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "core/raw_data/raw_fields.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kDate = "--DT";
constexpr std::string_view kTime = "--TM";
constexpr std::string_view kStatus = "STATUS:";

// The solution of a quality comment: "--HRMS:0.010, VRMS:0.016, STATUS:FIXED, SATS:12".
std::string_view SolutionOf(std::string_view line) {
  if (!line.starts_with("--H")) return {};
  const std::size_t at = line.find(kStatus);
  if (at == std::string_view::npos) return {};
  const std::string_view rest = line.substr(at + kStatus.size());
  return rest.substr(0, rest.find(','));
}

class ReportReader {
 public:
  explicit ReportReader(StakeReport& report) : report_(report) {}

  void Take(std::string_view line) {
    ++line_;
    if (const auto id = StoredPointId(line)) {
      staked_ = {};
      staked_.id = PointId(*id);
    } else if (line.starts_with(kDate)) {
      date_ = line.substr(kDate.size());
    } else if (line.starts_with(kTime)) {
      time_ = line.substr(kTime.size());
    } else if (const std::string_view solution = SolutionOf(line); !solution.empty()) {
      staked_.solution = solution;
    }
    TakeStake(line);
  }

 private:
  void TakeStake(std::string_view line) {
    switch (stake_.Take(line)) {
      case StakeLine::None:
      case StakeLine::Part:
        return;
      case StakeLine::Broken:
        report_.broken.push_back({.line = line_, .text = line});
        return;
      case StakeLine::Complete:
        break;
    }
    staked_.stake = stake_.stake();
    staked_.date = date_;
    staked_.time = time_;
    report_.stakes.push_back(staked_);
  }

  StakeReport& report_;
  StakeReader stake_;
  StakedPoint staked_;
  std::string date_;
  std::string time_;
  std::size_t line_ = 0;
};

bool IsAt(const PointHistory& point, const GridPoint& at) {
  const double wanted[] = {at.northing, at.easting, at.elevation};
  for (std::size_t i = 0; i < point.coordinates.size(); ++i) {
    if (!point.hasCoordinates || ParseNumber(point.coordinates[i]) != wanted[i]) return false;
  }
  return true;
}

// Of each point the last stake alone, where it is still the point's place.
void DropThoseOfThePast(StakeReport& report, std::string_view rawFile, bool alphanumeric) {
  const RawHistory history = ReadRawHistory(rawFile, alphanumeric);
  std::unordered_map<PointId, std::size_t, PointIdHash> last;
  for (std::size_t i = 0; i < report.stakes.size(); ++i) {
    last[HistoryKey(report.stakes[i].id.view(), alphanumeric)] = i;
  }
  std::size_t index = 0;
  std::erase_if(report.stakes, [&](const StakedPoint& stake) {
    const PointId key = HistoryKey(stake.id.view(), alphanumeric);
    const auto point = history.points.find(key);
    const bool isLast = last.at(key) == index++;
    return !isLast || point == history.points.end() || !IsAt(point->second, stake.stake.foundAt);
  });
}

void Count(StakeTotal& total, double difference, const std::string& name) {
  const double magnitude = std::fabs(difference);
  if (total.count == 0 || magnitude > total.worst) {
    total.worst = magnitude;
    total.worstOf = name;
  }
  ++total.count;
  total.rms += difference * difference;  // the sum of squares until all are counted
}

void Finish(StakeTotal& total) {
  if (total.count > 0) total.rms = std::sqrt(total.rms / static_cast<double>(total.count));
}

}  // namespace

StakeReport MakeStakeReport(std::string_view rawFile, bool alphanumeric) {
  StakeReport report;
  ReportReader reader(report);
  for (std::string_view rest = rawFile; const auto line = TakeLine(rest);) reader.Take(*line);
  DropThoseOfThePast(report, rawFile, alphanumeric);
  for (const StakedPoint& staked : report.stakes) {
    Count(report.horizontal, staked.stake.distance, staked.stake.design);
    if (staked.stake.designHasElevation) {
      Count(report.vertical, staked.stake.difference.elevation, staked.stake.design);
    }
    report.within += staked.stake.withinTolerance ? 1 : 0;
  }
  Finish(report.horizontal);
  Finish(report.vertical);
  return report;
}

}  // namespace tarvex
