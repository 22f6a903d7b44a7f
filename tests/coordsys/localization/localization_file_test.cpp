#include "coordsys/localization/localization_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/codec/xml_reader.h"
#include "core/codec/xml_writer.h"
#include "tests/coordsys/case_table.h"
#include "tests/support/memory_files.h"
#include "tests/support/scratch_folder.h"

namespace tarvex {
namespace {

LocalizationPoint SamplePoint() {
  return {.gnss = {48.0 * kRadiansPerDegree, -122.5 * kRadiansPerDegree, 312.25},
          .localX = 1000.5,
          .localY = 2000.25,
          .localZ = 100.125,
          .hrms = 0.012,
          .vrms = 0.02,
          .useHorizontal = 'Y',
          .useVertical = 'N',
          .description = "IRON PIN"};
}

const std::string kGolden =
    "<?xml version=\"1.0\" encoding=\"us-ascii\" ?>\n"
    "<morwend_xml version=\"1.0\">\n"
    "<table>\n"
    "<record id=\"Localization Points\" >\n"
    "<record id=\"Point 1\" >\n"
    "<value name=\"Lat\" value=\"48.0000000000000\"></value>\n"
    "<value name=\"Lon\" value=\"-122.5000000000000\"></value>\n"
    "<value name=\"Ellipsoid_Elv\" value=\"312.2500000000000\"></value>\n"
    "<value name=\"Local_X\" value=\"1000.5000000000000\"></value>\n"
    "<value name=\"Local_Y\" value=\"2000.2500000000000\"></value>\n"
    "<value name=\"Local_Z\" value=\"100.1250000000000\"></value>\n"
    "<value name=\"HRMS\" type=\"double\" value=\"0.012\"></value>\n"
    "<value name=\"VRMS\" type=\"double\" value=\"0.02\"></value>\n"
    "<value name=\"Use_Horizontal\" value=\"Yes\"></value>\n"
    "<value name=\"Use_Vertical\" value=\"No\"></value>\n"
    "<value name=\"Description\" value=\"IRON PIN\"></value>\n"
    "</record>\n"
    "<value name=\"Units\" value=\"WGS84, Decimal Degrees, Metric\"></value>\n"
    "</record>\n"
    "</table>\n"
    "</morwend_xml>\n";

TEST(LocalizationFile, IsWrittenByteForByte) {
  EXPECT_EQ(LocalizationText({SamplePoint()}, DistanceUnit::Metres), kGolden);
}

TEST(LocalizationFile, LocalCoordinatesAreMetresInTheFile) {
  LocalizationPoint point = SamplePoint();
  point.localX = 3280.833333333;
  const std::string text = LocalizationText({point}, DistanceUnit::UsSurveyFeet);
  EXPECT_NE(text.find("\"Local_X\" value=\"1000.0000000000"), std::string::npos) << text;
  LocalizationFault fault;
  const auto read = ParseLocalization(text, DistanceUnit::UsSurveyFeet, fault);
  ASSERT_TRUE(read.has_value()) << fault.text;
  EXPECT_NEAR(read->points[0]->localX, 3280.833333333, 1e-8);
}

TEST(LocalizationFile, StopsAtTheFirstEmptySlotAndKnowsOnlyACapitalY) {
  LocalizationPoint point = SamplePoint();
  point.useHorizontal = 'y';
  const std::string text =
      LocalizationText({point, std::nullopt, SamplePoint()}, DistanceUnit::Metres);
  EXPECT_NE(text.find("\"Use_Horizontal\" value=\"No\""), std::string::npos);
  EXPECT_NE(text.find("Point 1"), std::string::npos);
  EXPECT_EQ(text.find("Point 2"), std::string::npos);
}

TEST(LocalizationFile, ComesBackWithEveryCharacter) {
  for (const std::string description :
       {"", "a & b < c > \"d\" 'e'", "Grenzstein \xC3\xA4\xC3\xB6 \xE2\x82\xAC \xF0\x9F\x93\x8D",
        "two\nlines\tand a tab", "]]> <!-- --> &#65;"}) {
    LocalizationPoint point = SamplePoint();
    point.description = description;
    const std::string text = LocalizationText({point, point}, DistanceUnit::Metres);
    for (const char c : text) ASSERT_TRUE(c == '\n' || (c >= 0x20 && c < 0x7F)) << text;
    LocalizationFault fault;
    const auto read = ParseLocalization(text, DistanceUnit::Metres, fault);
    ASSERT_TRUE(read.has_value()) << fault.line << fault.text;
    ASSERT_EQ(read->points.size(), 2U);
    EXPECT_EQ(read->points[1]->description, description);
    EXPECT_EQ(LocalizationText(read->points, DistanceUnit::Metres), text);
  }
  LocalizationPoint latin = SamplePoint();
  latin.description = "caf\xE9";
  EXPECT_NE(LocalizationText({latin}, DistanceUnit::Metres).find("caf&#233;"), std::string::npos);
}

TEST(LocalizationFile, ReadsWhatOtherWritersMayMakeOfIt) {
  const std::string other =
      "\xEF\xBB\xBF<?xml version='1.0' encoding='ISO-8859-1'?>\r\n<!-- by hand -->\r\n<morwend_xml>"
      "<table><record id='Localization Points'>\r\n"
      "<value value='WGS84, Decimal Degrees, Metric' name='Units'/>"
      "<value name='Zone' value='12'/><value name='3TM' value='Yes'/>"
      "<record id='any'><value value='48.5' name='Lat'/><value name='Lon' value='7'/>"
      "<value name='Ellipsoid_Elv' value='1e2'/><value name='Local_X' value='1'/>"
      "<value name='Local_Y' value='2'/><value name='Local_Z' value='3'/>"
      "<value name='Use_Horizontal' value='Yes'/><value name='Use_Vertical' value='No'/>"
      "<value name='Description' value='caf\xE9 &#xe9; "
      "&apos;'/></record></record></table></morwend_xml>\r\n\r\n";
  LocalizationFault fault;
  const auto read = ParseLocalization(other, DistanceUnit::Metres, fault);
  ASSERT_TRUE(read.has_value()) << fault.line << ": " << fault.text;
  ASSERT_EQ(read->points.size(), 1U);
  EXPECT_EQ(read->points[0]->gnss.heightM, 100.0);
  EXPECT_EQ(read->points[0]->description, "caf\xC3\xA9 \xC3\xA9 '");
  EXPECT_EQ(read->points[0]->useVertical, 'N');
  ASSERT_EQ(read->settings.size(), 2U);
  EXPECT_EQ(read->settings[1], (std::pair<std::string, std::string>{"3TM", "Yes"}));
}

// Texts as a writer without escapes puts them.
TEST(LocalizationFile, ReadsTextsThatWereWrittenAsTheyAre) {
  for (const std::string text :
       {"BM & bolt", "a < b > c", "3/4\" bolt", "\"", "\"/>", "\"></value>", "x\" y=\"z", "A&B;C",
        "\"& <!-- \"</record>", "&&#;&"}) {
    for (const std::string end : {"\n", "\r\n"}) {
      std::string document;
      for (std::string_view rest = kGolden; const auto line = TakeLine(rest);) {
        document += std::string(*line) + end;
      }
      document.replace(document.find("IRON PIN"), 8, text);
      LocalizationFault fault;
      const auto read = ParseLocalization(document, DistanceUnit::Metres, fault);
      ASSERT_TRUE(read.has_value()) << text << ": " << fault.line << fault.text;
      EXPECT_EQ(read->points[0]->description, text);
      const std::string again = LocalizationText(read->points, DistanceUnit::Metres);
      const auto back = ParseLocalization(again, DistanceUnit::Metres, fault);
      ASSERT_TRUE(back.has_value()) << again;
      EXPECT_EQ(back->points, read->points);
    }
  }
  // Attributes behind the value, and a second element on the line, stay what they are.
  std::string other = kGolden;
  other.replace(other.find(" value=\"IRON PIN\"></value>"), 26,
                " value=\"PIN\" type=\"text\"></value><value name=\"More\" value=\"1\"></value>");
  LocalizationFault fault;
  const auto read = ParseLocalization(other, DistanceUnit::Metres, fault);
  ASSERT_TRUE(read.has_value()) << fault.text;
  EXPECT_EQ(read->points[0]->description, "PIN");
}

TEST(LocalizationFile, ControlCharactersBecomeBlanks) {
  std::string text = kGolden;
  text.replace(text.find("IRON PIN"), 8, "a&#27;[2J&#x7;b");
  LocalizationFault fault;
  const auto read = ParseLocalization(text, DistanceUnit::Metres, fault);
  ASSERT_TRUE(read.has_value()) << fault.text;
  EXPECT_EQ(read->points[0]->description, "a [2J b");
}

TEST(LocalizationFile, EveryCutIsRefusedWithALine) {
  for (std::size_t length = 0; length + 1 < kGolden.size(); ++length) {
    LocalizationFault fault;
    ASSERT_FALSE(
        ParseLocalization(kGolden.substr(0, length), DistanceUnit::Metres, fault).has_value())
        << length;
    ASSERT_GE(fault.line, 1) << length;
    ASSERT_FALSE(fault.text.empty());
  }
}

TEST(LocalizationFile, DamageIsNamedWithItsLine) {
  struct Case {
    const char* from;
    const char* to;
    int line;
    const char* says;
  };
  const Case cases[] = {
      {"48.0000000000000", "48,0", 6, "\"Lat\""},
      {"48.0000000000000", "91", 6, "out of range"},
      {"-122.5000000000000", "nan", 7, "\"Lon\""},
      {"\"Local_Y\"", "\"Local_Q\"", 5, "\"Local_Y\""},
      {"value=\"Yes\"", "value=\"maybe\"", 5, "maybe"},
      {"Localization Points", "Something else", 4, "not a localization"},
      {"Decimal Degrees", "Grads", 4, "not a localization"},
      {"<table>", "<tables>", 3, "<table>"},
      {"</record>\n<value", "<value", 19, "record or a value"},
      {"\"IRON PIN\"", "\"IRON PIN", 16, ""},
      {"</morwend_xml>\n", "</morwend_xml><more>", 21, "follows the end"},
      {"<table>", "words <table>", 3, "text outside"},
  };
  for (const Case& c : cases) {
    std::string text = kGolden;
    const std::size_t at = text.find(c.from);
    ASSERT_NE(at, std::string::npos);
    text.replace(at, std::string(c.from).size(), c.to);
    LocalizationFault fault;
    EXPECT_FALSE(ParseLocalization(text, DistanceUnit::Metres, fault).has_value()) << c.to;
    EXPECT_EQ(fault.line, c.line) << c.to << ": " << fault.text;
    EXPECT_NE(fault.text.find(c.says), std::string::npos) << fault.text;
  }
  LocalizationFault fault;
  EXPECT_FALSE(ParseLocalization("[PointsList]\n1,2,3\n", DistanceUnit::Metres, fault).has_value());
  EXPECT_EQ(fault.Text("site.loc").substr(0, 17), "site.loc, line 1:");
  std::string deep = "<morwend_xml><table>";
  for (int i = 0; i < 100'000; ++i) deep += "<record >";
  EXPECT_FALSE(ParseLocalization(deep, DistanceUnit::Metres, fault).has_value());
}

TEST(LocalizationFile, IsSavedWholeOrNotAtAll) {
  const ScratchFolder folder;
  const std::string path = folder.Path("site.loc");
  EXPECT_EQ(SaveLocalization(SystemFiles(), path, nullptr, DistanceUnit::Metres),
            SaveLocalizationResult::NothingWritten);
  EXPECT_FALSE(SystemFiles().Exists(path));
  LocalizationList list = {SamplePoint()};
  EXPECT_EQ(SaveLocalization(SystemFiles(), path, &list, DistanceUnit::Metres),
            SaveLocalizationResult::Saved);
  list[0]->localZ = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(SaveLocalization(SystemFiles(), path, &list, DistanceUnit::Metres),
            SaveLocalizationResult::NothingWritten);
  EXPECT_EQ(SaveLocalization(SystemFiles(), "/nowhere/site.loc", &list, DistanceUnit::Metres),
            SaveLocalizationResult::NothingWritten);
  LocalizationFault fault;
  const auto read = LoadLocalization(SystemFiles(), path, DistanceUnit::Metres, fault);
  ASSERT_TRUE(read.has_value());
  EXPECT_EQ(read->points[0]->description, "IRON PIN");
  EXPECT_FALSE(
      LoadLocalization(SystemFiles(), path + "x", DistanceUnit::Metres, fault).has_value());
  EXPECT_EQ(fault.line, 0);
  (void)SystemFiles().Remove(path);
}

// Whatever goes wrong at whichever step of saving, the old file or the new one is there.
TEST(LocalizationFile, ACrashWhileSavingLeavesTheOldFileOrTheNew) {
  const std::string path = "/job/site.loc";
  const LocalizationList before = {SamplePoint()};
  LocalizationList after = before;
  after[0]->description = "MOVED";
  const std::string oldText = LocalizationText(before, DistanceUnit::Metres);
  const std::string newText = LocalizationText(after, DistanceUnit::Metres);
  for (const Mishap mishap : {Mishap::Fails, Mishap::DiskFull, Mishap::Killed, Mishap::PowerLoss}) {
    for (int step = 1;; ++step) {
      MemoryFiles files;
      ASSERT_EQ(SaveLocalization(files, path, &before, DistanceUnit::Metres),
                SaveLocalizationResult::Saved);
      files.Restart(0);
      files.Expect(mishap, step);
      const auto result = SaveLocalization(files, path, &after, DistanceUnit::Metres);
      if (!files.happened()) break;
      files.Restart(static_cast<unsigned>(step));
      const std::string left = files.Bytes(path);
      EXPECT_TRUE(left == oldText || left == newText) << step;
      if (result == SaveLocalizationResult::Saved) {
        EXPECT_EQ(left, newText);
      }
      ASSERT_LT(step, 50);
    }
  }
}

}  // namespace
}  // namespace tarvex
