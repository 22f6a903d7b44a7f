// The forms in which a report of stakes leaves the program.
#include <array>
#include <string>
#include <vector>

#include "app/workflow/stake_report.h"
#include "core/text/number_text.h"
#include "core/text/printable.h"

namespace tarvex {
namespace {

constexpr int kDecimals = 4;

std::string Number(double value) {
  return FixedNumber(value, kDecimals);
}

std::string NumberWhere(bool known, double value) {
  return known ? Number(value) : "";
}

/// A column: its name in a table of data, its heading for people, and whether it holds numbers.
struct Column {
  const char* name;
  const char* heading;
  bool isNumber;
};

constexpr std::array<Column, 19> kColumns = {{{"point", "Point", false},
                                              {"design", "Design", false},
                                              {"design_northing", "Design N", true},
                                              {"design_easting", "Design E", true},
                                              {"design_elevation", "Design EL", true},
                                              {"found_at", "Found at", false},
                                              {"northing", "N", true},
                                              {"easting", "E", true},
                                              {"elevation", "EL", true},
                                              {"difference_northing", "dN", true},
                                              {"difference_easting", "dE", true},
                                              {"difference_elevation", "dEL", true},
                                              {"distance", "Distance", true},
                                              {"horizontal_tolerance", "Tolerance", true},
                                              {"vertical_tolerance", "Tolerance EL", true},
                                              {"within_tolerance", "Within", false},
                                              {"solution", "Solution", false},
                                              {"date", "Date", false},
                                              {"time", "Time", false}}};

using Row = std::array<std::string, kColumns.size()>;

Row RowOf(const StakedPoint& staked) {
  const StakeRecord& stake = staked.stake;
  const bool vertical = stake.designHasElevation;
  return {staked.id.str(),
          stake.design,
          Number(stake.designAt.northing),
          Number(stake.designAt.easting),
          NumberWhere(vertical, stake.designAt.elevation),
          stake.found,
          Number(stake.foundAt.northing),
          Number(stake.foundAt.easting),
          Number(stake.foundAt.elevation),
          Number(stake.difference.northing),
          Number(stake.difference.easting),
          NumberWhere(vertical, stake.difference.elevation),
          Number(stake.distance),
          Number(stake.horizontalTolerance),
          NumberWhere(vertical, stake.verticalTolerance),
          stake.withinTolerance ? "yes" : "no",
          staked.solution.empty() ? "entered" : staked.solution,
          staked.date,
          staked.time};
}

std::string Quoted(const std::string& field) {
  if (field.find_first_of(",\"\r\n") == std::string::npos) return field;
  std::string quoted = "\"";
  for (const char c : field) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

// Names come from files of other people.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : PrintableLine(text)) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

constexpr const char* kStyle =
    "body{font-family:sans-serif;margin:1.5em}table{border-collapse:collapse;font-size:85%}"
    "th,td{border:1px solid #999;padding:.2em .5em;text-align:left}"
    "td.n{text-align:right;font-variant-numeric:tabular-nums}"
    "tr.off td{background:#fdd}";

std::string HtmlRow(const StakedPoint& staked) {
  const Row row = RowOf(staked);
  std::string html = staked.stake.withinTolerance ? "<tr>" : "<tr class=\"off\">";
  for (std::size_t i = 0; i < row.size(); ++i) {
    html += (kColumns[i].isNumber ? "<td class=\"n\">" : "<td>") + Escaped(row[i]) + "</td>";
  }
  return html + "</tr>\n";
}

std::string HtmlTotal(const char* name, const StakeTotal& total) {
  if (total.count == 0) return "";
  return "<p>" + std::string(name) + ": largest " + Number(total.worst) + " (" +
         Escaped(total.worstOf) + "), RMS " + Number(total.rms) + " of " +
         std::to_string(total.count) + "</p>\n";
}

}  // namespace

std::string StakeReportCsv(const StakeReport& report) {
  std::string csv;
  for (const Column& column : kColumns) {
    csv += (csv.empty() ? "" : ",") + std::string(column.name);
  }
  csv += "\r\n";
  for (const StakedPoint& staked : report.stakes) {
    const Row row = RowOf(staked);
    for (std::size_t i = 0; i < row.size(); ++i) csv += (i == 0 ? "" : ",") + Quoted(row[i]);
    csv += "\r\n";
  }
  return csv;
}

std::string StakeReportHtml(const StakeReport& report) {
  const std::string title = "Stakes of " + Escaped(report.job);
  std::string html =
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" + title +
      "</title>\n<style>" + kStyle + "</style>\n</head>\n<body>\n<h1>" + title + "</h1>\n";
  html += "<p>" + std::to_string(report.stakes.size()) + " stakes, " +
          std::to_string(report.within) +
          " within the tolerance. Unit: " + std::string(UnitName(report.unit)) +
          ". Differences are found minus design.</p>\n";
  html += HtmlTotal("Horizontal distance", report.horizontal);
  html += HtmlTotal("Elevation", report.vertical);
  html += "<table>\n<tr>";
  for (const Column& column : kColumns) html += "<th>" + std::string(column.heading) + "</th>";
  html += "</tr>\n";
  for (const StakedPoint& staked : report.stakes) html += HtmlRow(staked);
  return html + "</table>\n</body>\n</html>\n";
}

}  // namespace tarvex
