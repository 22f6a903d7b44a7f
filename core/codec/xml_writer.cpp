#include "core/codec/xml_writer.h"

namespace tarvex {
namespace {

// Takes one character off `text`: a UTF-8 sequence, or a single byte as Latin-1.
unsigned TakeCharacter(std::string_view& text) {
  const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned first = byte(0);
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 1;
  unsigned character = first;
  if (length > 1 && first <= 0xF4 && text.size() >= length) {
    unsigned made = first & (0x7FU >> length);
    bool whole = true;
    for (std::size_t i = 1; i < length; ++i) {
      whole = whole && (byte(i) & 0xC0) == 0x80;
      made = made << 6 | (byte(i) & 0x3F);
    }
    const unsigned least = length == 2 ? 0x80 : length == 3 ? 0x800 : 0x10000;
    if (whole && made >= least && made <= 0x10FFFF && (made < 0xD800 || made > 0xDFFF)) {
      text.remove_prefix(length);
      return made;
    }
  }
  text.remove_prefix(1);
  return character;
}

void AppendEscaped(std::string& out, std::string_view text) {
  while (!text.empty()) {
    const unsigned character = TakeCharacter(text);
    switch (character) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        if (character >= 0x7F || character == '\n' || character == '\t' || character == '\r') {
          out += "&#" + std::to_string(character) + ';';
        } else {
          out += character < 0x20 ? ' ' : static_cast<char>(character);
        }
    }
  }
}

void AppendAttribute(std::string& out, std::string_view name, std::string_view text) {
  out.append(name).append("=\"");
  AppendEscaped(out, text);
  out += '"';
}

void AppendValue(std::string& out, const XmlValue& value) {
  out += "<value ";
  AppendAttribute(out, "name", value.name);
  out += ' ';
  if (value.type) {
    AppendAttribute(out, "type", *value.type);
    out += ' ';
  }
  if (value.value) AppendAttribute(out, "value", *value.value);
  out += "></value>\n";
}

void AppendRecord(std::string& out, const XmlRecord& record) {
  out += "<record ";
  if (!record.name.empty()) {
    AppendAttribute(out, "id", record.name);
    out += ' ';
  }
  out += ">\n";
  for (const XmlRecord& child : record.children) AppendRecord(out, child);
  for (const XmlValue& value : record.values) AppendValue(out, value);
  out += "</record>\n";
}

}  // namespace

std::string WriteXmlRecord(const XmlRecord& root) {
  std::string out =
      "<?xml version=\"1.0\" encoding=\"us-ascii\" ?>\n<morwend_xml version=\"1.0\">\n<table>\n";
  AppendRecord(out, root);
  return out + "</table>\n</morwend_xml>\n";
}

}  // namespace tarvex
