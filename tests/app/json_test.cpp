// What --json prints, as another program reads it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "core/text/text.h"
#include "tests/app/json_reading.h"
#include "tests/app/program_run.h"

namespace tarvex {
namespace {

using testing::HasSubstr;

// Each line is an event of its own.
std::vector<JsonReading> Events(std::string_view lines) {
  std::vector<JsonReading> events;
  while (const auto line = TakeLine(lines)) {
    if (!line->empty()) events.emplace_back(*line);
  }
  return events;
}

TEST(JsonEvents, OfASessionSayWhatWasStored) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
  const auto ran = folder.Run("collect site.crd --receiver simulated --count 2 --json");
  EXPECT_EQ(ran.exitCode, 0) << ran.errors;
  const auto events = Events(ran.output);
  ASSERT_EQ(events.size(), 5U) << ran.output;
  const auto listed = JsonReading(folder.Run("points site.crd --json").output)["points"];
  std::size_t stored = 0;
  for (const JsonReading& event : events) {
    if (event["event"] == "stored") {
      EXPECT_EQ(event["point"], listed[stored++]);
    }
  }
  EXPECT_EQ(stored, 2U);
  EXPECT_EQ(events[0]["event"], "position");
  EXPECT_EQ(events[0]["position"]["solution"], "FIXED");
  EXPECT_EQ(events[4], JsonReading("{\"event\":\"ended\",\"end\":\"complete\",\"stored\":2,"
                                   "\"job\":\"site.crd\"}"));
}

TEST(JsonEvents, OfWorkOnAJobSayWhatBecameOfIt) {
  ProgramFolder folder;
  const auto event = [&folder](const std::string& line) {
    return JsonReading(folder.Run(line + " --json").output);
  };
  const JsonReading created = event("new site.crd --units us-feet");
  EXPECT_EQ(created["event"], "created");
  EXPECT_EQ(created["unit"], "us-feet");
  EXPECT_TRUE(created["system"].isNull());
  const JsonReading first = event("store site.crd a-1 5000.25 1 2 oak");
  EXPECT_EQ(first["event"], "stored");
  EXPECT_EQ(first["point"]["id"], "A_1");
  EXPECT_FALSE(first.Has("replaced"));
  const JsonReading second = event("store site.crd a-1 6000 1 2 --existing overwrite");
  EXPECT_EQ(second["replaced"], first["point"]);
  folder.Write("more.csv", "a-1,1,2,3,x\n7,1,2,3,y\nbad\n");
  const JsonReading imported = event("import site.crd more.csv --existing skip --skip-bad-lines");
  EXPECT_EQ(imported["stored"], 1);
  EXPECT_EQ(imported["skipped"], 1);
  EXPECT_EQ(imported["bad_lines"], 1);
  EXPECT_EQ(event("delete site.crd a-1")["point"], second["point"]);
}

TEST(JsonOfTheRawFile, HasTheFieldsByTheirNames) {
  ProgramFolder folder;
  ASSERT_EQ(folder.Run("new site.crd --system \"UTM/UTM WGS84 Zone 32\"").exitCode, 0);
  const auto ran = folder.Run(
      "collect site.crd --receiver simulated --description \"edge, oak\" --antenna-height 2 "
      "--json");
  const auto stored = Events(ran.output)[1];
  ASSERT_EQ(stored["event"], "stored") << ran.output;
  int seen = 0;
  for (const JsonReading& record :
       JsonReading(folder.Run("raw site.crd --json").output)["records"].values()) {
    if (record["record"] == "LS") {
      EXPECT_EQ(record["fields"]["rod_height"], 2.0);
    }
    if (!(record["record"] == "GPS")) continue;
    ++seen;
    const JsonReading fields = record["fields"];
    EXPECT_EQ(fields["point"], stored["point"]["id"].text());
    EXPECT_NEAR(fields["latitude"].number(), stored["position"]["latitude"].number(), 1e-9);
    EXPECT_NEAR(fields["longitude"].number(), stored["position"]["longitude"].number(), 1e-9);
    EXPECT_EQ(fields["description"], "edge, oak");
  }
  EXPECT_EQ(seen, 1);
}

TEST(JsonEvents, OfWhatIsWrongAreLinesOfTheErrorOutput) {
  ProgramFolder folder;
  for (const auto& [line, exitCode, text] :
       {std::tuple{"points no.crd --json", 1, "There is no job no.crd"},
        std::tuple{"points --json", 2, "JOB.crd is missing"},
        std::tuple{"points no.crd --json --jsno", 2, "There is no option --jsno. Did you mean"},
        std::tuple{"--json", 2, "There is no command"}}) {
    const auto ran = folder.Run(line);
    EXPECT_EQ(ran.exitCode, exitCode) << line;
    EXPECT_EQ(ran.output, "") << line;
    const auto events = Events(ran.errors);
    ASSERT_FALSE(events.empty()) << line;
    bool told = false;
    for (const JsonReading& event : events) {
      if (!(event["event"] == "error")) continue;
      told = true;
      EXPECT_THAT(event["text"].text(), HasSubstr(text)) << line;
    }
    EXPECT_TRUE(told) << ran.errors;
  }
}

}  // namespace
}  // namespace tarvex
