#include "coordsys/definition_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "coordsys/system_catalogue.h"

namespace tarvex {
namespace {

using Kind = DefinitionIssueKind;

std::vector<Kind> Kinds(std::string_view text) {
  std::vector<Kind> kinds;
  for (const DefinitionIssue& issue : CheckDefinition(text)) {
    kinds.push_back(issue.kind);
    EXPECT_EQ(IssueText(issue).find("IDS_STRING"), std::string::npos);
  }
  return kinds;
}

constexpr std::string_view kGood =
    R"(PROJCS["x", GEOGCS["g", DATUM["d", SPHEROID["s",6378137,298.25], TOWGS84[0,0,0]],
         PRIMEM["Greenwich",0], UNIT["degree",0.0174532925199433]],
       PROJECTION["Transverse_Mercator"], PARAMETER["Latitude_Of_Origin",0],
       PARAMETER["longitude_of_center",9], PARAMETER["scale_factor",0.9996],
       PARAMETER["false_easting",500000], PARAMETER["false_northing",0],
       UNIT["metre",1], AXIS["Easting",EAST], AXIS["Northing",NORTH], AUTHORITY["EPSG","1"]])";

std::string Changed(std::string_view from, std::string_view to) {
  std::string text(kGood);
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

TEST(DefinitionCheck, NamesWhatTheRecordWouldPassOver) {
  EXPECT_THAT(Kinds(kGood), testing::IsEmpty());
  struct Case {
    std::string_view from;
    std::string_view to;
    Kind kind;
  };
  const Case cases[] = {
      {"UNIT[\"metre\",1]", "UNIT[\"US survey foot\",0.304800609601219]", Kind::LinearUnit},
      {"0.0174532925199433", "0.01570796326794897", Kind::AngularUnit},
      {"PRIMEM[\"Greenwich\",0]", "PRIMEM[\"Paris\",2.33722917]", Kind::PrimeMeridian},
      {"EAST]", "WEST]", Kind::AxisDirection},
      {"PARAMETER[\"scale_factor\",0.9996],", "", Kind::MissingParameter},
      {"AUTHORITY", "PARAMETER[\"t1\",0],AUTHORITY", Kind::UnknownParameter},
      {"0.9996", "0.99.96", Kind::ParameterNotANumber},
      {", TOWGS84[0,0,0]", "", Kind::NoDatumShift},
      {"Transverse_Mercator", "Krovak", Kind::UnknownProjection},
      {"PROJECTION", "PROJECTIONS", Kind::NoProjection},
      {"SPHEROID", "ELLIPSOID", Kind::NoEllipsoid},
      {"6378137", "six", Kind::NoEllipsoid},
      {"PROJCS", "GEOCCS", Kind::NoProjectedSystem},
      {"6378137,298.25]", "6378137,298.25", Kind::NotWellFormed},
      {"\"x\"", "\"x", Kind::NotWellFormed},
  };
  for (const Case& c : cases) {
    EXPECT_THAT(Kinds(Changed(c.from, c.to)), testing::ElementsAre(c.kind)) << c.from;
  }
  EXPECT_THAT(Kinds(""), testing::ElementsAre(Kind::NotWellFormed));
  EXPECT_THAT(Kinds(std::string(3000, '[')),
              testing::ElementsAre(Kind::NotWellFormed, Kind::TooLong));
}

TEST(DefinitionCheck, CutAnywhereIsAnIssueAndNoCrash) {
  for (std::size_t length = 0; length < kGood.size(); ++length) {
    EXPECT_FALSE(CheckDefinition(kGood.substr(0, length)).empty()) << length;
  }
}

TEST(DefinitionCheck, ThePredefinedCatalogueHasNoSeriousIssue) {
  const SystemCatalogue catalogue(SystemFiles(), TARVEX_DATA_FOLDER);
  for (const NamedSystem& system : catalogue.Search("")) {
    for (const DefinitionIssue& issue : CheckDefinition(system.definition)) {
      EXPECT_FALSE(IsSerious(issue.kind)) << system.name << ": " << IssueText(issue);
    }
  }
}

}  // namespace
}  // namespace tarvex
