#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "coordsys/definition_reader.h"
#include "coordsys/definition_writer.h"
#include "coordsys/message_box.h"
#include "core/text.h"

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
  std::string compound_name;
  ReadDefinition(text, record, compound_name, nullptr);
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
  record.ellipsoid_code = 4;
  std::string compound_name;
  ReadDefinition(kTexas, record, compound_name, nullptr);
  EXPECT_EQ(compound_name, "Texas with heights");
  EXPECT_EQ(record.datum_name.view(), "North_American_Datum_1983");
  EXPECT_EQ(record.ellipsoid_name.view(), "GRS 1980");
  EXPECT_EQ(record.ellipsoid_code, 999);
  EXPECT_EQ(record.semi_major_m, 6378137.0);
  EXPECT_EQ(record.flattening, 1.0 / 298.257222101);
  EXPECT_EQ(record.shift_dx, 0.5);
  EXPECT_EQ(record.shift_dy, -1.25);
  EXPECT_EQ(record.shift_rx, -1.0);
  EXPECT_EQ(record.shift_ry, -2.0);
  EXPECT_EQ(record.shift_rz, -3.0);
  EXPECT_EQ(record.shift_scale, -0.06);
  EXPECT_EQ(record.projection_type, 0);
  EXPECT_EQ(record.projection_name.view(), "Lambert_Conformal_Conic_2SP");
  EXPECT_EQ(record.latitude_of_origin, 27.8333333333333);
  EXPECT_EQ(record.latitude_of_center, 27.8333333333333);
  EXPECT_EQ(record.central_meridian, -99.0);
  EXPECT_EQ(record.longitude_of_center, -99.0);
  EXPECT_EQ(record.standard_parallel_1, 30.2833333333333);
  EXPECT_EQ(record.standard_parallel_2_or_azimuth, 28.3833333333333);
  EXPECT_EQ(record.false_easting, 600000.0);
  EXPECT_EQ(record.false_northing, 4000000.0);
  EXPECT_EQ(record.vertical_datum_name.view(), "North American Vertical Datum 1988");
}

TEST(DefinitionReader, ParameterNamesSetTheirFields) {
  struct Case {
    std::string_view items;
    double ProjectionRecord::*field;
    double value;
  };
  const Case cases[] = {
      {R"(,PARAMETER["FALSE_EASTING",5])", &ProjectionRecord::false_easting, 5},
      {R"(,PARAMETER["Longitude_Of_Center",5])", &ProjectionRecord::central_meridian, 5},
      {R"(,PARAMETER["central_meridian",5])", &ProjectionRecord::longitude_of_center, 5},
      {R"(,PARAMETER["latitude_of_center",5])", &ProjectionRecord::latitude_of_origin, 5},
      {R"(,PARAMETER["CM",5])", &ProjectionRecord::central_meridian, 0},
      {R"(,PARAMETER["standard_parallel1",5])", &ProjectionRecord::standard_parallel_1, 5},
      {R"(,PARAMETER["axis",5])", &ProjectionRecord::standard_parallel_2_or_azimuth, 5},
      {R"(,PARAMETER["standard_parallel_2",4],PARAMETER["Azimuth",5])",
       &ProjectionRecord::standard_parallel_2_or_azimuth, 5},
      {R"(,PARAMETER["azimuth",5],PARAMETER["standard_parallel2",4])",
       &ProjectionRecord::standard_parallel_2_or_azimuth, 4},
      {R"(,PARAMETER["Rectified_Grid_Angle",5])", &ProjectionRecord::rectified_grid_angle, 0},
      {R"(,PARAMETER["rectified_grid_angle",5,AUTHORITY["a","b"]])",
       &ProjectionRecord::rectified_grid_angle, 5},
      {R"(,PARAMETER["zone_width", +6.5 deg])", &ProjectionRecord::zone_width, 6.5},
      {R"(,UNIT["metre",1],PARAMETER["scale_factor",0.9996])", &ProjectionRecord::scale_factor,
       0.9996},
      {R"(,PARAMETER["scale_factor",0.9996)", &ProjectionRecord::scale_factor, 0.9996},
      {R"(,PARAMETER["scale_factor"])", &ProjectionRecord::scale_factor, 0.0},
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
  EXPECT_EQ(record.denmark_area, 3);
}

TEST(DefinitionReader, AlaskaTakesItsFalseEastingFromCoefficientThree) {
  const auto items = R"(,PARAMETER["T3",5],PARAMETER["T1",9])";
  EXPECT_EQ(Read(With("Transverse_Mercator_Alaska_27", items)).coefficients[0], 5.0);
  EXPECT_EQ(Read(With("Transverse_Mercator_27", items)).coefficients[0], 9.0);
}

TEST(DefinitionReader, WhatTheTextLacksKeepsItsValue) {
  ProjectionRecord earlier;
  earlier.shift_rx = 7.0;
  earlier.shift_scale = 8.0;
  earlier.projection_type = 5;
  earlier.ellipsoid_code = 4;
  earlier.vertical_datum_name.Assign("NAVD88");
  const std::string_view three =
      R"(PROJCS["x",GEOGCS["g",DATUM["d",SPHEROID["s",6378137,298],TOWGS84[1,2,3]]]])";
  const ProjectionRecord read = Read(three, earlier);
  EXPECT_EQ(read.shift_dz, 3.0);
  EXPECT_EQ(read.shift_rx, 7.0);
  EXPECT_EQ(read.shift_scale, 8.0);
  EXPECT_EQ(read.projection_type, 5);
  EXPECT_EQ(read.ellipsoid_code, 4) << "no PROJECTION";
  EXPECT_EQ(read.vertical_datum_name.view(), "NAVD88");

  for (const std::string_view text :
       {"", "GEOGCS[\"g\",DATUM[\"d\",SPHEROID[\"s\",1,2]]]", "COMPD_CS[\"name\",", "PROJCS"}) {
    EXPECT_EQ(Read(text, earlier), earlier) << text;
  }
  const std::string long_name =
      R"(PROJCS["x",DATUM[")" + std::string(99, 'd') + R"(",SPHEROID["s",5,2]]])";
  EXPECT_TRUE(Read(long_name).datum_name.empty());
  EXPECT_EQ(Read(long_name).semi_major_m, 5.0);
}

TEST(DefinitionReader, TheEllipsoidAsVerticalDatumClearsTheName) {
  ProjectionRecord earlier;
  earlier.vertical_datum_name.Assign("NAVD88");
  const auto text = With("Stereographic", R"(,VERT_CS["v",VERT_DATUM["ELLIPSOID",2002]])");
  EXPECT_TRUE(Read(text, earlier).vertical_datum_name.empty());
}

TEST(DefinitionReader, AnUnknownProjectionIsToldAndChangesNoType) {
  ProjectionRecord record;
  record.projection_type = 5;
  std::string compound_name;
  ShownMessages messages;
  const std::string text = With("Krovak", R"(,PARAMETER["scale_factor",0.9])");
  ReadDefinition(text, record, compound_name, &messages);
  ASSERT_EQ(messages.shown.size(), 1U);
  EXPECT_THAT(messages.shown[0].second, testing::HasSubstr("\"Krovak\""));
  EXPECT_EQ(record.projection_type, 5);
  EXPECT_EQ(record.scale_factor, 0.9);
  EXPECT_EQ(record.ellipsoid_code, 999);
  ReadDefinition(With("Double_Stereographic", ""), record, compound_name, &messages);
  EXPECT_EQ(messages.shown.size(), 1U);
  EXPECT_EQ(record.projection_type, 2);
}

TEST(DefinitionReader, ReadsTwoThousandAndFortyEightCharacters) {
  std::string text = With("Stereographic", "");
  text.pop_back();
  const std::string parameter = R"(,PARAMETER["scale_factor",7])";
  text +=
      R"(,X[")" + std::string(kDefinitionLimit - text.size() - parameter.size() - 6, 'x') + "\"]";
  ASSERT_EQ((text + parameter).size(), kDefinitionLimit);
  EXPECT_EQ(Read(text + parameter).scale_factor, 7.0);
  EXPECT_EQ(Read(text + " " + parameter).scale_factor, 0.0) << "the bracket lies beyond";
}

TEST(DefinitionReader, SurvivesATextCutAnywhere) {
  const ProjectionRecord whole = Read(kTexas);
  for (std::size_t length = 0; length <= kTexas.size(); ++length) {
    const std::string cut(kTexas.substr(0, length));
    const ProjectionRecord record = Read(cut);
    for (const double ProjectionRecord::*field :
         {&ProjectionRecord::false_easting, &ProjectionRecord::shift_dx,
          &ProjectionRecord::latitude_of_origin, &ProjectionRecord::semi_major_m}) {
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
  std::string compound_name;
  ReadDefinition(*text, back, compound_name, nullptr);
  EXPECT_EQ(back, texas);
  EXPECT_EQ(compound_name, "Texas; 'with' heights");
  EXPECT_THAT(*text, testing::HasSubstr("6378137,298.257222101]"));
}

TEST(DefinitionWriter, RandomRecordsReadBackTheSame) {
  const auto seed = std::random_device{}();
  SCOPED_TRACE(testing::Message() << "seed " << seed);
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> number(-1e7, 1e7);
  std::uniform_real_distribution<double> inverse_flattening(250.0, 350.0);
  for (int type = 0; type < kProjectionTypes; ++type) {
    for (int round = 0; round < 50; ++round) {
      ProjectionRecord record;
      record.datum_name.Assign("Datum " + std::to_string(round));
      record.ellipsoid_name.Assign("Ellipsoid");
      record.semi_major_m = number(random);
      record.flattening = 1.0 / inverse_flattening(random);
      record.projection_type = type;
      record.projection_name.Assign(*ProjectionName(type));
      for (double ProjectionRecord::*field :
           {&ProjectionRecord::shift_dx, &ProjectionRecord::shift_dy, &ProjectionRecord::shift_dz,
            &ProjectionRecord::shift_rx, &ProjectionRecord::shift_ry, &ProjectionRecord::shift_rz,
            &ProjectionRecord::shift_scale, &ProjectionRecord::false_easting,
            &ProjectionRecord::false_northing, &ProjectionRecord::central_meridian,
            &ProjectionRecord::standard_parallel_1, &ProjectionRecord::latitude_of_origin,
            &ProjectionRecord::standard_parallel_2_or_azimuth, &ProjectionRecord::scale_factor,
            &ProjectionRecord::rectified_grid_angle, &ProjectionRecord::zone_width}) {
        record.*field = round % 5 == 0 ? 0.0 : number(random);
      }
      record.longitude_of_center = record.central_meridian;
      record.latitude_of_center = record.latitude_of_origin;
      if (round % 2 == 0) record.coefficients.fill(number(random));
      record.denmark_area = round % 4;
      record.vertical_datum_name.Assign(round % 3 == 0 ? "" : "Sea level");
      const auto text = WriteDefinition(record, "name");
      ASSERT_TRUE(text);
      EXPECT_EQ(Read(*text), record) << *text;
    }
  }
}

TEST(DefinitionWriter, RefusesWhatTheFormCannotHold) {
  ProjectionRecord record = Read(kTexas);
  record.projection_type = 17;
  EXPECT_FALSE(WriteDefinition(record, "x"));
  record.projection_type = 1;
  EXPECT_TRUE(WriteDefinition(record, "x"));
  record.false_easting = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(WriteDefinition(record, "x"));
}

}  // namespace
}  // namespace tarvex
