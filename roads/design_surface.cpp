#include "roads/design_surface.h"

#include <cmath>

#include "core/text/string_table.h"
#include "roads/road_texts.h"

namespace tarvex {

std::string ElevationSourceText(ElevationSource source) {
  switch (source) {
    case ElevationSource::Centerline:
      return Strings().Text(kTextElevationCenterline);
    case ElevationSource::Surface:
      return Strings().Text(kTextElevationTemplate);
    case ElevationSource::Level:
      return Strings().Text(kTextElevationLevel);
    case ElevationSource::Entered:
      return Strings().Text(kTextElevationEntered);
    case ElevationSource::OutsideProfile:
      return Strings().Text(kTextOutsideProfile);
    case ElevationSource::NoTemplate:
      return Strings().Text(kTextOffsetWithoutTemplate);
    case ElevationSource::OutsideSurface:
      return Strings().Text(kTextOutsideSurface);
    case ElevationSource::NoGrade:
      break;
  }
  return Strings().Text(kTextNoFinishedGrade);
}

std::optional<double> DesignSurface::GradeAt(double station) const {
  if (entered) return entered;
  const auto at = profile ? profile->At(station) : std::nullopt;
  return at ? std::optional(at->elevation) : std::nullopt;
}

std::optional<DesignSection> DesignSurface::SectionAt(double station) const {
  const auto grade = GradeAt(station);
  if (!section || !grade) return std::nullopt;
  return BuildSection(*section, *grade, superelevation);
}

DesignElevation DesignSurface::At(double station, double offset) const {
  using Source = ElevationSource;
  const auto grade = GradeAt(station);
  if (!grade) return {{}, profile ? Source::OutsideProfile : Source::NoGrade, {}};
  if (section) {
    const auto surface = SurfaceAt(*SectionAt(station), offset);
    if (!surface) return {{}, Source::OutsideSurface, {}};
    return {surface->elevation, Source::Surface, surface->step};
  }
  if (entered) return {grade, Source::Entered, {}};
  if (std::fabs(offset) <= kOnCenterline) return {grade, Source::Centerline, {}};
  if (level) return {grade, Source::Level, {}};
  return {{}, Source::NoTemplate, {}};
}

}  // namespace tarvex
