// Tables of cases: tab-separated text with a heading line; lines that begin with # are remarks.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "core/text/number_text.h"
#include "core/text/text.h"
#include "core/units/units.h"
#include "platform/file.h"

namespace tarvex {

inline std::string TestBytes(const std::string& name) {
  std::string bytes;
  const FileStatus status =
      ReadWholeFile(SystemFiles(), std::string(TARVEX_TEST_DATA) + "/" + name, 1 << 24, bytes);
  EXPECT_TRUE(status.ok()) << name;
  return bytes;
}

class CaseRow {
 public:
  explicit CaseRow(std::map<std::string, std::string> fields) : fields_(std::move(fields)) {}
  const std::string& Text(const std::string& column) const {
    const auto at = fields_.find(column);
    EXPECT_NE(at, fields_.end()) << column;
    static const std::string kNone;
    return at == fields_.end() ? kNone : at->second;
  }
  double Number(const std::string& column) const { return LeadingDouble(Text(column)); }
  double Radians(const std::string& column) const { return Number(column) * kRadiansPerDegree; }

 private:
  std::map<std::string, std::string> fields_;
};

inline std::vector<std::string> SplitAt(std::string_view line, char separator) {
  std::vector<std::string> parts;
  for (;;) {
    const std::size_t end = line.find(separator);
    parts.emplace_back(line.substr(0, end));
    if (end == std::string_view::npos) return parts;
    line.remove_prefix(end + 1);
  }
}

inline std::vector<CaseRow> ReadCaseTable(const std::string& name) {
  const std::string bytes = TestBytes(name);
  std::string_view rest = bytes;
  std::vector<std::string> heading;
  std::vector<CaseRow> rows;
  while (const auto line = TakeLine(rest)) {
    if (line->empty() || line->starts_with('#')) continue;
    const auto fields = SplitAt(*line, '\t');
    if (heading.empty()) {
      heading = fields;
      continue;
    }
    std::map<std::string, std::string> row;
    for (std::size_t i = 0; i < heading.size() && i < fields.size(); ++i)
      row[heading[i]] = fields[i];
    rows.emplace_back(std::move(row));
  }
  EXPECT_FALSE(rows.empty()) << name;
  return rows;
}

}  // namespace tarvex
