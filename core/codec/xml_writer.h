// The XML document of a record tree. It is us-ascii whatever its texts hold: & < > " and line
// breaks become character references, and so does every character beyond ASCII (a byte that is not
// UTF-8 is taken as Latin-1). Control characters that XML cannot hold become blanks.
#pragma once

#include <string>

#include "core/codec/xml_record.h"

namespace tarvex {

std::string WriteXmlRecord(const XmlRecord& root);

}  // namespace tarvex
