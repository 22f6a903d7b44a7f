// The projection families: the code that a record stores and the name that a definition carries.
#pragma once

#include <optional>
#include <string_view>

namespace tarvex {

enum class ProjectionType : int {
  LambertConformalConic2SP = 0,
  TransverseMercator = 1,
  ObliqueStereographic = 2,
  LambertConformalConic1SP = 3,
  ObliqueMercator83 = 4,
  Stereographic = 5,
  TransverseMercatorOstn02 = 6,
  ObliqueStereographicRd2000 = 7,
  ObliqueMercator27 = 8,
  TransverseMercator27 = 9,
  LambertConformalConic27 = 10,
  TransverseMercatorAlaska27 = 11,
  TransverseMercator34 = 12,
  CassiniSoldner = 13,
  ObliqueMercator = 14,
  ObliqueMercatorEov = 15,
  ObliqueStereographicRd2004 = 16,
};

inline constexpr int kProjectionTypes = 17;

/// The name written into definitions; nothing for a code outside 0 to 16.
std::optional<std::string_view> ProjectionName(int code);

/// The type of a name, letter case kept; "Oblique_Stereographic (Double)" and
/// "Double_Stereographic" are read as Oblique_Stereographic. Nothing for an unknown name.
std::optional<ProjectionType> ProjectionCode(std::string_view name);

}  // namespace tarvex
