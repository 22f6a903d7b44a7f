#include "coordsys/projections/projection_types.h"

#include <cstddef>

namespace tarvex {
namespace {

constexpr std::string_view kNames[kProjectionTypes] = {
    "Lambert_Conformal_Conic_2SP",
    "Transverse_Mercator",
    "Oblique_Stereographic",
    "Lambert_Conformal_Conic_1SP",
    "Oblique_Mercator_83",
    "Stereographic",
    "Transverse_Mercator_OSTN02",
    "Oblique_Stereographic_RD2000",
    "Oblique_Mercator_27",
    "Transverse_Mercator_27",
    "Lambert_Conformal_Conic_27",
    "Transverse_Mercator_Alaska_27",
    "Transverse_Mercator_34",
    "Cassini_Soldner",
    "Oblique_Mercator",
    "Oblique_Mercator_EOV",
    "Oblique_Stereographic_RD2004",
};

}  // namespace

std::optional<std::string_view> ProjectionName(int code) {
  if (code < 0 || code >= kProjectionTypes) return std::nullopt;
  return kNames[static_cast<std::size_t>(code)];
}

std::optional<ProjectionType> ProjectionCode(std::string_view name) {
  if (name == "Oblique_Stereographic (Double)" || name == "Double_Stereographic") {
    return ProjectionType::ObliqueStereographic;
  }
  for (int code = 0; code < kProjectionTypes; ++code) {
    if (name == kNames[static_cast<std::size_t>(code)]) return static_cast<ProjectionType>(code);
  }
  return std::nullopt;
}

}  // namespace tarvex
