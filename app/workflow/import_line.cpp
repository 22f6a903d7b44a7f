#include "app/workflow/import_line.h"

#include <algorithm>

#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::string_view kNeeded = "PNEZ";

// The place behind the closing quote of a field that begins with one; npos when there is none.
std::size_t EndOfQuotes(std::string_view text) {
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[i] != '"') continue;
    if (i + 1 == text.size() || text[i + 1] != '"') return i + 1;
    ++i;
  }
  return std::string_view::npos;
}

std::string Unquoted(std::string_view field) {
  if (!field.starts_with('"') || EndOfQuotes(field) != field.size()) return std::string(field);
  std::string text;
  for (std::size_t i = 1; i + 1 < field.size(); ++i) {
    text += field[i];
    if (field[i] == '"') ++i;  // the second of a pair
  }
  return text;
}

// A field off the front of a line; nothing when the line has no more.
std::optional<std::string> TakeField(std::optional<std::string_view>& line, char separator) {
  if (!line) return std::nullopt;
  const bool blanks = separator == ' ';
  const std::string_view rest = blanks ? WithoutOuterBlanks(*line) : *line;
  if (blanks && rest.empty()) return std::nullopt;
  const std::size_t begin = std::min(rest.find_first_not_of(' '), rest.size());
  const std::size_t quoted = rest.substr(begin).starts_with('"') ? EndOfQuotes(rest.substr(begin))
                                                                 : std::string_view::npos;
  const std::size_t end =
      rest.find_first_of(blanks ? std::string_view(" \t") : std::string_view(&separator, 1),
                         quoted == std::string_view::npos ? begin : begin + quoted);
  std::string field = Unquoted(WithoutOuterBlanks(rest.substr(0, end)));
  if (end == std::string_view::npos) {
    line.reset();
  } else {
    line = rest.substr(end + 1);
  }
  return field;
}

std::string* FieldOf(ImportLine& line, char column) {
  switch (column) {
    case 'P':
      return &line.id;
    case 'N':
      return &line.northing;
    case 'E':
      return &line.easting;
    case 'Z':
      return &line.elevation;
    case 'D':
      return &line.description;
    default:
      return nullptr;
  }
}

bool BeginsWithALetter(std::string_view text) {
  return !text.empty() && UpperCase(text.front()) >= 'A' && UpperCase(text.front()) <= 'Z';
}

}  // namespace

bool IsColumnOrder(std::string_view order) {
  const auto count = [&](char column) { return std::count(order.begin(), order.end(), column); };
  return std::all_of(kNeeded.begin(), kNeeded.end(), [&](char c) { return count(c) == 1; }) &&
         count('D') <= 1 && order.find_first_not_of("PNEZD-") == std::string_view::npos;
}

std::optional<ImportLine> ReadImportLine(std::string_view line, const ImportColumns& columns) {
  ImportLine fields;
  std::optional<std::string_view> rest = line;
  for (std::size_t i = 0; i < columns.order.size(); ++i) {
    const char column = columns.order[i];
    const bool last = i + 1 == columns.order.size();
    if (column == 'D' && last) {
      fields.description = Unquoted(WithoutOuterBlanks(rest.value_or("")));
      break;
    }
    const auto field = TakeField(rest, columns.separator);
    if (!field && kNeeded.find(column) != std::string_view::npos) return std::nullopt;
    if (std::string* place = FieldOf(fields, column); place && field) *place = *field;
  }
  return fields;
}

bool IsHeading(const ImportLine& line) {
  return BeginsWithALetter(line.northing) && BeginsWithALetter(line.easting) &&
         BeginsWithALetter(line.elevation);
}

}  // namespace tarvex
