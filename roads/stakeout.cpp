#include "roads/stakeout.h"
#include "roads/catch_point.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/text/number_text.h"

namespace tarvex {
namespace {

constexpr double kHysteresis = 1.5;
constexpr double kSameStation = 1e-4;
constexpr double kLongestStep = 5.0;  // widths of the section

}  // namespace

StakeDeltas DeltasTo(const GridPoint& current, const GridPoint& target, double referenceAzimuth) {
  StakeDeltas deltas;
  deltas.goNorth = target.northing - current.northing;
  deltas.goEast = target.easting - current.easting;
  const double cosine = std::cos(referenceAzimuth);
  const double sine = std::sin(referenceAzimuth);
  deltas.forward = deltas.goNorth * cosine + deltas.goEast * sine;
  deltas.right = deltas.goEast * cosine - deltas.goNorth * sine;
  deltas.distance = std::hypot(deltas.goNorth, deltas.goEast);
  deltas.azimuth = std::atan2(deltas.goEast, deltas.goNorth);
  if (deltas.azimuth < 0.0) deltas.azimuth += 2.0 * std::numbers::pi;
  deltas.cut = current.elevation - target.elevation;
  return deltas;
}

namespace {

bool ShowsZero(const std::string& digits) {
  return digits.find_first_not_of("0.") == std::string::npos;
}

}  // namespace

std::string CutFillText(double cut, int decimals) {
  const std::string digits = FixedNumber(std::fabs(cut), decimals);
  return ShowsZero(digits) ? digits : (cut > 0.0 ? "C " : "F ") + digits;
}

std::string OffsetText(double offset, int decimals) {
  const std::string digits = FixedNumber(std::fabs(offset), decimals);
  return ShowsZero(digits) ? digits : digits + (offset > 0.0 ? " R" : " L");
}

bool ToleranceGate::Update(double distance, std::optional<double> vertical, bool goodPosition) {
  const double factor = inside_ ? kHysteresis : 1.0;
  inside_ = goodPosition && distance <= tolerance_.horizontal * factor &&
            std::fabs(vertical.value_or(0.0)) <= tolerance_.vertical * factor;
  return inside_;
}

std::optional<RoadStake> StakeRoadPoint(const Alignment& alignment, const RoadTarget& target,
                                        const GridPoint& current,
                                        std::optional<double> stationBefore) {
  const auto design = alignment.PointAt(target.station, target.offset);
  const PlanPoint here{current.northing, current.easting};
  const auto found =
      stationBefore ? alignment.Follow(here, *stationBefore) : alignment.Closest(here);
  if (!design || !found) return std::nullopt;
  RoadStake stake;
  stake.target = {design->at.northing, design->at.easting,
                  target.elevation.value_or(current.elevation)};
  stake.deltas = DeltasTo(current, stake.target, design->azimuth);
  stake.current = *found;
  stake.stationToGo = target.station - found->station;
  stake.offsetToGo = target.offset - found->offset;
  if (target.elevation) stake.cut = stake.deltas.cut;
  stake.sound = design->sound;
  return stake;
}

namespace {

// Whole multiples of the interval among the displayed stations of one region.
void AppendRoundStations(const StationEquations& equations, double interval, double from, double to,
                         std::vector<double>& stations) {
  double low = from;
  const std::size_t regions = equations.equations().size() + 1;
  for (std::size_t region = 0; region < regions && low <= to; ++region) {
    const double high = region + 1 < regions ? std::min(to, equations.At(region)) : to;
    const double shift = equations.Displayed(low).station - low;
    const double first = std::ceil((low + shift - kSameStation) / interval);
    const double last = std::floor((high + shift + kSameStation) / interval);
    const double count = last - first;
    if (!(count <= static_cast<double>(kMostStakeStations))) return;
    for (double k = 0.0; k <= count; k += 1.0) stations.push_back((first + k) * interval - shift);
    low = std::max(low, high);
  }
}

}  // namespace

std::vector<double> StakeStations(const RoadGeometry& road, const Profile* profile, double interval,
                                  double from, double to) {
  std::vector<double> stations;
  const auto most = static_cast<double>(kMostStakeStations);
  if (!(interval > 0.0) || !(from <= to) || (to - from) / interval > most) return stations;
  const auto add = [&](double station) {
    if (station >= from - kSameStation && station <= to + kSameStation) stations.push_back(station);
  };
  add(from);
  add(to);
  AppendRoundStations(road.equations, interval, from, to, stations);
  for (const AlignmentElement& element : road.alignment.elements()) {
    add(element.stationStart);
    add(element.stationEnd);
  }
  for (std::size_t i = 0; i < road.equations.equations().size(); ++i) add(road.equations.At(i));
  if (profile != nullptr) {
    for (std::size_t i = 0; i < profile->points().size(); ++i) {
      const Profile::CurveSpan span = profile->SpanOf(i);
      for (const double station : {span.from, profile->points()[i].station, span.to}) add(station);
    }
  }
  std::sort(stations.begin(), stations.end());
  const auto same = [](double a, double b) { return std::fabs(a - b) < kSameStation; };
  stations.erase(std::unique(stations.begin(), stations.end(), same), stations.end());
  return stations;
}

namespace {

struct SlopeStart {
  double offset = 0.0;
  double elevation = 0.0;
};

SlopeStart Behind(const SectionPoint& hinge, const std::vector<SurfaceSegment>& segments) {
  SlopeStart start{hinge.offset, hinge.elevation};
  for (const SurfaceSegment& segment : segments) {
    start.offset += segment.width;
    start.elevation += segment.Rise();
  }
  return start;
}

// The slope to follow from one place on, out to the ground.
struct SlopeLine {
  SlopeStart from;
  double ratio = 0.0;
  int row = 0;  // from 1
};

// One slope over the whole height: the row for the height of the ground above or below the start.
std::optional<SlopeLine> OneSlope(const std::vector<SlopeRow>& rows, const SlopeStart& start,
                                  double height) {
  std::optional<SlopeLine> line;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (!(rows[i].ratio > 0.0)) continue;
    line = {start, rows[i].ratio, static_cast<int>(i) + 1};
    if (height <= rows[i].height) break;
  }
  return line;
}

// A slope for each band of heights: the one in whose band the offset lies.
std::optional<SlopeLine> SteppedSlope(const std::vector<SlopeRow>& rows, const SlopeStart& start,
                                      double sign, double offset) {
  std::optional<SlopeLine> line;
  SlopeStart at = start;
  double height = 0.0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (!(rows[i].ratio > 0.0)) continue;
    line = {at, rows[i].ratio, static_cast<int>(i) + 1};
    const double rise = std::max(0.0, rows[i].height - height);
    at = {at.offset + rise * rows[i].ratio, at.elevation + sign * rise};
    height += rise;
    if (offset <= at.offset) break;
  }
  return line;
}

}  // namespace

std::optional<SlopeStep> NextSlopeStep(const RoadTemplate& section, const DesignSection& design,
                                       Side side, const SlopeShot& shot,
                                       const std::optional<SlopeShot>& before, double tolerance) {
  const SectionPoint hinge = design.Outward(side).back();
  const bool cut = shot.ground > hinge.elevation;
  const SlopeStart start = Behind(hinge, cut ? section.ditch : section.berm);
  const auto& rows = cut ? section.CutOf(side).slopes : section.FillOf(side).slopes;
  const double sign = cut ? 1.0 : -1.0;
  const int series = cut ? section.cutSettings.series : section.fillSettings.series;
  const auto line = series == 1 ? SteppedSlope(rows, start, sign, shot.offset)
                                : OneSlope(rows, start, std::fabs(shot.ground - start.elevation));
  if (!line) return std::nullopt;
  SlopeStep step;
  step.kind = cut ? EarthworkKind::Cut : EarthworkKind::Fill;
  step.row = line->row;
  step.ratio = line->ratio;
  const double slope = sign / line->ratio;
  step.design = line->from.elevation + slope * (shot.offset - line->from.offset);
  step.difference = shot.ground - step.design;
  step.caught = std::fabs(step.difference) <= tolerance;
  double groundSlope = 0.0;
  if (before && before->offset != shot.offset) {
    groundSlope = (shot.ground - before->ground) / (shot.offset - before->offset);
  }
  // Ground as steep as the slope, or steeper, tells nothing about where they meet.
  const bool meets = cut ? groundSlope < slope : groundSlope > slope;
  const double longest = kLongestStep * std::max(hinge.offset, 1.0);
  step.goOut =
      std::clamp(step.difference / (meets ? slope - groundSlope : slope), -longest, longest);
  return step;
}

}  // namespace tarvex
