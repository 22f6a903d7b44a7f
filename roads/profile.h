// The vertical alignment of a road: points of vertical intersection joined by grades, with
// parabolic or circular curves at them.
//
// Stations are internal ones and elevations in the job's distance unit; grades are ratios, positive
// rising. A parabola of lengths L1, L2 before and after its PVI at grades g1, g2 meets the grades
// tangentially; with L1 != L2 it is two parabolas that share the tangent at the PVI's station.
// There is no elevation before the first or after the last PVI: nothing is extrapolated.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "core/text/outcome.h"

namespace tarvex {

enum class VerticalCurveKind : int { None, Parabola, Circle };

/// A point of vertical intersection with the curve at it.
struct VerticalPoint {
  double station = 0.0;
  double elevation = 0.0;
  VerticalCurveKind curve = VerticalCurveKind::None;
  double lengthIn = 0.0;   ///< parabola: horizontal length before the PVI
  double lengthOut = 0.0;  ///< and after it
  double radius = 0.0;     ///< circle, positive; the grades tell crest from sag

  bool operator==(const VerticalPoint&) const = default;
};

struct ProfileElevation {
  double elevation = 0.0;
  double grade = 0.0;  ///< at a break of grade the one ahead
  bool onCurve = false;
};

/// Why points give no profile; the place is a point, from 0.
enum class ProfileFault {
  TooFew,         ///< fewer than two points
  StationsFall,   ///< the station of the point does not rise
  CurvesOverlap,  ///< the curves at the point and the one before overlap
  BadCurve        ///< a curve at an end, or a length or radius that is no number
};

class Profile {
 public:
  static Outcome<Profile, ProfileFault> Make(std::vector<VerticalPoint> points);

  const std::vector<VerticalPoint>& points() const { return points_; }
  double startStation() const { return points_.front().station; }
  double endStation() const { return points_.back().station; }

  /// Nothing outside the profile.
  std::optional<ProfileElevation> At(double station) const;

  /// Begin and end of the curve at a point; both its station when there is none.
  struct CurveSpan {
    double from = 0.0;
    double to = 0.0;
  };
  CurveSpan SpanOf(std::size_t point) const;

 private:
  double GradeAfter(std::size_t point) const;
  ProfileElevation OnParabola(std::size_t point, double station) const;
  ProfileElevation OnCircle(std::size_t point, double station) const;

  std::vector<VerticalPoint> points_;
};

}  // namespace tarvex
