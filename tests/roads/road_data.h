// The vectors under tests/data/roads: see the README there for their source.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "core/text/text.h"
#include "platform/file.h"
#include "roads/centerline_file.h"

namespace tarvex {

inline std::string RoadData(const std::string& name) {
  return std::string(TARVEX_TEST_DATA) + "/roads/" + name;
}

inline std::string ReadRoadData(const std::string& name) {
  std::string text;
  EXPECT_TRUE(ReadWholeFile(SystemFiles(), RoadData(name), 1 << 24, text).ok()) << name;
  return text;
}

inline Road LoadRoad(const std::string& name) {
  Road road;
  EXPECT_TRUE(LoadCenterline(SystemFiles(), road, RoadData(name))) << name;
  return road;
}

/// The rows of a tab-separated table; its header line and `#` lines are left out.
inline std::vector<std::vector<std::string>> TableRows(const std::string& name) {
  const std::string text = ReadRoadData(name);
  std::string_view rest = text;
  std::vector<std::vector<std::string>> rows;
  bool header = true;
  while (const auto line = TakeLine(rest)) {
    if (line->empty() || line->starts_with('#')) continue;
    if (header) {
      header = false;
      continue;
    }
    std::vector<std::string> fields(1);
    for (const char c : *line) {
      if (c == '\t') {
        fields.emplace_back();
      } else {
        fields.back() += c;
      }
    }
    rows.push_back(std::move(fields));
  }
  EXPECT_FALSE(rows.empty()) << name;
  return rows;
}

}  // namespace tarvex
