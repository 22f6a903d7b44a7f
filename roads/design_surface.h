// The design elevation of a road at any station and offset, and where it comes from.
//
// On the centerline it is the finished grade: the profile's, or an entered one. Beside it, it is
// that of the template's surface over the finished grade, turned by the superelevation when there
// is one. Without a template nothing tells how the road falls across, so an offset has no design
// elevation, unless the user says that the road is level. Never one silently in place of another.
//
// Stations are internal; offsets right positive; everything in the job's distance unit.
#pragma once

#include <optional>
#include <string>

#include "roads/profile.h"
#include "roads/section.h"

namespace tarvex {

enum class ElevationSource : int {
  Centerline,      ///< the finished grade, on the centerline
  Surface,         ///< the template's surface
  Level,           ///< the finished grade, carried level across because the user says so
  Entered,         ///< entered for the place itself
  NoGrade,         ///< none: there is neither a profile nor an entered grade
  OutsideProfile,  ///< none: before the first or after the last point of the profile
  NoTemplate,      ///< none: an offset, and nothing tells how the road falls across
  OutsideSurface   ///< none: beyond the last point of the template's surface
};

/// "template", "outside the profile" and so on, for people and for other programs.
std::string ElevationSourceText(ElevationSource source);

struct DesignElevation {
  std::optional<double> elevation;
  ElevationSource source = ElevationSource::NoGrade;
  /// At a vertical step of the surface: the elevation of its outer side. `elevation` is then that
  /// of the side nearer to the centerline.
  std::optional<double> step;
};

/// This near to the centerline an offset counts as 0 where there is no template: a surface that
/// falls 2 % differs by a tenth of a millimetre there.
inline constexpr double kOnCenterline = 0.005;

struct DesignSurface {
  std::optional<Profile> profile;
  /// In place of the profile: with a template the finished grade, without one the elevation of the
  /// place itself.
  std::optional<double> entered;
  std::optional<RoadTemplate> section;
  std::optional<Superelevation> superelevation;
  bool level = false;  ///< without a template: the centerline's elevation holds at every offset

  /// The finished grade on the centerline.
  std::optional<double> GradeAt(double station) const;
  /// The design section; nothing without a template or a finished grade.
  std::optional<DesignSection> SectionAt(double station) const;
  DesignElevation At(double station, double offset) const;
};

}  // namespace tarvex
