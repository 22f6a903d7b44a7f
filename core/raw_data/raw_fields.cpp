#include "core/raw_data/raw_fields.h"

#include "core/text/field_cursor.h"

namespace tarvex {

std::optional<std::string_view> RawField(std::string_view record, std::string_view tag) {
  FieldCursor fields(record.substr(0, record.find(",--")));
  std::string_view field;
  while (fields.Take(field)) {
    if (field.starts_with(tag)) return field.substr(tag.size());
  }
  return std::nullopt;
}

bool IsMeasured(std::string_view record) {
  const std::string_view code = RawCode(record);
  return code == "GPS" || code == "SS" || code == "TR";
}

std::optional<std::string_view> StoredPointId(std::string_view record) {
  const std::string_view code = RawCode(record);
  if (code == "SP" || code == "GPS") return RawField(record, "PN");
  return code == "SS" || code == "TR" ? RawField(record, "FP") : std::nullopt;
}

std::optional<std::string_view> TakenBackPointId(std::string_view record) {
  constexpr std::string_view kStart = "--Taken back point:";
  return record.starts_with(kStart) ? StoredPointId(record.substr(kStart.size())) : std::nullopt;
}

}  // namespace tarvex
