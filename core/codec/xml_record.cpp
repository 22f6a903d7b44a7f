#include "core/codec/xml_record.h"

namespace tarvex {

const XmlValue* XmlRecord::Find(std::string_view valueName) const {
  for (const XmlValue& value : values) {
    if (value.name == valueName) return &value;
  }
  return nullptr;
}

}  // namespace tarvex
