#include "roads/template_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/roads/road_data.h"
#include "tests/support/scratch_folder.h"

namespace tarvex {
namespace {

TEST(TemplateReader, ReadsSegmentsOfEveryKind) {
  const RoadTemplate section = ReadTemplate(
      "*SURFACEL\r\nOFFSET,0.5,-0.1\r\nMOVESL,12.0,-2.0%%,EOP\r\nMOVESL,0.5,4:1,DITCH, wide\r\n"
      "MOVESL,0,0.5,CURB\nMOVESL,0,-2%,X\nMOVESL,3,0:1,FLAT\n"
      "*SURFACEX\nMOVESL,1,1,R\n");
  const Surface& left = section.SurfaceOf(Side::Left);
  EXPECT_EQ(left.offset, 0.5);
  EXPECT_EQ(left.elevation, -0.1);
  EXPECT_THAT(left.segments,
              testing::ElementsAre(SurfaceSegment{12.0, SlopeKind::Grade, -2.0, "EOP"},
                                   SurfaceSegment{0.5, SlopeKind::Ratio, 4.0, "DITCH, wide"},
                                   SurfaceSegment{0.0, SlopeKind::ElevationChange, 0.5, "CURB"},
                                   SurfaceSegment{3.0, SlopeKind::Grade, 0.0, "FLAT"}));
  EXPECT_THAT(section.SurfaceOf(Side::Right).segments, testing::SizeIs(1));
  EXPECT_DOUBLE_EQ(left.segments[0].Rise(), -0.24);
  EXPECT_DOUBLE_EQ(left.segments[1].Rise(), 0.125);
}

TEST(TemplateReader, TellsSidesAndSharedSettings) {
  const RoadTemplate section = ReadTemplate(
      "*SUBGRADE-R\nHSLOP2,2.5\nMOVESL,3,-2%,UP base WRAP\n*SUBGRADER\nMATERL,gravel\n"
      "*FILL-R\nFILDSL,1,6\nSERIES,1\nGUARDV,2.5\nFDITCH,1.5,2\n*FILL-L\nFILDSL,3,4\n"
      "*CUT-L\nSERIES,0\nBENCH2,7\n*CUT-R\nROCKSL,0.25\n");
  ASSERT_EQ(section.subgrade[1].size(), 1U);
  EXPECT_EQ(section.subgrade[1][0].high_slopes[1], 2.5);
  EXPECT_TRUE(section.subgrade[1][0].segments[0].up && section.subgrade[1][0].segments[0].wrap);
  ASSERT_EQ(section.subgrade[0].size(), 1U);  // the eleventh character is missing
  EXPECT_EQ(section.subgrade[0][0].material, "gravel");
  EXPECT_EQ(section.FillOf(Side::Right).slopes, (std::vector<SlopeRow>{{1, 6}}));
  EXPECT_EQ(section.FillOf(Side::Left).slopes, (std::vector<SlopeRow>{{3, 4}}));
  EXPECT_EQ(section.FillOf(Side::Right).ditch_kind, 2);
  EXPECT_EQ(section.FillOf(Side::Left).guard_vertical, 0.0);
  EXPECT_EQ(section.fill_settings.series, 1);
  EXPECT_EQ(section.cut_settings.series, 0);
  EXPECT_EQ(section.cut_settings.bench2, 7.0);
  EXPECT_EQ(section.CutOf(Side::Right).rock_slope, 0.25);
  EXPECT_EQ(section.CutOf(Side::Left).rock_slope, 1.0);
}

TEST(TemplateReader, KeepsFiveRowsAnd121Bytes) {
  std::string text = "*FILL-L\n";
  for (int i = 1; i <= 7; ++i)
    text += "FILDSL," + std::to_string(i) + "," + std::to_string(i) + "\n";
  const RoadTemplate rows = ReadTemplate(text);
  ASSERT_EQ(rows.FillOf(Side::Left).slopes.size(), kMostSlopeRows);
  EXPECT_EQ(rows.FillOf(Side::Left).slopes.back(), (SlopeRow{7, 7}));
  EXPECT_EQ(rows.FillOf(Side::Left).slopes[3], (SlopeRow{4, 4}));
  const RoadTemplate cut = ReadTemplate("*DITCH\nMOVESL,1,2," + std::string(200, 'x') + "\n");
  EXPECT_EQ(cut.ditch.at(0).description, std::string(121 - 11, 'x'));
}

TEST(TemplateReader, FindsCurbsAndMediansByName) {
  const RoadTemplate section = ReadTemplate(
      "*SURFACER\nMOVESL,3,-2%,EP\nINSERT,CURBLA1\nINSERT,MEDIAN,M 2\nINSERT,OTHER\n"
      "**CURB A1\nCBTOP ,0.15\nSLOPE ,MATCH\nROUND ,yes\n**CURBLB2\nSLOPE ,2.5\n"
      "**MEDIAN\nMNAME ,M 2\nMGRADE,1.5,-2,3,4\n");
  const auto& inserts = section.SurfaceOf(Side::Right).inserts;
  ASSERT_EQ(inserts.size(), 2U);
  EXPECT_EQ(inserts[0], (SurfaceInsert{SurfaceInsert::Kind::Curb, "A1", 1}));
  EXPECT_EQ(inserts[1], (SurfaceInsert{SurfaceInsert::Kind::Median, "M 2", 1}));
  ASSERT_NE(section.FindCurb("A1"), nullptr);
  EXPECT_EQ(section.FindCurb("A1")->slope_kind, Curb::Slope::Match);
  EXPECT_EQ(section.FindCurb("A1")->top, 0.15);
  ASSERT_NE(section.FindCurb("B2"), nullptr);
  EXPECT_EQ(section.FindCurb("B2")->slope, 2.5);
  ASSERT_NE(section.FindMedian("M 2"), nullptr);
  EXPECT_EQ(section.FindMedian("M 2")->grades.at(0).fourth, 4);
  EXPECT_EQ(section.FindMedian("M"), nullptr);
}

TEST(TemplateReader, ComparesKeysWithTheirPadding) {
  const RoadTemplate section =
      ReadTemplate("*ROW\nROWL,5\nROWL  ,6\nROWR  , 7\nrowr  ,8\n*NEW\nMOVESL,1,1,1\n\n");
  EXPECT_EQ(section.right_of_way.left, 6.0);
  EXPECT_EQ(section.right_of_way.right, 7.0);
  std::vector<int> lines;
  for (const LineNote& note : section.notes) lines.push_back(note.line);
  EXPECT_THAT(lines, testing::ElementsAre(2, 5, 6, 7));
}

TEST(TemplateReader, RemembersNumbersThatNoRoadHas) {
  EXPECT_EQ(ReadTemplate("*FILL-L\nFILDSL,99,3\n").line_out_of_range, 0);
  EXPECT_EQ(ReadTemplate("*FILL-L\nFILDSL,99,3\nFILDSL,1e999,3\n").line_out_of_range, 3);
  const RoadTemplate section = ReadTemplate("*SURFACEL\nMOVESL,3,-1e10:1,EP\nMOVESL,1e12,0,X\n");
  EXPECT_EQ(section.line_out_of_range, 2);
  EXPECT_EQ(section.notes.size(), 2U);
}

TEST(TemplateFile, NewOnesHaveTheirBytes) {
  TemplateDraft draft;
  draft.left = {{3.6, SlopeKind::Grade, -2.0, "EP"}, {0.0, SlopeKind::ElevationChange, 0.15, "TC"}};
  draft.right = {{2.0, SlopeKind::Ratio, 4.0, "DITCH"}};
  draft.fill_left = SlopeRow{99.0, 3.0};
  draft.cut_right = SlopeRow{2.0, 4.5};
  const std::string text = NewTemplateText(draft);
  EXPECT_EQ(text,
            "*SURFACEL\nOFFSET,0.00000,0.00000\nMOVESL,3.60000,-2.00000%%,EP\n"
            "MOVESL,0.00000,0.15000,TC\n"
            "*SURFACER\nOFFSET,0.00000,0.00000\nMOVESL,2.00000,25.00000%%,DITCH\n"
            "*FILL-L\nFILDSL,99.000,3.000\nRATIO ,1\nSMOOTH,1\nPIVOT ,0\nSERIES,0\nREPEAT,0\n"
            "TIE_EX,0\nEXDESC,\n*FILL-R\n"
            "*CUT-L\nRATIO ,1\nROCKSL,1.000\nRORDER,0\nSMOOTH,1\nSERIES,0\nDEPTH ,1\nBENCH1,0\n"
            "BENCH2,10.000\nBENCH3,1.00\nPIVOT ,0\nREPEAT,0\nTIE_EX,0\nEXDESC,\n"
            "*CUT-R\nCUTUSL,2.000,4.500\nROCKSL,1.000\nRORDER,0\n"
            "*SUPER\nLOWADJ,0\nEDGESP,0\nMAXDIF,7.0000\nLOWPT ,\nHIGHPT,\nLOWPT2,\nHIGHP2,\n"
            "*ROW\nRTAINL,0\nRTAINR,0\nROWL  ,0.000\nROWR  ,0.000\n");
  const RoadTemplate read = ReadTemplate(text);
  EXPECT_TRUE(read.notes.empty());
  EXPECT_EQ(read.SurfaceOf(Side::Left).segments, draft.left);
  const ScratchFolder folder;
  ASSERT_TRUE(WriteTemplate(SystemFiles(), folder.Path("new.tpl"), draft).ok());
  std::string written;
  ASSERT_TRUE(ReadWholeFile(SystemFiles(), folder.Path("new.tpl"), 1 << 20, written).ok());
  EXPECT_EQ(written, text);
}

TEST(TemplateFile, LosesNothingOnRewriting) {
  const ScratchFolder folder;
  const std::string path = folder.Path("kept.tpl");
  const std::string text = ReadRoadData("section_example.tpl") + "*NEW\nwhat,ever\r\nno end";
  ASSERT_TRUE(ReplaceWholeFile(SystemFiles(), path, text).ok());
  Road road;
  ASSERT_EQ(LoadTemplate(SystemFiles(), road, path), LoadTemplateResult::Loaded);
  ASSERT_TRUE(WriteTemplate(SystemFiles(), path, *road.section).ok());
  std::string again;
  ASSERT_TRUE(ReadWholeFile(SystemFiles(), path, 1 << 20, again).ok());
  EXPECT_EQ(again, text);
  (void)SystemFiles().Remove(path);
  EXPECT_EQ(LoadTemplate(SystemFiles(), road, path), LoadTemplateResult::NotOpened);
}

}  // namespace
}  // namespace tarvex
