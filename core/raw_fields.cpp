#include "core/raw_fields.h"

namespace tarvex {

std::optional<std::string_view> RawField(std::string_view record, std::string_view tag) {
  record = record.substr(0, record.find(",--"));
  while (!record.empty()) {
    const std::size_t comma = record.find(',');
    const std::string_view field = record.substr(0, comma);
    if (field.starts_with(tag)) return field.substr(tag.size());
    if (comma == std::string_view::npos) break;
    record.remove_prefix(comma + 1);
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

}  // namespace tarvex
