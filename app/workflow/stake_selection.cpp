#include "app/workflow/stake_selection.h"

#include <algorithm>
#include <cmath>

#include "core/points/point_id.h"
#include "core/points/point_key.h"
#include "core/text/field_cursor.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kRange = "..";
constexpr double kSamePlace = 1e-4;  // what the raw file's decimals leave

bool IsStake(const StakeableJob& job, const Point& point) {
  return std::any_of(job.staked.stakes.begin(), job.staked.stakes.end(),
                     [&](const StakedPoint& staked) {
                       return HistoryKey(staked.id.view(), job.alphanumeric) == point.id;
                     });
}

bool SelectRange(const StakeableJob& job, std::string_view word, std::vector<StakeDesign>& designs,
                 std::string& problem) {
  const std::size_t at = word.find(kRange);
  const PointId from = NormalisePointId(WithoutOuterBlanks(word.substr(0, at)));
  const PointId to = NormalisePointId(WithoutOuterBlanks(word.substr(at + kRange.size())));
  const std::size_t before = designs.size();
  for (const Point& point : job.points) {
    if (ComparePointIds(from.view(), point.id.view()) > 0 ||
        ComparePointIds(point.id.view(), to.view()) > 0 || IsStake(job, point)) {
      continue;
    }
    designs.push_back(DesignOf(point));
  }
  if (designs.size() > before) return true;
  problem = "There are no points from " + from.str() + " to " + to.str() + " in the job.";
  return false;
}

bool SelectWord(const StakeableJob& job, std::string_view word, std::vector<StakeDesign>& designs,
                std::string& problem) {
  if (const auto design = FindDesign(job, word)) return designs.push_back(*design), true;
  if (word.find(kRange) != std::string_view::npos) return SelectRange(job, word, designs, problem);
  problem = "There is no point " + OneLine(word) + " in the job.";
  return false;
}

// "id,northing,easting[,elevation[,anything]]".
bool SelectEntered(std::string_view line, std::vector<StakeDesign>& designs, std::string& problem) {
  FieldCursor fields(line);
  StakeDesign design;
  design.name = std::string(WithoutOuterBlanks(fields.Next()));
  const auto northing = ParseNumber(fields.Next());
  const auto easting = ParseNumber(fields.Next());
  const std::string_view last = WithoutOuterBlanks(fields.Next());
  const auto elevation = last.empty() ? std::nullopt : ParseNumber(last);
  if (design.name.empty() || !northing || !easting || (!last.empty() && !elevation)) {
    problem = "give an id of the job, or id,northing,easting[,elevation]";
    return false;
  }
  design.northing = *northing;
  design.easting = *easting;
  design.elevation = elevation;
  designs.push_back(std::move(design));
  return true;
}

}  // namespace

StakeDesign DesignOf(const Point& point) {
  StakeDesign design{.name = point.id.str(),
                     .northing = point.at.northing,
                     .easting = point.at.easting,
                     .elevation = {}};
  if (point.at.elevation != 0.0) design.elevation = point.at.elevation;
  return design;
}

std::optional<StakeDesign> FindDesign(const StakeableJob& job, std::string_view id) {
  const auto key = MakePointKey(id, job.alphanumeric);
  if (!key) return std::nullopt;
  for (const Point& point : job.points) {
    if (point.id == key->id || (job.alphanumeric && point.id == key->typed)) {
      return DesignOf(point);
    }
  }
  return std::nullopt;
}

bool SelectPoints(const StakeableJob& job, std::span<const std::string> words,
                  std::vector<StakeDesign>& designs, std::string& problem) {
  return std::all_of(words.begin(), words.end(), [&](const std::string& word) {
    return SelectWord(job, word, designs, problem);
  });
}

bool SelectFromList(const StakeableJob& job, std::string_view text,
                    std::vector<StakeDesign>& designs, std::string& problem) {
  for (std::size_t number = 1; const auto raw = TakeLine(text); ++number) {
    const std::string_view line = WithoutOuterBlanks(*raw);
    if (line.empty() || line.starts_with('#')) continue;
    const bool entered = line.find(',') != std::string_view::npos;
    if (entered ? SelectEntered(line, designs, problem) : SelectWord(job, line, designs, problem)) {
      continue;
    }
    problem = "Line " + std::to_string(number) + ": " + problem + (entered ? "." : "");
    return false;
  }
  if (designs.empty()) problem = "It holds no points.";
  return !designs.empty();
}

bool WasStaked(const StakeableJob& job, const StakeDesign& design) {
  return std::any_of(job.staked.stakes.begin(), job.staked.stakes.end(),
                     [&](const StakedPoint& staked) {
                       const StakeRecord& stake = staked.stake;
                       return EqualsIgnoringCase(stake.design, design.name) &&
                              std::fabs(stake.designAt.northing - design.northing) <= kSamePlace &&
                              std::fabs(stake.designAt.easting - design.easting) <= kSamePlace;
                     });
}

}  // namespace tarvex
