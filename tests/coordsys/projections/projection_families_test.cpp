#include "coordsys/projections/projection_families.h"

#include <gtest/gtest.h>

namespace tarvex {
namespace {

TEST(ProjectionFamilies, NamesAndCodesAreEachOthersInverse) {
  int code = 0;
  for (const ProjectionFamily& family : ProjectionFamilies()) {
    EXPECT_EQ(&FamilyOf(code), &family);
    EXPECT_EQ(ProjectionName(code), family.name);
    EXPECT_EQ(static_cast<int>(ProjectionCode(family.name).value()), code++);
  }
  EXPECT_FALSE(ProjectionName(-1));
  EXPECT_FALSE(ProjectionName(code));
  EXPECT_EQ(FamilyOf(code).make, nullptr);
}

TEST(ProjectionFamilies, AliasesAreReadAndLetterCaseCounts) {
  EXPECT_EQ(ProjectionCode("Oblique_Stereographic (Double)"), ProjectionType::ObliqueStereographic);
  EXPECT_EQ(ProjectionCode("Double_Stereographic"), ProjectionType::ObliqueStereographic);
  EXPECT_EQ(ProjectionName(2), "Oblique_Stereographic");
  EXPECT_EQ(static_cast<int>(ProjectionCode("Oblique_Stereographic_RD2004").value()), 16);
  EXPECT_FALSE(ProjectionCode("transverse_mercator"));
  EXPECT_FALSE(ProjectionCode("Transverse_Mercator "));
  EXPECT_FALSE(ProjectionCode(""));
}

}  // namespace
}  // namespace tarvex
