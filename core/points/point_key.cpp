#include "core/points/point_key.h"

#include "core/points/point_id.h"
#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {

std::optional<PointKey> MakePointKey(std::string_view id, bool alphanumeric) {
  if (!alphanumeric) {
    const auto number = ParseInteger(id);
    if (!number) return std::nullopt;
    return PointKey{.id = PointId(std::to_string(*number)), .number = *number, .typed = {}};
  }
  const PointId normalised = NormalisePointId(id);
  if (normalised.empty()) return std::nullopt;
  return PointKey{.id = normalised, .typed = PointId(WithoutLeadingBlanks(id))};
}

std::string IdAfter(std::string_view id, long long increment, bool alphanumeric) {
  if (alphanumeric) return NextPointId(PointId(id), increment).str();
  return std::to_string(LeadingInteger(id) + increment);
}

}  // namespace tarvex
