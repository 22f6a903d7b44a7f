// The seven-parameter similarity transformation between a local datum and WGS84.
//
// The parameters are those of a projection record: translations in metres, rotations in seconds of
// arc in the coordinate-frame sense (the negatives of a definition text's TOWGS84), the scale in
// parts per million. Forward is local to WGS84:
//
//   X' = T + m (X - r x X),   m = 1 + scale * 1e-6          (EPSG methods 1032 and 9607)
//
// and the inverse is that linear form solved exactly: with all three translations and rotations
// negated and the reciprocal of m as arguments,
//
//   X = m' (W - r' x W + r' (r' . W)) / (1 + r' . r'),   W = X' + T'
//
// so that there and back closes to 2e-9 m for any rotation.
#pragma once

#include <optional>
#include <string_view>

#include "coordsys/coordinates.h"
#include "coordsys/projections/projection_record.h"

namespace tarvex {

/// As a record holds them.
struct SevenParameters {
  double dxM = 0.0;
  double dyM = 0.0;
  double dzM = 0.0;
  double rxArcsec = 0.0;
  double ryArcsec = 0.0;
  double rzArcsec = 0.0;
  double scalePpm = 0.0;

  bool operator==(const SevenParameters&) const = default;
};

SevenParameters SevenParametersOf(const ProjectionRecord& record);

/// The numbers of "=dX,dY,dZ" or "=dX,dY,dZ,rX,rY,rZ,ppm" in the signs of a definition's TOWGS84.
/// Nothing for any other count, a text that is no number, or a shift that no datum has (10 km, 10
/// minutes of arc, 1000 ppm).
std::optional<SevenParameters> ParseSevenParameters(std::string_view text);

/// As the closed library takes them: metres, radians and the scale factor itself.
struct SevenParameterArguments {
  double dxM = 0.0;
  double dyM = 0.0;
  double dzM = 0.0;
  double rxRad = 0.0;
  double ryRad = 0.0;
  double rzRad = 0.0;
  double scale = 1.0;

  bool operator==(const SevenParameterArguments&) const = default;
};

/// For "xform_3D_7Param", local to WGS84.
SevenParameterArguments ForwardArguments(const SevenParameters& parameters);
/// For "xform3D_Pt", WGS84 to local: everything negated, and the reciprocal of the scale.
SevenParameterArguments InverseArguments(const SevenParameters& parameters);

/// What "xform_3D_7Param" computes: rotate and scale, then translate.
Geocentric RotateScaleTranslate(const SevenParameterArguments& arguments, const Geocentric& point);
/// What "xform3D_Pt" computes: translate, then rotate back exactly and scale.
Geocentric TranslateUnrotateScale(const SevenParameterArguments& arguments,
                                  const Geocentric& point);

}  // namespace tarvex
