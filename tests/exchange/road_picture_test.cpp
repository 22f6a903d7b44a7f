#include "exchange/road_picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <pugixml.hpp>

#include "exchange/label_room.h"
#include "roads/catch_point.h"
#include "roads/centerline_reader.h"
#include "roads/template_file.h"
#include "roads/template_reader.h"
#include "tests/roads/road_data.h"

namespace tarvex {
namespace {

using testing::HasSubstr;

RoadGeometry Geometry(const std::string& file) {
  const std::string text = ReadRoadData(file);
  Centerline centerline;
  centerline.elements = ReadChain(text, false)->elements;
  return MakeRoadGeometry(centerline, ReadStationEquations(text)).value();
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

// Every text of a picture as its place on the page.
std::vector<std::pair<std::string, LabelBox>> TextsOf(const std::string& svg) {
  std::vector<std::pair<std::string, LabelBox>> texts;
  pugi::xml_document document;
  EXPECT_TRUE(document.load_string(svg.c_str()));
  for (const pugi::xml_node& node : document.child("svg").children("text")) {
    const std::string text = node.child_value();
    const double size = node.attribute("font-size").as_double();
    const std::string anchor = node.attribute("text-anchor").value();
    const double width = 0.5 * size * static_cast<double>(text.size());
    const double from = anchor == "start" ? 0.0 : anchor == "middle" ? -0.5 * width : -width;
    const std::string turned = node.attribute("transform").value();
    const double rotation = turned.empty() ? 0.0 : std::stod(turned.substr(7));
    texts.emplace_back(
        text, LabelBox::Of(node.attribute("x").as_double(), node.attribute("y").as_double(), from,
                           width, 0.8 * size, rotation));
  }
  return texts;
}

TEST(AlignmentPicture, LaysNoTextOnAnother) {
  const PlanPoint here{4512400.0, 512600.0};
  const PictureMark marks[] = {{here, "R1"}, {here, "10"}, {here, "Rover 11"}};
  for (const char* file : {"cl/scs_right.cl", "cl/simple_right_eq.cl", "cl/compound_right.cl",
                           "cl/egg_sp.cl", "cl/angle_points.cl"}) {
    const bool withMarks = std::string(file) == "cl/scs_right.cl";
    const std::string svg = AlignmentPicture(
        Geometry(file), file, {},
        withMarks ? std::span<const PictureMark>(marks) : std::span<const PictureMark>());
    const auto texts = TextsOf(svg);
    EXPECT_GT(texts.size(), 8U) << file;
    for (std::size_t i = 0; i < texts.size(); ++i) {
      for (std::size_t k = 0; k < i; ++k) {
        EXPECT_FALSE(texts[i].second.Meets(texts[k].second))
            << file << ": " << texts[i].first << " on " << texts[k].first;
      }
    }
    if (withMarks) {
      EXPECT_THAT(svg,
                  testing::AllOf(HasSubstr(">R1<"), HasSubstr(">10<"), HasSubstr(">Rover 11<")));
    }
  }
}

TEST(AlignmentPicture, NamesItsUnitAndItsEquations) {
  const std::string svg = AlignmentPicture(Geometry("cl/simple_right_eq.cl"), "", {});
  EXPECT_THAT(svg, HasSubstr(" m</text>"));
  EXPECT_THAT(svg, HasSubstr("12+00.00 BK = 13+00.00 AH"));
  EXPECT_THAT(AlignmentPicture(Geometry("cl/scs_right.cl"), "",
                               {.stations = {}, .unit = DistanceUnit::UsSurveyFeet}),
              HasSubstr(" US ft</text>"));
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
