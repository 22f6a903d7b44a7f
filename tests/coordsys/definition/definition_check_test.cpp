#include "coordsys/definition/definition_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "coordsys/catalogue/system_catalogue.h"
#include "coordsys/chain/calculator.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

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
      {"TOWGS84[0,0,0]", "TOWGS84[abc,0,0]", Kind::DatumShiftNumbers},
      {"TOWGS84[0,0,0]", "TOWGS84[1,2,3,4]", Kind::DatumShiftNumbers},
      {"AUTHORITY", "PARAMETER[\"FALSE_EASTING\",5],AUTHORITY", Kind::ParameterTwice},
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

TEST(DefinitionCheck, ManyUnknownParametersAreOneSentence) {
  std::string many;
  for (int i = 0; i < 40; ++i) many += "PARAMETER[\"p" + std::to_string(i) + "\",0],";
  const auto issues = CheckDefinition(Changed("AUTHORITY", many + "AUTHORITY"));
  ASSERT_EQ(issues.size(), 1U);
  EXPECT_EQ(issues[0].argument, "p0, p1, p2 and 37 more");
}

// What a pasted text may have that the reader takes for something else.
TEST(DefinitionCheck, RoundBracketsAndCommasInNamesAreMadeReadable) {
  std::string text(kGood);
  for (char& c : text) c = c == '[' ? '(' : c == ']' ? ')' : c;
  for (const std::string& pasted :
       {text, "COMPD_CS[\"a, (b)\"," + std::string(kGood) + "]", Changed("\"d\"", "\"d, e\"")}) {
    EXPECT_THAT(Kinds(pasted), testing::IsEmpty());
    CTrgCalculator calculator;
    calculator.ParseDefinition(OneLineDefinition(pasted), nullptr);
    EXPECT_EQ(calculator.record().semiMajorM, 6378137.0);
    EXPECT_EQ(calculator.record().falseEastingM, 500000.0);
  }
  CTrgCalculator compound;
  compound.ParseDefinition(OneLineDefinition("COMPD_CS[\"a, (b)\"," + std::string(kGood) + "]"),
                           nullptr);
  EXPECT_EQ(compound.compoundName(), "a; (b)");
}

std::vector<std::string> Fields(std::string_view line) {
  std::vector<std::string> fields;
  for (std::size_t tab = 0; tab != std::string_view::npos;) {
    tab = line.find('\t');
    fields.emplace_back(line.substr(0, tab));
    line.remove_prefix(tab == std::string_view::npos ? line.size() : tab + 1);
  }
  return fields;
}

// Texts of other programs: what is read agrees with the same system's parameters, and what cannot
// be taken is told.
TEST(DefinitionCheck, TextsOfOtherPrograms) {
  std::string bytes;
  ASSERT_TRUE(
      ReadWholeFile(SystemFiles(), TARVEX_TEST_DATA "/coordsys/definitions.txt", 1u << 20, bytes)
          .ok());
  std::string_view rest = bytes;
  int texts = 0;
  while (const auto line = TakeLine(rest)) {
    if (line->starts_with('#')) continue;
    const auto fields = Fields(*line);
    ASSERT_EQ(fields.size(), 6U);
    SCOPED_TRACE(fields[0]);
    ++texts;
    CTrgCalculator calculator;
    calculator.ParseDefinition(fields[5], nullptr);
    const auto kinds = Kinds(fields[5]);
    if (fields[1] == "unknown") {
      EXPECT_EQ(calculator.State(), CalculationResult::NotAvailable);
      EXPECT_THAT(kinds, testing::Contains(Kind::UnknownProjection));
      continue;
    }
    const ProjectionRecord& record = calculator.record();
    EXPECT_EQ(record.projectionType, LeadingInteger(fields[1]));
    EXPECT_NEAR(record.latitudeOfOriginDeg, LeadingDouble(fields[2]), 1e-12);
    EXPECT_NEAR(record.centralMeridianDeg, LeadingDouble(fields[3]), 1e-12);
    if (fields[4] == "-") {
      EXPECT_THAT(kinds, testing::Contains(Kind::LinearUnit));
    } else {
      EXPECT_NEAR(record.falseEastingM, LeadingDouble(fields[4]), 1e-9);
      EXPECT_THAT(kinds, testing::Each(Kind::NoDatumShift));
    }
  }
  EXPECT_EQ(texts, 18);
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
