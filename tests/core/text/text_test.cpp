#include "core/text/text.h"

#include <gtest/gtest.h>

#include "core/text/fixed_text.h"
#include "core/text/last_error.h"
#include "core/text/printable.h"
#include "core/text/string_table.h"

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

TEST(Printable, LeavesNothingThatATerminalObeys) {
  const std::pair<std::string, std::string> cases[] = {
      {"EVIL\x1b[2J\x1b]0;owned\x07", "EVIL [2J ]0;owned "},
      {"503 \xC2\x9B"
       "31m",
       "503  31m"},  // CSI as UTF-8
      {"x\x9B"
       "31m\x90q\x9C",
       "x?31m?q?"},  // CSI, DCS, ST as single bytes
      {"\xE0\x82\x9B"
       "31m",
       "\xE0??31m"},  // longer than needed
      {"\xF0\x80\x82\x9B"
       "31m",
       "\xF0???31m"},                 // the same of four bytes
      {"\xED\xA0\x80", "\xED\xA0?"},  // half a surrogate pair
      {"cut \xC2", "cut \xC2"},       // nothing behind it
      {"\xC2\x1B\x9B", "\xC2 ?"},     // parts do not join
      {"Stra\xC3\x9F"
       "e \xC3\x9B \xE2\x82\xAC \xF0\x9F\x93\x90",
       "Stra\xC3\x9F"
       "e \xC3\x9B \xE2\x82\xAC \xF0\x9F\x93\x90"},  // letters with such bytes
      {"T\xFCr", "T\xFCr"},                          // a letter of Latin 1
      {"a\tb\r\nc\rd", "a b  c d"}};
  for (const auto& [text, shown] : cases) {
    EXPECT_EQ(PrintableLine(text), shown);
    EXPECT_EQ(PrintableLine(shown), shown) << "once is enough";
  }
  EXPECT_EQ(PrintableText("a\tb\r\nc\rd\n\x1b"), "a\tb\r\nc d\n ");
  EXPECT_TRUE(IsPlainText("a\tb\nc ~"));
  for (const char* const text : {"\x1b", "\x7F", "\r", "\xC3\xA9"}) EXPECT_FALSE(IsPlainText(text));
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
