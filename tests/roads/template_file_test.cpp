#include "roads/template_file.h"
#include "roads/template_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "roads/template_writer.h"
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
  EXPECT_EQ(section.subgrade[1][0].highSlopes[1], 2.5);
  EXPECT_TRUE(section.subgrade[1][0].segments[0].up && section.subgrade[1][0].segments[0].wrap);
  ASSERT_EQ(section.subgrade[0].size(), 1U);  // the eleventh character is missing
  EXPECT_EQ(section.subgrade[0][0].material, "gravel");
  EXPECT_EQ(section.FillOf(Side::Right).slopes, (std::vector<SlopeRow>{{1, 6}}));
  EXPECT_EQ(section.FillOf(Side::Left).slopes, (std::vector<SlopeRow>{{3, 4}}));
  EXPECT_EQ(section.FillOf(Side::Right).ditchKind, 2);
  EXPECT_EQ(section.FillOf(Side::Left).guardVertical, 0.0);
  EXPECT_EQ(section.fillSettings.series, 1);
  EXPECT_EQ(section.cutSettings.series, 0);
  EXPECT_EQ(section.cutSettings.benchHeight, 7.0);
  EXPECT_EQ(section.CutOf(Side::Right).rockSlope, 0.25);
  EXPECT_EQ(section.CutOf(Side::Left).rockSlope, 1.0);
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
  EXPECT_EQ(section.FindCurb("A1")->slopeKind, Curb::Slope::Match);
  EXPECT_EQ(section.FindCurb("A1")->top, 0.15);
  ASSERT_NE(section.FindCurb("B2"), nullptr);
  EXPECT_EQ(section.FindCurb("B2")->slope, 2.5);
  ASSERT_NE(section.FindMedian("M 2"), nullptr);
  EXPECT_EQ(section.FindMedian("M 2")->grades.at(0).codes[1], 4);
  EXPECT_EQ(section.FindMedian("M"), nullptr);
}

TEST(TemplateReader, ComparesKeysWithTheirPadding) {
  const RoadTemplate section =
      ReadTemplate("*ROW\nROWL,5\nROWL  ,6\nROWR  , 7\nrowr  ,8\n*NEW\nMOVESL,1,1,1\n\n");
  EXPECT_EQ(section.rightOfWay.left, 6.0);
  EXPECT_EQ(section.rightOfWay.right, 7.0);
  std::vector<int> lines;
  for (const LineNote& note : section.notes) lines.push_back(note.line);
  EXPECT_THAT(lines, testing::ElementsAre(2, 5, 6, 7));
}

TEST(TemplateReader, RemembersNumbersThatNoRoadHas) {
  EXPECT_EQ(ReadTemplate("*FILL-L\nFILDSL,99,3\n").lineOutOfRange, 0);
  EXPECT_EQ(ReadTemplate("*FILL-L\nFILDSL,99,3\nFILDSL,1e999,3\n").lineOutOfRange, 3);
  const RoadTemplate section = ReadTemplate("*SURFACEL\nMOVESL,3,-1e10:1,EP\nMOVESL,1e12,0,X\n");
  EXPECT_EQ(section.lineOutOfRange, 2);
  EXPECT_EQ(section.notes.size(), 2U);
}

TEST(TemplateFile, NewOnesHaveTheirBytes) {
  RoadTemplate section;
  Surface& left = section.surface[0];
  left.segments = {{3.6, SlopeKind::Grade, -2.0, "EP"},
                   {0.0, SlopeKind::ElevationChange, 0.15, "TC"}};
  left.inserts = {{SurfaceInsert::Kind::Median, "M 2", 0}, {SurfaceInsert::Kind::Curb, "A1", 2}};
  section.surface[1].segments = {{2.0, SlopeKind::Ratio, -4.0, "DITCH"}};
  section.fill[0].slopes = {{99.0, 3.0}};
  section.cut[1].slopes = {{2.0, 4.5}};
  const std::string text = TemplateText(section);
  EXPECT_EQ(text,
            "*SURFACEL\nOFFSET,0.00000,0.00000\nINSERT,MEDIAN,M 2\n"
            "MOVESL,3.60000,-2.00000%%,EP\nMOVESL,0.00000,0.15000,TC\nINSERT,CURBLA1\n"
            "*SURFACER\nOFFSET,0.00000,0.00000\nMOVESL,2.00000,-0.50000,DITCH\n"
            "*FILL-L\nFILDSL,99.000,3.000\nRATIO ,1\nSMOOTH,1\nPIVOT ,0\nSERIES,0\nREPEAT,0\n"
            "TIE_EX,0\nEXDESC,\n*FILL-R\n"
            "*CUT-L\nRATIO ,1\nROCKSL,1.000\nRORDER,0\nSMOOTH,1\nSERIES,0\nDEPTH ,1\nBENCH1,0\n"
            "BENCH2,10.000\nBENCH3,1.00\nPIVOT ,0\nREPEAT,0\nTIE_EX,0\nEXDESC,\n"
            "*CUT-R\nCUTUSL,2.000,4.500\nROCKSL,1.000\nRORDER,0\n"
            "*SUPER\nLOWADJ,0\nEDGESP,0\nMAXDIF,7.0000\nLOWPT ,\nHIGHPT,\nLOWPT2,\nHIGHP2,\n"
            "*ROW\nRTAINL,0\nRTAINR,0\nROWL  ,0.000\nROWR  ,0.000\n");
  const RoadTemplate read = ReadTemplate(text);
  EXPECT_TRUE(read.notes.empty());
  EXPECT_EQ(read.SurfaceOf(Side::Left), left);
  // The rise is what a ratio means: it stays.
  EXPECT_EQ(read.SurfaceOf(Side::Right).segments.at(0).Rise(),
            section.surface[1].segments[0].Rise());
  const ScratchFolder folder;
  ASSERT_TRUE(WriteTemplate(SystemFiles(), folder.Path("new.tpl"), section).ok());
  std::string written;
  ASSERT_TRUE(ReadWholeFile(SystemFiles(), folder.Path("new.tpl"), 1 << 20, written).ok());
  EXPECT_EQ(written, text);
}

// Everything that a template can hold, through the fields and back.
TEST(TemplateFile, EveryFieldIsWrittenAndReadAgain) {
  RoadTemplate section = ReadTemplate(
      "*SURFACEL\nOFFSET,0.5,-0.1\nMOVESL,3.6,-2%,EP\nINSERT,CURBLLIP\nMOVESL,1,0.2,X\n"
      "*SURFACER\nINSERT,MEDIAN,M\n"
      "*SUBGRADE-L\nMATERL,gravel\nHPIVOT,CL\nHSTYPE,1\nHSLOPE,1.5\nHSLOP2,2.5\nHSLOP3,3.5\n"
      "LSLOPE,4\nLSLOP2,5\nLSLOP3,6\nLPIVOT,EP\nLSTYPE,2\nSUBDIR,1\nWRAPHT,0.3\nOFFSET,1,-0.5\n"
      "MOVESL,3,-2%,UP base WRAP\n*SUBGRADE-R\nMATERL,sand\n"
      "*FILL-L\nFILDSL,1,6\nFILDSL,3,4\nRATIO ,0\nSMOOTH,0\nSERIES,1\nPIVOT ,2\nTIE_EX,1\n"
      "EXDESC,toe\nREPEAT,3\nFDITCH,1.5,2\nGUARDV,2.5\nGUARDH,0.6\n*FILL-R\nFILDSL,2,5\n"
      "*CUT-L\nCUTUSL,2,4\nROCKSL,0.25\nRORDER,1\nRATIO ,0\nSMOOTH,0\nSERIES,1\nDEPTH ,0\n"
      "BENCH1,1\nBENCH2,7\nBENCH3,2\nPIVOT ,1\nTIE_EX,1\nEXDESC,top\nREPEAT,1\n"
      "*CUT-R\nCUTUSL,99,2\nROCKSL,0.5\nRORDER,2\n"
      "*SUPER\nLOWADJ,1\nMAXDIF,8\nLOWPT ,EP\nHIGHPT,EP\nLOWPT2,ES\nHIGHP2,ES\n"
      "*ROW\nRTAINL,1\nRTAINR,2\nROWL  ,20\nROWR  ,25.5\n*BERM\nDEPTH ,0.4\nMOVESL,1,-4%,B\n"
      "*DITCH\nMOVESL,1.2,-0.3,FL\n"
      "**CURBLLIP\nCBTOP ,0.1\nCBBASE,0.2\nSLOPE ,MATCH\nCBTAPR,0.3\nCBHGT1,0.4\nCBHGT2,0.5\n"
      "CBDROP,0.6\nCBWIDE,0.7\nCBUNIT,1\nCBTYPE,2\nMATERL,stone\nINTGRL,yes\nROUND ,no\n"
      "**MEDIAN\nMNAME ,M\nMGRADE,1.5,-2,3,4\n");
  ASSERT_TRUE(section.notes.empty());
  EXPECT_EQ(section.FindCurb("LIP")->height2, 0.5);
  RoadTemplate again = ReadTemplate(TemplateText(section));
  EXPECT_TRUE(again.notes.empty());
  again.text = section.text;
  EXPECT_EQ(again, section) << TemplateText(section);

  // A changed field reaches the file.
  const ScratchFolder folder;
  section.surface[0].segments[0].width = 4.25;
  ASSERT_TRUE(WriteTemplate(SystemFiles(), folder.Path("changed.tpl"), section).ok());
  Road road;
  ASSERT_EQ(LoadTemplate(SystemFiles(), road, folder.Path("changed.tpl")),
            LoadTemplateResult::Loaded);
  EXPECT_EQ(road.section->surface, section.surface);
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
