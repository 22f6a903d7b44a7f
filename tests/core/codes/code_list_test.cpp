#include "core/codes/code_list.h"

#include <gtest/gtest.h>

namespace tarvex {
namespace {

using Kind = CodeListProblem::Kind;

TEST(CodeList, ReadsACodeALineAndNamesWhatItLeavesOut) {
  std::vector<CodeListProblem> problems;
  const CodeList list = CodeList::Parse(
      "\xEF\xBB\xBF# codes of the office\r\n\r\nTREE  Tree, single\r\n  EP\tedge  of pavement \r\n"
      "tree again\nM\x1bH manhole\n" +
          std::string(32, 'X') + " too long\nBÖ Böschung\nTR2",
      problems);
  EXPECT_EQ(
      list.codes(),
      (std::vector<FieldCode>{
          {"TREE", "Tree, single"}, {"EP", "edge  of pavement"}, {"BÖ", "Böschung"}, {"TR2", ""}}));
  EXPECT_EQ(problems, (std::vector<CodeListProblem>{{Kind::Twice, 5, "tree"},
                                                    {Kind::NotText, 6, "M H"},
                                                    {Kind::TooLong, 7, std::string(32, 'X')}}));
  ASSERT_NE(list.Find("ep"), nullptr);
  EXPECT_EQ(list.Find("ep")->title, "edge  of pavement");
  EXPECT_EQ(list.Find("E"), nullptr);
  EXPECT_EQ(list.StartingWith("tr").size(), 2U);
  EXPECT_EQ(list.StartingWith("").size(), 4U);
  EXPECT_EQ(list.Nearest("TRE")->code, "TREE");
  EXPECT_EQ(list.Nearest("E"), nullptr);
  EXPECT_EQ(list.Nearest(""), nullptr);
  EXPECT_EQ(list.Nearest("HYDRANT"), nullptr);
}

}  // namespace
}  // namespace tarvex
