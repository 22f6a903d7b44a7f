#include "exchange/road_picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "roads/centerline_reader.h"
#include "roads/template_file.h"
#include "tests/roads/road_data.h"

namespace tarvex {
namespace {

using testing::HasSubstr;

RoadGeometry Geometry(const std::string& file) {
  const std::string text = ReadRoadData(file);
  Centerline centerline;
  centerline.elements = ReadChain(text, false).elements;
  return MakeRoadGeometry(centerline, ReadStationEquations(text)).geometry.value();
}

int Count(const std::string& text, const std::string& part) {
  int count = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++count;
  return count;
}

TEST(AlignmentPicture, ShowsElementsKeyPointsAndMarks) {
  const PictureMark mark{{4512400.0, 512600.0}, "Rover <1> & co"};
  const std::string svg = AlignmentPicture(Geometry("cl/scs_right.cl"), "A & B", {}, {&mark, 1});
  for (const char* text : {"<title>A &amp; B</title>", "TS 21+50.00", "SC 22+30.00", "CS 23+89.98",
                           "ST 24+69.98", "Rover &lt;1&gt; &amp; co"}) {
    EXPECT_THAT(svg, HasSubstr(text));
  }
  EXPECT_EQ(Count(svg, "stroke=\"#15803d\""), 2);  // spirals
  EXPECT_EQ(Count(svg, "stroke=\"#1f5fbf\""), 1);  // the arc
  EXPECT_EQ(Count(svg, "stroke-dasharray"), 0);
  EXPECT_THAT(AlignmentPicture(Geometry("bad/sc_station_plus_0.05.cl"), "", {}),
              HasSubstr("stroke-dasharray"));
  // The ahead side of an equation names its place.
  EXPECT_THAT(AlignmentPicture(Geometry("cl/simple_right_eq.cl"), "", {}),
              HasSubstr("PC 13+00.00"));
}

TEST(SectionPicture, ShowsRoadSlopesAndGround) {
  const RoadTemplate section = ReadTemplate(ReadRoadData("section_example.tpl"));
  const DesignSection design = BuildSection(section, 100.0);
  const GroundLine ground = GroundLine::Plane(97.8, -0.01);
  SectionSide left{ground, FindCatchPoint(section, design, Side::Left, ground)};
  const std::string svg = SectionPicture(design, left, {}, "Section");
  for (const char* text : {">CL<", ">ES<", "fill 4:1", "14.19 L  97.658"}) {
    EXPECT_THAT(svg, HasSubstr(text));
  }
  EXPECT_EQ(Count(svg, "stroke=\"#8a5a2b\""), 1);
}

}  // namespace
}  // namespace tarvex
