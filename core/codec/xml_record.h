// Trees of named records with named values, which small XML documents hold (xml_writer.h,
// xml_reader.h). docs/formats/localization.md shows a document.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvex {

struct XmlValue {
  std::string name;
  std::optional<std::string> type;
  std::optional<std::string> value;
  int line = 0;  ///< where it was read
};

struct XmlRecord {
  std::string name;  ///< empty for a record without one
  std::vector<XmlRecord> children;
  std::vector<XmlValue> values;
  int line = 0;  ///< where it was read

  /// The first value of a name; null when there is none.
  const XmlValue* Find(std::string_view valueName) const;
};

/// Why a document was refused.
struct XmlFault {
  int line = 0;
  std::string text;
};

}  // namespace tarvex
