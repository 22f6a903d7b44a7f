// Trees of named records with named values, and the small XML documents that hold them.
//
// Written, a document is us-ascii whatever its texts hold: & < > " and line breaks become character
// references, and so does every character beyond ASCII (a byte that is not UTF-8 is taken as
// Latin-1). Control characters that XML cannot hold become blanks. docs/formats/localization.md
// shows a document.
//
// Read, any well-formed document of these elements is accepted: either quote, any order of
// attributes, comments, empty-element tags, any line end, UTF-8 or Latin-1. What is not well formed
// or has other elements is refused with the number of the line.
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

std::string WriteXmlRecord(const XmlRecord& root);

/// Why a document was refused.
struct XmlFault {
  int line = 0;
  std::string text;
};

/// The root record, or nothing and the fault.
std::optional<XmlRecord> ReadXmlRecord(std::string_view document, XmlFault& fault);

}  // namespace tarvex
