#include "roads/profile.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarvex {
namespace {

constexpr double kOverlap = 1e-6;
constexpr double kEndTolerance = 1e-6;  // stations of a file that was written with fewer decimals

bool IsUsable(const VerticalPoint& point) {
  return std::isfinite(point.station) && std::isfinite(point.elevation) &&
         std::isfinite(point.radius) && point.lengthIn >= 0.0 && point.lengthOut >= 0.0 &&
         std::isfinite(point.lengthIn + point.lengthOut) && point.radius >= 0.0;
}

}  // namespace

Outcome<Profile, ProfileFault> Profile::Make(std::vector<VerticalPoint> points) {
  if (points.size() < 2) return Failure<ProfileFault>{.code = ProfileFault::TooFew};
  for (std::size_t i = 0; i < points.size(); ++i) {
    const bool end = i == 0 || i + 1 == points.size();
    const bool curved = points[i].curve != VerticalCurveKind::None;
    if (!IsUsable(points[i]) || (end && curved))
      return Failure<ProfileFault>{.code = ProfileFault::BadCurve, .place = i};
    if (i > 0 && !(points[i].station > points[i - 1].station)) {
      return Failure<ProfileFault>{.code = ProfileFault::StationsFall, .place = i};
    }
  }
  Profile profile;
  profile.points_ = std::move(points);
  for (std::size_t i = 1; i < profile.points_.size(); ++i) {
    if (profile.SpanOf(i - 1).to > profile.SpanOf(i).from + kOverlap) {
      return Failure<ProfileFault>{.code = ProfileFault::CurvesOverlap, .place = i};
    }
  }
  return profile;
}

double Profile::GradeAfter(std::size_t point) const {
  const VerticalPoint& a = points_[point];
  const VerticalPoint& b = points_[point + 1];
  return (b.elevation - a.elevation) / (b.station - a.station);
}

Profile::CurveSpan Profile::SpanOf(std::size_t point) const {
  const VerticalPoint& p = points_[point];
  if (p.curve == VerticalCurveKind::Parabola) {
    return {p.station - p.lengthIn, p.station + p.lengthOut};
  }
  if (p.curve == VerticalCurveKind::None) return {p.station, p.station};
  const double in = std::atan(GradeAfter(point - 1));
  const double out = std::atan(GradeAfter(point));
  const double tangent = p.radius * std::tan(0.5 * std::fabs(out - in));
  return {p.station - tangent * std::cos(in), p.station + tangent * std::cos(out)};
}

// Offset at the PVI (g2-g1) L1 L2 / (2 (L1+L2)), falling off with the square on either side.
ProfileElevation Profile::OnParabola(std::size_t point, double station) const {
  const VerticalPoint& p = points_[point];
  const double g1 = GradeAfter(point - 1);
  const double g2 = GradeAfter(point);
  const double sum = p.lengthIn + p.lengthOut;
  const bool before = station <= p.station;
  const double grade = before ? g1 : g2;
  const double own = before ? p.lengthIn : p.lengthOut;
  const double other = before ? p.lengthOut : p.lengthIn;
  const double rate = own > 0.0 ? (g2 - g1) * other / (own * sum) : 0.0;
  const double x = before ? station - (p.station - own) : station - (p.station + own);
  return {p.elevation + grade * (station - p.station) + 0.5 * rate * x * x, grade + rate * x, true};
}

ProfileElevation Profile::OnCircle(std::size_t point, double station) const {
  const VerticalPoint& p = points_[point];
  const double in = std::atan(GradeAfter(point - 1));
  const double bend = GradeAfter(point) >= GradeAfter(point - 1) ? 1.0 : -1.0;
  const double from = SpanOf(point).from;
  const double begin = p.elevation + std::tan(in) * (from - p.station);
  // Sine of the slope angle grows evenly along the station.
  const double sineIn = std::sin(in);
  const double sine = std::clamp(sineIn + bend * (station - from) / p.radius, -1.0, 1.0);
  const double cosine = std::sqrt(1.0 - sine * sine);
  const double rise = (sine * sine - sineIn * sineIn) / (cosine + std::cos(in));
  return {begin + bend * p.radius * rise, sine / cosine, true};
}

std::optional<ProfileElevation> Profile::At(double station) const {
  if (!(station >= startStation() - kEndTolerance && station <= endStation() + kEndTolerance)) {
    return std::nullopt;
  }
  station = std::clamp(station, startStation(), endStation());
  const auto above =
      std::upper_bound(points_.begin(), points_.end(), station,
                       [](double value, const VerticalPoint& p) { return value < p.station; });
  const auto last = static_cast<std::size_t>(above - points_.begin()) - 1;
  for (const std::size_t i : {last, last + 1}) {
    if (i >= points_.size() || points_[i].curve == VerticalCurveKind::None) continue;
    const CurveSpan span = SpanOf(i);
    if (station < span.from || station > span.to || span.from == span.to) continue;
    return points_[i].curve == VerticalCurveKind::Parabola ? OnParabola(i, station)
                                                           : OnCircle(i, station);
  }
  const std::size_t from = std::min(last, points_.size() - 2);
  const double grade = GradeAfter(from);
  return ProfileElevation{points_[from].elevation + grade * (station - points_[from].station),
                          grade, false};
}

}  // namespace tarvex
