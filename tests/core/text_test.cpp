#include "core/text.h"

#include <gtest/gtest.h>

#include "core/fixed_text.h"
#include "core/last_error.h"
#include "core/string_table.h"

namespace tarvex {
namespace {

TEST(Text, IsNeverCutInsideACharacter) {
  const std::string text = "a\u00E9\u20AC\U0001F600z";  // 1 + 2 + 3 + 4 + 1 bytes
  const std::size_t expected[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 11, 11};
  for (std::size_t limit = 0; limit < std::size(expected); ++limit) {
    EXPECT_EQ(CutAtCharacter(text, limit).size(), expected[limit]) << limit;
  }
  EXPECT_EQ(CutAtCharacter("\xE9\xE9\xE9\xE9", 2).size(), 2U);  // Latin-1 is cut byte by byte
  EXPECT_EQ(CutAtCharacter("\x80\x80\x80\x80\x80", 4).size(), 4U);
}

TEST(Text, FixedFieldsEndAtTheFirstNul) {
  const FixedText<4> field(std::string_view("ab\0cd", 5));
  EXPECT_EQ(field.view(), "ab");
  EXPECT_EQ(FixedText<4>("12345").view(), "1234");
  EXPECT_EQ(FixedText<4>("123\u00E9").view(), "123");
}

TEST(Text, LinesEndAtLineFeed) {
  std::string_view rest = "one\r\n\ntwo\rx\nlast";
  EXPECT_EQ(TakeLine(rest), "one");
  EXPECT_EQ(TakeLine(rest), "");
  EXPECT_EQ(TakeLine(rest), "two\rx");
  EXPECT_EQ(TakeLine(rest), "last");
  EXPECT_EQ(TakeLine(rest), std::nullopt);
  EXPECT_EQ(OneLine("a\r\nb\tc\x7F"), "a  b c ");
}

TEST(Text, IsFoundWithoutRegardToCase) {
  EXPECT_EQ(FindIgnoringCase("UTM WGS84 Zone 32", "zone"), 10U);
  EXPECT_EQ(FindIgnoringCase("abc", "abcd"), std::string_view::npos);
  EXPECT_EQ(FindIgnoringCase("abc", ""), 0U);
}

TEST(StringTable, TakesALanguageFile) {
  StringTable table;
  table.Override("IDS_STRING2205=Projektion \"\r\nIDS_STRINGx=no\nnoise\nIDS_STRING9=%s von %s\n");
  EXPECT_EQ(table.Text(2205), "Projektion \"");
  EXPECT_EQ(table.Text(9, {"1", "2"}), "1 von 2");
  EXPECT_EQ(table.Text(9, {"1"}), "1 von %s");
  EXPECT_EQ(table.Text(9999), "IDS_STRING9999");
}

TEST(LastError, KeepsTheHistoryOfAFailure) {
  LastErrorRecord record;
  record.Set(29, {"No such file or directory"});
  EXPECT_EQ(record.Set(24, {"COM7:"}), 24);
  EXPECT_EQ(record.Get(), (LastError{24, {"COM7:"}}));
  ASSERT_EQ(record.History().size(), 2U);
  EXPECT_EQ(record.History()[0].code, 29);
  record.Clear();
  EXPECT_EQ(record.Get().code, 0);
}

}  // namespace
}  // namespace tarvex
