// The numbers of the projection families, which a record stores. What a family is beside its number
// is its row in projection_families.cpp.
#pragma once

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

}  // namespace tarvex
