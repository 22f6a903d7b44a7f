#include "core/codec/xml_tags.h"

#include <algorithm>

#include "core/text/number_text.h"
#include "core/text/text.h"

namespace tarvex {
namespace {

constexpr std::size_t kLongestReference = 12;  // "&#x10FFFF;" and some

constexpr bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

constexpr bool IsNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || IsDigit(c) || c == '_' || c == '-' ||
         c == '.' || c == ':' || static_cast<unsigned char>(c) >= 0x80;
}

void AppendUtf8(std::string& out, unsigned character) {
  if (character < 0x80) {
    out += static_cast<char>(character);
  } else if (character < 0x800) {
    out += static_cast<char>(0xC0 | character >> 6);
    out += static_cast<char>(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    out += static_cast<char>(0xE0 | character >> 12);
    out += static_cast<char>(0x80 | (character >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (character & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | character >> 18);
    out += static_cast<char>(0x80 | (character >> 12 & 0x3F));
    out += static_cast<char>(0x80 | (character >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (character & 0x3F));
  }
}

bool Reference(std::string_view name, std::string& text) {
  constexpr std::pair<std::string_view, char> kNamed[] = {
      {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
  for (const auto& [known, character] : kNamed) {
    if (name == known) {
      text += character;
      return true;
    }
  }
  if (!name.starts_with('#') || name.size() > 10) return false;
  name.remove_prefix(1);
  const bool hexadecimal = name.starts_with('x');
  if (hexadecimal) name.remove_prefix(1);
  unsigned character = 0;
  for (const char c : name) {
    const char upper = UpperCase(c);
    const bool letter = hexadecimal && upper >= 'A' && upper <= 'F';
    if (!IsDigit(c) && !letter) return false;
    character = character * (hexadecimal ? 16 : 10) +
                static_cast<unsigned>(letter ? upper - 'A' + 10 : c - '0');
  }
  const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
  if (name.empty() || character == 0 || character > 0x10FFFF || surrogate) return false;
  const bool control =
      character < 0x20 && character != '\t' && character != '\n' && character != '\r';
  AppendUtf8(text, control ? ' ' : character);
  return true;
}

std::string Unescaped(std::string_view raw, bool latin1) {
  std::string text;
  while (!raw.empty()) {
    const char c = raw[0];
    if (c == '&') {
      const std::size_t end = raw.substr(0, kLongestReference).find(';');
      if (end != std::string_view::npos && Reference(raw.substr(1, end - 1), text)) {
        raw.remove_prefix(end + 1);
        continue;
      }
    }
    if (latin1) {
      AppendUtf8(text, static_cast<unsigned char>(c));
    } else {
      text += IsSpace(c) ? ' ' : c;
    }
    raw.remove_prefix(1);
  }
  return text;
}

}  // namespace

std::optional<std::string> XmlTag::Attribute(std::string_view wanted) const {
  for (const auto& [key, text] : attributes) {
    if (key == wanted) return text;
  }
  return std::nullopt;
}

XmlTagReader::XmlTagReader(std::string_view document, XmlFault& fault)
    : rest_(document), fault_(fault) {
  if (rest_.starts_with("\xEF\xBB\xBF")) rest_.remove_prefix(3);
}

// The next tag; nothing at the end of the document and after a fault.
std::optional<XmlTag> XmlTagReader::Next() {
  for (;;) {
    if (!SkipText()) return std::nullopt;
    if (rest_.starts_with("<!--")) {
      if (!SkipTo("-->", "a remark does not end")) return std::nullopt;
    } else if (rest_.starts_with("<?")) {
      if (!Declaration()) return std::nullopt;
    } else {
      return ReadTag();
    }
  }
}

std::nullopt_t XmlTagReader::Fail(std::string text, int line) {
  if (!failed()) fault_ = {line, std::move(text)};
  return std::nullopt;
}

void XmlTagReader::Advance(std::size_t count) {
  line_ += static_cast<int>(
      std::count(rest_.begin(), rest_.begin() + static_cast<std::ptrdiff_t>(count), '\n'));
  rest_.remove_prefix(count);
}

// Moves to the next '<'; between the elements of these documents there are only blanks.
bool XmlTagReader::SkipText() {
  std::size_t i = 0;
  while (i < rest_.size() && IsSpace(rest_[i])) ++i;
  Advance(i);
  if (rest_.empty()) return false;
  if (rest_[0] == '<') return true;
  Fail("text outside of the elements", line_);
  return false;
}

bool XmlTagReader::SkipTo(std::string_view end, const char* missing) {
  const std::size_t at = rest_.find(end);
  if (at == std::string_view::npos) {
    Fail(missing, line_);
    return false;
  }
  Advance(at + end.size());
  return true;
}

bool XmlTagReader::Declaration() {
  const std::string_view head = rest_.substr(0, rest_.find("?>"));
  if (FindIgnoringCase(head, "8859-1") != std::string_view::npos ||
      FindIgnoringCase(head, "1252") != std::string_view::npos) {
    latin1_ = true;
  }
  if (FindIgnoringCase(head, "utf-16") != std::string_view::npos) {
    Fail("the encoding is not known", line_);
    return false;
  }
  return SkipTo("?>", "the declaration does not end");
}

std::optional<XmlTag> XmlTagReader::ReadTag() {
  XmlTag tag;
  tag.line = line_;
  Advance(1);
  tag.closes = rest_.starts_with('/');
  tag.opens = !tag.closes;
  if (tag.closes) Advance(1);
  if (tag.opens && TakeWrittenValue(tag)) return tag;
  tag.name = TakeName();
  if (tag.name.empty()) return Fail("not an element", tag.line);
  for (;;) {
    SkipBlanks();
    if (rest_.starts_with("/>") && tag.opens) {
      tag.closes = true;
      Advance(2);
      return tag;
    }
    if (rest_.starts_with('>')) {
      Advance(1);
      return tag;
    }
    if (tag.closes || !TakeAttribute(tag)) {
      return Fail(rest_.empty() ? "the document ends inside an element" : "a damaged element",
                  tag.line);
    }
  }
}

// A value that fills its line in the writer's form and whose text holds a quote as it was typed:
//   value name="NAME" type="TYPE" value="TEXT"></value>     (the "<" has been taken)
// The text then ends with the line. One that could also be further attributes or elements is left
// to the usual way.
bool XmlTagReader::TakeWrittenValue(XmlTag& tag) {
  constexpr std::string_view kName = "value name=\"";
  constexpr std::string_view kType = "type=\"";
  constexpr std::string_view kValue = "value=\"";
  constexpr std::string_view kClose = "</value>";
  constexpr std::string_view kEnd = "\"></value>";
  const std::string_view line = WithoutOuterBlanks(rest_.substr(0, rest_.find('\n')));
  if (!line.starts_with(kName) || !line.ends_with(kEnd)) return false;
  std::string_view text = line.substr(kName.size(), line.size() - kName.size() - kEnd.size());
  const auto takeQuoted = [&text]() -> std::optional<std::string_view> {
    const std::size_t end = text.find("\" ");
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(end + 2);
    return taken;
  };
  const auto name = takeQuoted();
  if (!name) return false;
  std::optional<std::string_view> type;
  if (text.starts_with(kType)) {
    text.remove_prefix(kType.size());
    type = takeQuoted();
    if (!type) return false;
  }
  if (!text.starts_with(kValue)) return false;
  text.remove_prefix(kValue.size());
  if (text.find('"') == std::string_view::npos) return false;
  for (const std::string_view other : {"<value ", "\" name=\"", "\" type=\""}) {
    if (text.find(other) != std::string_view::npos) return false;
  }
  tag.name = "value";
  tag.attributes.emplace_back("name", Unescaped(*name, latin1_));
  if (type) tag.attributes.emplace_back("type", Unescaped(*type, latin1_));
  tag.attributes.emplace_back("value", Unescaped(text, latin1_));
  Advance(line.size() - kClose.size());
  return true;
}

std::string XmlTagReader::TakeName() {
  std::size_t i = 0;
  while (i < rest_.size() && IsNameCharacter(rest_[i])) ++i;
  std::string name(rest_.substr(0, i));
  Advance(i);
  return name;
}

void XmlTagReader::SkipBlanks() {
  std::size_t i = 0;
  while (i < rest_.size() && IsSpace(rest_[i])) ++i;
  Advance(i);
}

bool XmlTagReader::TakeAttribute(XmlTag& tag) {
  std::string name = TakeName();
  SkipBlanks();
  if (name.empty() || !rest_.starts_with('=') || tag.Attribute(name)) return false;
  Advance(1);
  SkipBlanks();
  if (!rest_.starts_with('"') && !rest_.starts_with('\'')) return false;
  const std::size_t end = rest_.find(rest_[0], 1);
  if (end == std::string_view::npos) {
    rest_ = {};
    return false;
  }
  tag.attributes.emplace_back(std::move(name), Unescaped(rest_.substr(1, end - 1), latin1_));
  Advance(end + 1);
  return true;
}

}  // namespace tarvex
