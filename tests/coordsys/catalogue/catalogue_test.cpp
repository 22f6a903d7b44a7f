#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include "coordsys/catalogue/state_plane_zones.h"
#include "coordsys/catalogue/system_catalogue.h"
#include "coordsys/chain/calculator.h"
#include "coordsys/definition/definition_writer.h"
#include "core/text/text.h"
#include "tests/support/scratch_folder.h"

namespace tarvex {
namespace {

constexpr std::string_view kDefinition =
    R"(PROJCS["x",GEOGCS["g",DATUM["d",SPHEROID["s",6378137,298]]],PROJECTION["Stereographic"]])";

// A data folder of its own.
class DataFolder {
 public:
  const std::string& path() const { return folder_.path(); }
  void Write(const std::string& name, std::string_view bytes) const {
    ASSERT_TRUE(ReplaceWholeFile(SystemFiles(), folder_.Path(name), bytes).ok());
  }
  std::string Read(const std::string& name) const {
    std::string bytes;
    EXPECT_TRUE(ReadWholeFile(SystemFiles(), folder_.Path(name), 1u << 20, bytes).ok());
    return bytes;
  }

 private:
  ScratchFolder folder_;
};

std::vector<std::string> Names(const std::vector<NamedSystem>& systems) {
  std::vector<std::string> names;
  for (const NamedSystem& system : systems) names.push_back(system.name);
  return names;
}

TEST(CatalogueFile, LinesAreNameTabDefinition) {
  std::size_t skipped = 0;
  const auto systems = ReadCatalogue(
      "\xEF\xBB\xBF# comment\r\n"
      "A/B\tPROJCS[\"x\"]\r\n"
      "no tab\n\n"
      " \tno name\n"
      "no definition\t\n"
      "\x1b[2Jcontrol\tPROJCS[\"z\"]\n"
      "#not\tthis\n"
      "Göteborg/x y\tPROJCS[\"y\"]",
      &skipped);
  EXPECT_THAT(systems, testing::ElementsAre(NamedSystem{"A/B", "PROJCS[\"x\"]"},
                                            NamedSystem{"Göteborg/x y", "PROJCS[\"y\"]"}));
  EXPECT_EQ(skipped, 4U);
}

TEST(CatalogueFile, EditsTouchOneLineOnly) {
  std::string bytes = "# mine\r\nA\tPROJCS[1]\nnonsense\nB\tPROJCS[2]";
  EXPECT_EQ(AddToCatalogue(bytes, "a", kDefinition), CatalogueResult::NameTaken);
  ASSERT_EQ(AddToCatalogue(bytes, "C", "PROJCS[\n \"3 x\" ]"), CatalogueResult::Done);
  EXPECT_EQ(bytes, "# mine\r\nA\tPROJCS[1]\nnonsense\nB\tPROJCS[2]\nC\tPROJCS[\"3 x\"]\n");
  ASSERT_EQ(RenameInCatalogue(bytes, "b", "B2"), CatalogueResult::Done);
  ASSERT_EQ(RenameInCatalogue(bytes, "A", "a"), CatalogueResult::Done) << "its own name";
  EXPECT_EQ(RenameInCatalogue(bytes, "a", "C"), CatalogueResult::NameTaken);
  EXPECT_EQ(RenameInCatalogue(bytes, "Z", "Y"), CatalogueResult::NotFound);
  ASSERT_EQ(RemoveFromCatalogue(bytes, "C"), CatalogueResult::Done);
  EXPECT_EQ(RemoveFromCatalogue(bytes, "C"), CatalogueResult::NotFound);
  EXPECT_EQ(bytes, "# mine\r\na\tPROJCS[1]\nnonsense\nB2\tPROJCS[2]\n");
  for (const std::string& name :
       {std::string("a,geoid=x"), std::string(), std::string("#a"), std::string("a\tb"),
        std::string("a\nb"), std::string("a,GEOID=x"), std::string(" a"), std::string(201, 'a')}) {
    EXPECT_EQ(AddToCatalogue(bytes, name, kDefinition), CatalogueResult::BadName) << name;
  }
  for (const std::string& definition : {std::string(" \n"), std::string(2049, 'x')}) {
    EXPECT_EQ(AddToCatalogue(bytes, "D", definition), CatalogueResult::BadDefinition);
  }
}

TEST(SystemCatalogue, TheUsersSystemsComeFirstAndAreEditedOnDisk) {
  const DataFolder folder;
  folder.Write("Predef1.csl",
               "USA/NAD83/Ohio North\tPROJCS[1]\nUSA/NAD83/Ohio South\tPROJCS[2,"
               "AUTHORITY[\"EPSG\",\"32123\"]]\n");
  SystemCatalogue catalogue(SystemFiles(), folder.path());
  EXPECT_THAT(catalogue.UserSystems(), testing::IsEmpty());
  ASSERT_EQ(catalogue.Add("mine/Ohio site", kDefinition), CatalogueResult::Done);
  ASSERT_EQ(catalogue.Add("usa/nad83/ohio north", kDefinition), CatalogueResult::Done);
  EXPECT_THAT(Names(catalogue.Search("OHIO")),
              testing::ElementsAre("mine/Ohio site", "usa/nad83/ohio north", "USA/NAD83/Ohio North",
                                   "USA/NAD83/Ohio South"));
  EXPECT_EQ(catalogue.Find("USA/NAD83/Ohio North,GEOID=g2018u0.bin")->definition, kDefinition);
  EXPECT_THAT(Names(catalogue.Search("south ohio")), testing::ElementsAre("USA/NAD83/Ohio South"));
  EXPECT_THAT(Names(catalogue.Search("epsg:32123")), testing::ElementsAre("USA/NAD83/Ohio South"));
  EXPECT_TRUE(catalogue.Find("UTM/UTM WGS84 Zone 3")) << "built in";
  ASSERT_EQ(catalogue.Remove("mine/Ohio site"), CatalogueResult::Done);
  ASSERT_EQ(catalogue.Rename("USA/NAD83/Ohio North", "North"), CatalogueResult::Done);
  EXPECT_EQ(folder.Read("tarvex.csl"), "North\t" + std::string(kDefinition) + "\n");
  EXPECT_EQ(SystemCatalogue(SystemFiles(), folder.path()).UserSystems().size(), 1U);
  SystemCatalogue nowhere(SystemFiles(), folder.path() + "missing/");
  EXPECT_EQ(nowhere.Add("x", kDefinition), CatalogueResult::FileFailed);
  EXPECT_FALSE(nowhere.fileStatus().ok());
}

TEST(SystemCatalogue, CodesAreTheSystemsOwnAndAreasHelpOnlyWithWords) {
  const DataFolder folder;
  folder.Write(
      "Predef1.csl",
      "EUROPE/One zone 3\tPROJCS[1,UNIT[\"metre\",1,AUTHORITY[\"EPSG\",\"9001\"]],AUTHORITY["
      "\"EPSG\",\"20\"]]\tEurope - Romania - between 36°E and 42°E\n"
      "ASIA/Two zone 36\tPROJCS[2]\tOman - onshore\n"
      "ASIA/20 three\tPROJCS[3]\n");
  const SystemCatalogue catalogue(SystemFiles(), folder.path());
  EXPECT_THAT(Names(catalogue.Search("oman")), testing::ElementsAre("ASIA/Two zone 36"));
  EXPECT_THAT(Names(catalogue.Search("zone romania")), testing::ElementsAre("EUROPE/One zone 3"));
  EXPECT_THAT(Names(catalogue.Search("zone 36")), testing::ElementsAre("ASIA/Two zone 36"));
  EXPECT_THAT(Names(catalogue.Search("20")),
              testing::ElementsAre("EUROPE/One zone 3", "ASIA/20 three"));
  EXPECT_THAT(Names(catalogue.Search("EPSG:9001")), testing::IsEmpty());
  EXPECT_EQ(catalogue.Find("EPSG:20")->name, "EUROPE/One zone 3");
  EXPECT_EQ(catalogue.Find("EPSG:20")->area, "Europe - Romania - between 36°E and 42°E");
  EXPECT_EQ(catalogue.Find("ASIA/Two zone 36,geoid=Off")->definition, "PROJCS[2]");
  EXPECT_EQ(ReadSystemChoice("A,geoid=off"), (SystemChoice{"A", ""}));
  EXPECT_EQ(ReadSystemChoice("A,Geoid=off.bin"), (SystemChoice{"A", "off.bin"}));
}

// The catalogue that is installed: every system of it must be usable.
TEST(PredefinedCatalogue, EverySystemCanBeMadeAndWrittenBack) {
  SystemCatalogue catalogue(SystemFiles(), TARVEX_DATA_FOLDER);
  const auto systems = catalogue.Search("");
  ASSERT_GT(systems.size(), 4900U);
  std::set<std::string> names;
  for (const NamedSystem& system : systems) {
    EXPECT_TRUE(names.insert(LowerCase(system.name)).second) << system.name << " twice";
    ProjectionRecord record;
    DefinitionFacts facts;
    ReadDefinition(system.definition, record, facts, nullptr);
    EXPECT_TRUE(MakeProjection(record)) << system.name;
    ProjectionRecord back;
    ReadDefinition(WriteDefinition(record, "x").value_or(""), back, facts, nullptr);
    EXPECT_EQ(back, record) << system.name;
  }
  for (const std::string_view name :
       {"FRANCE/RGF93/Lambert-93", "DENMARK/ED50/System34 Jutland", "DENMARK/ED50/System34 Seeland",
        "DENMARK/ED50/System34 Bornholm", "DENMARK/ED50/UTM zone 32", "USA/NAD83/Alaska zone 1",
        "UTM/UTM WGS84 Zone 60 South", "UTM/UTM NAD27 Zone 14", "UTM/UTM ED50 Zone 32"}) {
    EXPECT_TRUE(catalogue.Find(name)) << name;
  }
}

TEST(StatePlaneZones, AreChosenByNumberWithinTheirGroup) {
  const auto texas = ZoneOfGroup(StatePlaneDatum::Nad83, "texas", 3);
  ASSERT_TRUE(texas);
  EXPECT_EQ(texas->name, "USA/NAD83/Texas South Central");
  EXPECT_EQ(texas->record.projectionType, 0);
  EXPECT_EQ(texas->record.falseNorthingM, 4000000.0);
  EXPECT_EQ(texas->record.zoneWidthDeg, 6.0);
  EXPECT_FALSE(ZoneOfGroup(StatePlaneDatum::Nad83, "Texas", 5));
  EXPECT_FALSE(ZoneOfGroup(StatePlaneDatum::Nad83, "Texas", 28));
  EXPECT_FALSE(ZoneOfGroup(StatePlaneDatum::Nad83, "Texas", -1));
  EXPECT_FALSE(ZoneOfGroup(StatePlaneDatum::Nad83, "Bavaria", 0));

  CTrgCalculator calculator;
  EXPECT_EQ(calculator.SelectZone(StatePlaneDatum::Nad83, "Alabama", 28), ZoneSelection::Rejected);
  EXPECT_EQ(calculator.State(), CalculationResult::NoSystem);
  EXPECT_EQ(calculator.SelectZone(StatePlaneDatum::Nad83, "Alabama", 1), ZoneSelection::Selected);
  EXPECT_EQ(calculator.State(), CalculationResult::Done);
  EXPECT_EQ(calculator.record().scaleFactor, 1.0 - 1.0 / 15000.0);
}

TEST(StatePlaneZones, AgreeWithTheCatalogue) {
  const SystemCatalogue catalogue(SystemFiles(), TARVEX_DATA_FOLDER);
  int zones = 0;
  for (const StatePlaneDatum datum : {StatePlaneDatum::Nad27, StatePlaneDatum::Nad83}) {
    for (const std::string& group : StatePlaneGroups(datum)) {
      for (int number = 0; number <= kLastZone; ++number) {
        const auto zone = ZoneOfGroup(datum, group, number);
        if (!zone) break;
        ++zones;
        const auto listed = catalogue.Find(zone->name);
        ASSERT_TRUE(listed) << zone->name;
        ProjectionRecord record = zone->record;
        DefinitionFacts facts;
        ReadDefinition(listed->definition, record, facts, nullptr);
        record.datumName = zone->record.datumName;
        record.shiftDxM = record.shiftDyM = record.shiftDzM = 0.0;
        EXPECT_EQ(record, zone->record) << zone->name;
      }
    }
  }
  EXPECT_EQ(zones, 124 + 133);
}

TEST(StatePlaneZones, Nad27CodesLeadToTheirOwnRoutines) {
  const auto type = [](int code) { return Nad27ZoneOfCode(code)->record.projectionType; };
  EXPECT_EQ(Nad27ZoneOfCode(0)->name, "USA/NAD27/Alabama East");
  EXPECT_EQ(Nad27ZoneOfCode(119)->name, "USA/NAD27/Wyoming West");
  EXPECT_EQ(type(120), static_cast<int>(ProjectionType::ObliqueMercator27));
  EXPECT_EQ(type(129), static_cast<int>(ProjectionType::LambertConformalConic27));
  for (int code = 121; code < 129; ++code) {
    EXPECT_EQ(type(code), static_cast<int>(ProjectionType::TransverseMercatorAlaska27)) << code;
  }
  EXPECT_FALSE(Nad27ZoneOfCode(130));
  EXPECT_FALSE(Nad27ZoneOfCode(-1));
}

}  // namespace
}  // namespace tarvex
