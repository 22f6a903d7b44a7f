#include "core/codes/line_work.h"

#include <gtest/gtest.h>

namespace tarvex {
namespace {

using enum LineAction;
using Kind = LineProblem::Kind;

CodeList Codes() {
  std::vector<CodeListProblem> problems;
  return CodeList::Parse("EP edge of pavement\nMH2 manhole of type 2\nTREE\n", problems);
}

TEST(LineWork, TakesADescriptionApart) {
  const CodeList codes = Codes();
  const struct {
    const char* description;
    FieldCoding coding;
  } cases[] = {
      {"EP1 B", {"EP", "1", {Begin}, ""}},
      {"ep1  b bc  B left side", {"ep", "1", {Begin, CurveBegin}, "left side"}},
      {"EP", {"EP", "", {}, ""}},
      {"MH2 E", {"MH2", "", {End}, ""}},
      {"MH21", {"MH", "21", {}, ""}},
      {"TREE 12 B", {"TREE", "", {}, "12 B"}},
      // Not in the list: line work only when nothing else is said.
      {"FE3 EC CL", {"FE", "3", {CurveEnd, Close}, ""}},
      {"corner C of the house", {"corner", "", {}, "C of the house"}},
      {"12 B", {"12", "", {Begin}, ""}},
      {"B", {"B", "", {}, ""}},
      {"\t EP\tB\r\n", {"EP", "", {Begin}, ""}},
      {"EP1 Bö", {"EP", "1", {}, "Bö"}},
      {"Ö7 B", {"Ö", "7", {Begin}, ""}},
      {"", {}},
      {" \t ", {}},
  };
  for (const auto& [description, coding] : cases) {
    EXPECT_EQ(ParseFieldCoding(description, codes), coding) << description;
  }
  const FieldCoding nasty = ParseFieldCoding(std::string("EP\0 B", 5), codes);
  EXPECT_EQ(nasty.code, std::string("EP\0", 3));
}

TEST(LineWork, LeavesToTheNextPointWhatGoesOn) {
  const CodeList codes = Codes();
  EXPECT_EQ(DescriptionOfNextPoint("EP1 B BC left", codes), "EP1 left");
  EXPECT_EQ(DescriptionOfNextPoint("FE3 CL", codes), "FE3");
  EXPECT_EQ(DescriptionOfNextPoint("corner C of the house", codes), "corner C of the house");
  EXPECT_EQ(DescriptionOfNextPoint(" tree  7", codes), " tree  7");
}

TEST(LineWork, NamesTheCodeThatWasProbablyMeant) {
  const CodeList codes = Codes();
  EXPECT_EQ(UnknownCodeWarning("TREES old", codes),
            "\"TREES\" is not in the job's list of codes; TREE?");
  EXPECT_EQ(UnknownCodeWarning("HYDRANT", codes), "\"HYDRANT\" is not in the job's list of codes.");
  for (const char* known : {"tree old", "EP17 B", "MH2", "", " "}) {
    EXPECT_EQ(UnknownCodeWarning(known, codes), "") << known;
  }
  EXPECT_EQ(UnknownCodeWarning("HYDRANT", CodeList()), "");
}

// Two edges measured in turn, a curve in one of them, a tree between, a fence that is closed.
TEST(LineWork, DrawsSeveralLinesAtATime) {
  const std::vector<std::string> descriptions = {
      "EP1 B", "EP2 B", "TREE",  "EP1 BC", "ep1",   "EP2",   "EP1 EC", "FE B",
      "FE",    "FE CL", "EP2 E", "EP2",    "EP2 C", "EP1 B", "EP1",
  };
  const LineWork work = DrawLines(descriptions, Codes());
  EXPECT_TRUE(work.problems.empty());
  EXPECT_EQ(work.lines,
            (std::vector<FieldLine>{
                {"EP", "1", false, {{0}, {3, true}, {4, true}, {6}}},
                {"EP", "2", false, {{1}, {5}, {10}, {12}}},  // 11 is a point behind the end
                {"FE", "", true, {{7}, {8}, {9}}},
                {"EP", "1", false, {{13}, {14}}},
            }));
}

TEST(LineWork, NamesActionsThatMakeNoSense) {
  const std::vector<std::string> descriptions = {
      "EP C",    "EP B",  "EP EC", "EP BC", "EP EC",  // 0-4: a curve of two points
      "EP BC",   "EP BC", "EP E",                     // 5-7: two curves, none ended
      "TREE B",  "FE CL",                             // 8, 9
      "EP B CL", "EP C",                              // 10, 11: a line of one point, goes on
  };
  const LineWork work = DrawLines(descriptions, Codes());
  EXPECT_EQ(work.problems, (std::vector<LineProblem>{{Kind::NothingOpen, 0},
                                                     {Kind::CurveNotBegun, 2},
                                                     {Kind::CurveTooShort, 4},
                                                     {Kind::CurveNotEnded, 6},
                                                     {Kind::CurveNotEnded, 7},
                                                     {Kind::SinglePoint, 8},
                                                     {Kind::NothingOpen, 9}}));
  ASSERT_EQ(work.lines.size(), 2U);
  EXPECT_EQ(work.lines[0].vertices.size(), 7U);
  for (const LineVertex& vertex : work.lines[0].vertices) EXPECT_FALSE(vertex.curveToNext);
  EXPECT_EQ(work.lines[1], (FieldLine{"EP", "", false, {{10}, {11}}}));
}

}  // namespace
}  // namespace tarvex
