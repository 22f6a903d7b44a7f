#include "roads/text_fields.h"

#include <algorithm>

#include "core/text/field_cursor.h"
#include "core/text/number_text.h"
#include "core/text/text.h"
#include "core/units/angle.h"
#include "core/units/units.h"

namespace tarvex {

CommaFields::CommaFields(std::string_view line) {
  FieldCursor cursor(line);
  while (count_ < kMost && cursor.Take(fields_[count_])) ++count_;
}

std::string_view CommaFields::operator[](std::size_t number) const {
  return Has(number) ? fields_[number - 1] : std::string_view();
}

bool CommaFields::Given(std::size_t number) const {
  return !WithoutOuterBlanks((*this)[number]).empty();
}

double CommaFields::Number(std::size_t number) const {
  return LeadingDouble((*this)[number]);
}

double CommaFields::PackedRadians(std::size_t number) const {
  return PackedToDegrees(Number(number)) * kRadiansPerDegree;
}

NumberedLines::NumberedLines(std::string_view text, std::size_t significant)
    : rest_(text), significant_(significant) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (rest_.starts_with(kByteOrderMark)) rest_.remove_prefix(kByteOrderMark.size());
}

bool NumberedLines::Next(std::string_view& line) {
  const auto taken = TakeLine(rest_);
  if (!taken) return false;
  ++number_;
  line = taken->substr(0, std::min(taken->size(), significant_));
  return true;
}

}  // namespace tarvex
