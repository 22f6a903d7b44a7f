#include "core/text/field_cursor.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarvex {
namespace {

TEST(TextFields, SkipsAndTakes) {
  EXPECT_EQ(SkipFields("a,b,c", ',', 2), "c");
  EXPECT_EQ(SkipFields("a,b,c", ',', 3), "a,b,c");
  EXPECT_EQ(SkipFields("a,b", ',', 0), "a,b");
  EXPECT_EQ(FirstField("a,b", ','), "a");
  EXPECT_EQ(FirstField("ab", ','), "ab");
  EXPECT_EQ(FirstField(",b", ','), "");
}

TEST(FieldCursor, TakesEveryFieldOnceAndEmptyOnesToo) {
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"", {""}},        {"a", {"a"}},           {";", {"", ""}},
      {"a;", {"a", ""}}, {";;b", {"", "", "b"}}, {"a,b;c", {"a,b", "c"}}};
  for (const auto& [text, expected] : cases) {
    std::vector<std::string> fields;
    FieldCursor cursor(text, ';');
    std::string_view field;
    while (cursor.Take(field)) fields.emplace_back(field);
    EXPECT_EQ(fields, expected) << text;
    EXPECT_EQ(cursor.Next(), "");
    EXPECT_FALSE(cursor.NextIsEmpty()) << "there is none";
  }
}

TEST(FieldCursor, SkipsNoFurtherThanTheEndAndKeepsTheRest) {
  FieldCursor cursor("a,b,,d");
  ASSERT_TRUE(cursor.Skip(2));
  EXPECT_EQ(cursor.rest(), ",d");
  EXPECT_TRUE(cursor.NextIsEmpty());
  EXPECT_FALSE(cursor.Skip(3));
  EXPECT_EQ(cursor.rest(), "");
}

}  // namespace
}  // namespace tarvex
