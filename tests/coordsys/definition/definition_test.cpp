#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "coordsys/definition/definition_reader.h"
#include "coordsys/definition/definition_writer.h"
#include "coordsys/message_box.h"
#include "coordsys/projections/projection_families.h"
#include "core/text/text.h"
#include "tests/support/random_numbers.h"

namespace tarvex {
namespace {

constexpr std::string_view kTexas =
    R"(COMPD_CS["Texas with heights",PROJCS["NAD83 / Texas South Central",GEOGCS["NAD83",)"
    R"(DATUM["North_American_Datum_1983",SPHEROID["GRS 1980",6378137,298.257222101,)"
    R"(AUTHORITY["EPSG","7019"]],TOWGS84[0.5,-1.25,2,1,2,3,-0.06],AUTHORITY["EPSG","6269"]],)"
    R"(PRIMEM["Greenwich",0,AUTHORITY["EPSG","8901"]],UNIT["degree",0.0174532925199433],)"
    R"(AUTHORITY["EPSG","4269"]],PROJECTION["Lambert_Conformal_Conic_2SP"],)"
    R"(PARAMETER["latitude_of_origin",27.8333333333333],PARAMETER["central_meridian",-99],)"
    R"(PARAMETER["standard_parallel_1",30.2833333333333],)"
    R"(PARAMETER["standard_parallel_2",28.3833333333333],PARAMETER["false_easting",600000],)"
    R"(PARAMETER["false_northing",4000000],UNIT["metre",1]],)"
    R"(VERT_CS["NAVD88 height",VERT_DATUM["North American Vertical Datum 1988",2005],)"
    R"(UNIT["metre",1]]])";

ProjectionRecord Read(std::string_view text, ProjectionRecord record = {}) {
  DefinitionFacts facts;
  ReadDefinition(text, record, facts, nullptr);
  return record;
}

// A definition with these items after the PROJECTION of this name.
std::string With(std::string_view projection, std::string_view items) {
  std::string text = R"(PROJCS["x",GEOGCS["g",DATUM["d",SPHEROID["s",6378137,298]]],PROJECTION[")";
  text += projection;
  text += "\"]";
  text += items;
  return text + "]";
}

struct ShownMessages : MessageBox {
  std::vector<std::pair<std::string, std::string>> shown;
  void Show(std::string_view title, std::string_view text) override {
    shown.emplace_back(title, text);
  }
};

TEST(DefinitionReader, ReadsEveryPartOfACompoundDefinition) {
  ProjectionRecord record;
  record.ellipsoidCode = 4;
  DefinitionFacts facts;
  ReadDefinition(kTexas, record, facts, nullptr);
  EXPECT_EQ(facts.compoundName, "Texas with heights");
  EXPECT_EQ(record.datumName.view(), "North_American_Datum_1983");
  EXPECT_EQ(record.ellipsoidName.view(), "GRS 1980");
  EXPECT_EQ(record.ellipsoidCode, 999);
  EXPECT_EQ(record.semiMajorM, 6378137.0);
  EXPECT_EQ(record.flattening, 1.0 / 298.257222101);
  EXPECT_EQ(record.shiftDxM, 0.5);
  EXPECT_EQ(record.shiftDyM, -1.25);
  EXPECT_EQ(record.shiftRxArcsec, -1.0);
  EXPECT_EQ(record.shiftRyArcsec, -2.0);
  EXPECT_EQ(record.shiftRzArcsec, -3.0);
  EXPECT_EQ(record.shiftScalePpm, -0.06);
  EXPECT_EQ(record.projectionType, 0);
  EXPECT_EQ(record.projectionName.view(), "Lambert_Conformal_Conic_2SP");
  EXPECT_EQ(record.latitudeOfOriginDeg, 27.8333333333333);
  EXPECT_EQ(record.latitudeOfCenterDeg, 27.8333333333333);
  EXPECT_EQ(record.centralMeridianDeg, -99.0);
  EXPECT_EQ(record.longitudeOfCenterDeg, -99.0);
  EXPECT_EQ(record.standardParallel1Deg, 30.2833333333333);
  EXPECT_EQ(record.standardParallel2OrAzimuthDeg, 28.3833333333333);
  EXPECT_EQ(record.falseEastingM, 600000.0);
  EXPECT_EQ(record.falseNorthingM, 4000000.0);
  EXPECT_EQ(record.verticalDatumName.view(), "North American Vertical Datum 1988");
}

TEST(DefinitionReader, ParameterNamesSetTheirFields) {
  struct Case {
    std::string_view items;
    double ProjectionRecord::* field;
    double value;
  };
  const Case cases[] = {
      {R"(,PARAMETER["FALSE_EASTING",5])", &ProjectionRecord::falseEastingM, 5},
      {R"(,PARAMETER["Longitude_Of_Center",5])", &ProjectionRecord::centralMeridianDeg, 5},
      {R"(,PARAMETER["central_meridian",5])", &ProjectionRecord::longitudeOfCenterDeg, 5},
      {R"(,PARAMETER["latitude_of_center",5])", &ProjectionRecord::latitudeOfOriginDeg, 5},
      {R"(,PARAMETER["CM",5])", &ProjectionRecord::centralMeridianDeg, 0},
      {R"(,PARAMETER["standard_parallel1",5])", &ProjectionRecord::standardParallel1Deg, 5},
      {R"(,PARAMETER["axis",5])", &ProjectionRecord::standardParallel2OrAzimuthDeg, 5},
      {R"(,PARAMETER["standard_parallel_2",4],PARAMETER["Azimuth",5])",
       &ProjectionRecord::standardParallel2OrAzimuthDeg, 5},
      {R"(,PARAMETER["azimuth",5],PARAMETER["standard_parallel2",4])",
       &ProjectionRecord::standardParallel2OrAzimuthDeg, 4},
      {R"(,PARAMETER["Rectified_Grid_Angle",5])", &ProjectionRecord::rectifiedGridAngleDeg, 0},
      {R"(,PARAMETER["rectified_grid_angle",5,AUTHORITY["a","b"]])",
       &ProjectionRecord::rectifiedGridAngleDeg, 5},
      {R"(,PARAMETER["zone_width", +6.5 deg])", &ProjectionRecord::zoneWidthDeg, 6.5},
      {R"(,UNIT["metre",1],PARAMETER["scale_factor",0.9996])", &ProjectionRecord::scaleFactor,
       0.9996},
      {R"(,PARAMETER["scale_factor",0.9996)", &ProjectionRecord::scaleFactor, 0.9996},
      {R"(,PARAMETER["scale_factor"])", &ProjectionRecord::scaleFactor, 0.0},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Read(With("Stereographic", c.items)).*c.field, c.value) << c.items;
  }
}

TEST(DefinitionReader, CoefficientLettersKeepTheirCaseAndSkipE) {
  const ProjectionRecord record = Read(With(
      "Cassini_Soldner",
      R"(,PARAMETER["A",1],PARAMETER["CM",2],PARAMETER["L3",3],PARAMETER["D",4],PARAMETER["F",5])"
      R"(,PARAMETER["G",6],PARAMETER["H",7],PARAMETER["I",8],PARAMETER["e",9],PARAMETER["E",99])"
      R"(,PARAMETER["EPSILON",10],PARAMETER["Lambda0",11],PARAMETER["t1",99],PARAMETER["denmark_area",3.7])"));
  EXPECT_THAT(record.coefficients, testing::ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11));
  EXPECT_EQ(record.denmarkArea, 3);
}

TEST(DefinitionReader, AlaskaTakesItsFalseEastingFromCoefficientThree) {
  const auto items = R"(,PARAMETER["T3",5],PARAMETER["T1",9])";
  EXPECT_EQ(Read(With("Transverse_Mercator_Alaska_27", items)).coefficients[0], 5.0);
  EXPECT_EQ(Read(With("Transverse_Mercator_27", items)).coefficients[0], 9.0);
}

TEST(DefinitionReader, WhatTheTextLacksKeepsItsValue) {
  ProjectionRecord earlier;
  earlier.shiftRxArcsec = 7.0;
  earlier.shiftScalePpm = 8.0;
  earlier.projectionType = 5;
  earlier.ellipsoidCode = 4;
  earlier.verticalDatumName.Assign("NAVD88");
  const std::string_view three =
      R"(PROJCS["x",GEOGCS["g",DATUM["d",SPHEROID["s",6378137,298],TOWGS84[1,2,3]]]])";
  const ProjectionRecord read = Read(three, earlier);
  EXPECT_EQ(read.shiftDzM, 3.0);
  EXPECT_EQ(read.shiftRxArcsec, 7.0);
  EXPECT_EQ(read.shiftScalePpm, 8.0);
  EXPECT_EQ(read.projectionType, 5);
  EXPECT_EQ(read.ellipsoidCode, 4) << "no PROJECTION";
  EXPECT_EQ(read.verticalDatumName.view(), "NAVD88");

  for (const std::string_view text :
       {"", "GEOGCS[\"g\",DATUM[\"d\",SPHEROID[\"s\",1,2]]]", "COMPD_CS[\"name\",", "PROJCS"}) {
    EXPECT_EQ(Read(text, earlier), earlier) << text;
  }
  const std::string longName =
      R"(PROJCS["x",DATUM[")" + std::string(99, 'd') + R"(",SPHEROID["s",5,2]]])";
  EXPECT_TRUE(Read(longName).datumName.empty());
  EXPECT_EQ(Read(longName).semiMajorM, 5.0);
}

TEST(DefinitionReader, TheEllipsoidAsVerticalDatumClearsTheName) {
  ProjectionRecord earlier;
  earlier.verticalDatumName.Assign("NAVD88");
  const auto text = With("Stereographic", R"(,VERT_CS["v",VERT_DATUM["ELLIPSOID",2002]])");
  EXPECT_TRUE(Read(text, earlier).verticalDatumName.empty());
}

TEST(DefinitionReader, AnUnknownProjectionIsToldAndChangesNoType) {
  ProjectionRecord record;
  record.projectionType = 5;
  DefinitionFacts facts;
  ShownMessages messages;
  const std::string text = With("Krovak", R"(,PARAMETER["scale_factor",0.9])");
  ReadDefinition(text, record, facts, &messages);
  ASSERT_EQ(messages.shown.size(), 1U);
  EXPECT_THAT(messages.shown[0].second, testing::HasSubstr("\"Krovak\""));
  EXPECT_EQ(record.projectionType, 5);
  EXPECT_EQ(record.scaleFactor, 0.9);
  EXPECT_EQ(record.ellipsoidCode, 999);
  ReadDefinition(With("Double_Stereographic", ""), record, facts, &messages);
  EXPECT_EQ(messages.shown.size(), 1U);
  EXPECT_EQ(record.projectionType, 2);
}

TEST(DefinitionReader, ReadsTwoThousandAndFortyEightCharacters) {
  std::string text = With("Stereographic", "");
  text.pop_back();
  const std::string parameter = R"(,PARAMETER["scale_factor",7])";
  text +=
      R"(,X[")" + std::string(kDefinitionLimit - text.size() - parameter.size() - 6, 'x') + "\"]";
  ASSERT_EQ((text + parameter).size(), kDefinitionLimit);
  EXPECT_EQ(Read(text + parameter).scaleFactor, 7.0);
  EXPECT_EQ(Read(text + " " + parameter).scaleFactor, 0.0) << "the bracket lies beyond";
}

TEST(DefinitionReader, SurvivesATextCutAnywhere) {
  const ProjectionRecord whole = Read(kTexas);
  for (std::size_t length = 0; length <= kTexas.size(); ++length) {
    const std::string cut(kTexas.substr(0, length));
    const ProjectionRecord record = Read(cut);
    for (const double ProjectionRecord::* field :
         {&ProjectionRecord::falseEastingM, &ProjectionRecord::shiftDxM,
          &ProjectionRecord::latitudeOfOriginDeg, &ProjectionRecord::semiMajorM}) {
      EXPECT_TRUE(record.*field == 0.0 || record.*field == whole.*field) << length;
    }
  }
}

TEST(DefinitionReader, PastedTextsLoseTheirLayout) {
  const std::string pasted = "\xEF\xBB\xBFPROJCS[ \"a  b\",\r\n\tGEOGCS [\"g\"],\n  X[1] ]\n";
  EXPECT_EQ(OneLineDefinition(pasted), "PROJCS[\"a  b\",GEOGCS[\"g\"],X[1]]");
}

TEST(DefinitionWriter, WhatItWritesReadsBackTheSame) {
  const ProjectionRecord texas = Read(kTexas);
  const auto text = WriteDefinition(texas, "Texas", "Texas, \"with\" heights");
  ASSERT_TRUE(text);
  ProjectionRecord back;
  DefinitionFacts facts;
  ReadDefinition(*text, back, facts, nullptr);
  EXPECT_EQ(back, texas);
  EXPECT_EQ(facts.compoundName, "Texas; 'with' heights");
  EXPECT_THAT(*text, testing::HasSubstr("6378137,298.257222101]"));
}

TEST(DefinitionWriter, RandomRecordsReadBackTheSame) {
  RandomNumbers random;
  std::uniform_real_distribution<double> number(-1e7, 1e7);
  std::uniform_real_distribution<double> inverseFlattening(250.0, 350.0);
  for (const ProjectionFamily& family : ProjectionFamilies()) {
    for (int round = 0; round < 50; ++round) {
      ProjectionRecord record;
      record.datumName.Assign("Datum " + std::to_string(round));
      record.ellipsoidName.Assign("Ellipsoid");
      record.semiMajorM = number(random);
      record.flattening = 1.0 / inverseFlattening(random);
      record.projectionType = static_cast<int>(family.type);
      record.projectionName.Assign(family.name);
      for (double ProjectionRecord::* field :
           {&ProjectionRecord::shiftDxM, &ProjectionRecord::shiftDyM, &ProjectionRecord::shiftDzM,
            &ProjectionRecord::shiftRxArcsec, &ProjectionRecord::shiftRyArcsec,
            &ProjectionRecord::shiftRzArcsec, &ProjectionRecord::shiftScalePpm,
            &ProjectionRecord::falseEastingM, &ProjectionRecord::falseNorthingM,
            &ProjectionRecord::centralMeridianDeg, &ProjectionRecord::standardParallel1Deg,
            &ProjectionRecord::latitudeOfOriginDeg,
            &ProjectionRecord::standardParallel2OrAzimuthDeg, &ProjectionRecord::scaleFactor,
            &ProjectionRecord::rectifiedGridAngleDeg, &ProjectionRecord::zoneWidthDeg}) {
        record.*field = round % 5 == 0 ? 0.0 : number(random);
      }
      record.longitudeOfCenterDeg = record.centralMeridianDeg;
      record.latitudeOfCenterDeg = record.latitudeOfOriginDeg;
      if (round % 2 == 0) record.coefficients.fill(number(random));
      record.denmarkArea = round % 4;
      record.verticalDatumName.Assign(round % 3 == 0 ? "" : "Sea level");
      const auto text = WriteDefinition(record, "name");
      ASSERT_TRUE(text);
      EXPECT_EQ(Read(*text), record) << *text;
    }
  }
}

TEST(DefinitionWriter, RefusesWhatTheFormCannotHold) {
  ProjectionRecord record = Read(kTexas);
  record.projectionType = static_cast<int>(ProjectionFamilies().size());
  EXPECT_FALSE(WriteDefinition(record, "x"));
  record.projectionType = 1;
  EXPECT_TRUE(WriteDefinition(record, "x"));
  record.falseEastingM = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(WriteDefinition(record, "x"));
}

}  // namespace
}  // namespace tarvex
