// The record tree of an XML document. Any well-formed document of these elements is accepted:
// either quote, any order of attributes, comments, empty-element tags, any line end, UTF-8 or
// Latin-1. What is not well formed or has other elements is refused with the number of the line.
#pragma once

#include <optional>
#include <string_view>

#include "core/codec/xml_record.h"

namespace tarvex {

/// The root record, or nothing and the fault.
std::optional<XmlRecord> ReadXmlRecord(std::string_view document, XmlFault& fault);

}  // namespace tarvex
