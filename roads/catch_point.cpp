#include "roads/catch_point.h"

#include <algorithm>
#include <cmath>

namespace tarvex {
namespace {

constexpr double kOnGrade = 0.001;
// No slope of a road runs farther: lines that meet behind it are parallel but for rounding.
constexpr double kFarthestCatch = 10000.0;

}  // namespace

GroundLine GroundLine::Plane(double elevationAtCenterline, double slope) {
  GroundLine ground;
  ground.elevation_ = elevationAtCenterline;
  ground.slope_ = slope;
  return ground;
}

std::optional<GroundLine> GroundLine::Polyline(std::vector<Vertex> vertices) {
  if (vertices.size() < 2) return std::nullopt;
  for (std::size_t i = 1; i < vertices.size(); ++i) {
    if (!(vertices[i].offset >= vertices[i - 1].offset)) return std::nullopt;
  }
  GroundLine ground;
  ground.plane_ = false;
  ground.vertices_ = std::move(vertices);
  return ground;
}

std::optional<double> GroundLine::Reach() const {
  if (plane_) return std::nullopt;
  return vertices_.back().offset;
}

std::optional<double> GroundLine::At(double offset) const {
  if (plane_) return elevation_ + slope_ * offset;
  for (std::size_t i = 1; i < vertices_.size(); ++i) {
    const Vertex& a = vertices_[i - 1];
    const Vertex& b = vertices_[i];
    if (offset < a.offset || offset > b.offset) continue;
    if (a.offset == b.offset) return a.elevation;
    return a.elevation + (b.elevation - a.elevation) * (offset - a.offset) / (b.offset - a.offset);
  }
  return std::nullopt;
}

namespace {

// Where a line meets one straight leg of the ground; both are known at `from`.
std::optional<double> MeetingOnLeg(double gap, double slopeDifference, double from, double to) {
  if (gap == 0.0) return from;
  if (slopeDifference == 0.0) return std::nullopt;
  const double at = from + gap / slopeDifference;
  return at >= from && at <= to ? std::optional(at) : std::nullopt;
}

}  // namespace

std::optional<GroundLine::Vertex> GroundLine::FirstMeeting(double from, double z, double slope,
                                                           double to) const {
  const auto meeting = [&](double legFrom, double ground, double groundSlope, double legTo) {
    const double line = z + slope * (legFrom - from);
    return MeetingOnLeg(ground - line, slope - groundSlope, legFrom, legTo);
  };
  if (plane_) {
    const auto at = meeting(from, elevation_ + slope_ * from, slope_, to);
    if (!at) return std::nullopt;
    return Vertex{*at, z + slope * (*at - from)};
  }
  for (std::size_t i = 1; i < vertices_.size(); ++i) {
    const Vertex& a = vertices_[i - 1];
    const Vertex& b = vertices_[i];
    if (b.offset < from || a.offset > to || a.offset == b.offset) continue;
    const double groundSlope = (b.elevation - a.elevation) / (b.offset - a.offset);
    const double legFrom = std::max(a.offset, from);
    const double ground = a.elevation + groundSlope * (legFrom - a.offset);
    const auto at = meeting(legFrom, ground, groundSlope, std::min(b.offset, to));
    if (at) return Vertex{*at, z + slope * (*at - from)};
  }
  return std::nullopt;
}

namespace {

class CatchFinder {
 public:
  CatchFinder(const RoadTemplate& section, Side side, const GroundLine& ground)
      : section_(section), side_(side), ground_(ground) {}

  CatchPoint Find(const SectionPoint& hinge) {
    caught_.hingeOffset = hinge.offset;
    caught_.hingeElevation = hinge.elevation;
    const auto ground = ground_.At(hinge.offset);
    if (!ground) return End(CatchResult::NoGround);
    if (std::fabs(*ground - hinge.elevation) <= kOnGrade) {
      caught_.offset = hinge.offset;
      caught_.elevation = hinge.elevation;
      return End(CatchResult::OnGrade);
    }
    caught_.kind = *ground > hinge.elevation ? EarthworkKind::Cut : EarthworkKind::Fill;
    StartSlope();
    if (caught_.kind == EarthworkKind::Cut && Daylights()) {
      caught_.kind = EarthworkKind::Fill;
      caught_.ditchDaylights = true;
      StartSlope();
    }
    return End(RunSlope());
  }

 private:
  // A row of the table with its number there, from 1: rows without a ratio are passed over.
  struct NumberedRow : SlopeRow {
    int number = 0;
  };

  CatchPoint End(CatchResult result) {
    caught_.result = result;
    const RightOfWay& limit = section_.rightOfWay;
    const double width = side_ == Side::Left ? limit.left : limit.right;
    caught_.beyondRightOfWay =
        result == CatchResult::Caught && width > 0.0 && caught_.offset > width;
    return caught_;
  }

  // The slope starts behind the ditch in cut, behind the berm in fill.
  void StartSlope() {
    caught_.between.clear();
    SectionPoint at{caught_.hingeOffset, caught_.hingeElevation, {}};
    const bool cut = caught_.kind == EarthworkKind::Cut;
    for (const SurfaceSegment& segment : cut ? section_.ditch : section_.berm) {
      at.offset += segment.width;
      at.elevation += segment.Rise();
      at.description = segment.description;
      caught_.between.push_back(at);
    }
    caught_.slopeOffset = at.offset;
    caught_.slopeElevation = at.elevation;
  }

  bool Daylights() const {
    const auto ground = ground_.At(caught_.slopeOffset);
    return ground && *ground < caught_.slopeElevation;
  }

  CatchResult RunSlope() {
    const bool cut = caught_.kind == EarthworkKind::Cut;
    const auto& table = cut ? section_.CutOf(side_).slopes : section_.FillOf(side_).slopes;
    std::vector<NumberedRow> rows;
    for (std::size_t i = 0; i < table.size(); ++i) {
      if (table[i].ratio > 0.0) rows.push_back({table[i], static_cast<int>(i) + 1});
    }
    if (rows.empty()) return CatchResult::NoSlopes;
    const int series = cut ? section_.cutSettings.series : section_.fillSettings.series;
    const bool caught = series == 1 ? RunSteps(rows, cut) : RunOneSlope(rows, cut);
    if (caught) return CatchResult::Caught;
    return ground_.Reach() ? CatchResult::GroundEnds : CatchResult::NoCatch;
  }

  void Take(const NumberedRow& row, const GroundLine::Vertex& at) {
    caught_.ratio = row.ratio;
    caught_.row = row.number;
    caught_.offset = at.offset;
    caught_.elevation = at.elevation;
    caught_.height = std::fabs(at.elevation - caught_.slopeElevation);
  }

  double Farthest() const { return caught_.slopeOffset + kFarthestCatch; }

  // One slope over the whole height: the first row that meets the ground within its limit.
  bool RunOneSlope(const std::vector<NumberedRow>& rows, bool cut) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const double slope = (cut ? 1.0 : -1.0) / rows[i].ratio;
      const auto at =
          ground_.FirstMeeting(caught_.slopeOffset, caught_.slopeElevation, slope, Farthest());
      if (!at) continue;
      const double height = std::fabs(at->elevation - caught_.slopeElevation);
      if (height > rows[i].height && i + 1 < rows.size()) continue;
      Take(rows[i], *at);
      return true;
    }
    return false;
  }

  // Each row's slope through its own band of heights; the last one goes on.
  bool RunSteps(const std::vector<NumberedRow>& rows, bool cut) {
    const double sign = cut ? 1.0 : -1.0;
    double offset = caught_.slopeOffset;
    double elevation = caught_.slopeElevation;
    double height = 0.0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const bool last = i + 1 == rows.size();
      const double rise = std::max(0.0, rows[i].height - height);
      const double end = last ? Farthest() : offset + rise * rows[i].ratio;
      const auto at = ground_.FirstMeeting(offset, elevation, sign / rows[i].ratio, end);
      if (at) {
        Take(rows[i], *at);
        return true;
      }
      if (last) break;
      offset = end;
      elevation += sign * rise;
      height += rise;
      caught_.breaks.push_back({offset, elevation, {}});
    }
    return false;
  }

  const RoadTemplate& section_;
  Side side_;
  const GroundLine& ground_;
  CatchPoint caught_;
};

}  // namespace

CatchPoint FindCatchPoint(const RoadTemplate& section, const DesignSection& design, Side side,
                          const GroundLine& ground) {
  return CatchFinder(section, side, ground).Find(design.Outward(side).back());
}

}  // namespace tarvex
