// Reading record documents: a small XML reader in two layers, tags and the tree.
#include <algorithm>
#include <utility>

#include "coordsys/localization/xml_record.h"
#include "core/number_text.h"
#include "core/text.h"

namespace tarvex {
namespace {

constexpr int kDeepest = 64;

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

struct Tag {
  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes;
  bool opens = false;
  bool closes = false;  // an empty element does both
  int line = 0;

  std::optional<std::string> Attribute(std::string_view wanted) const {
    for (const auto& [key, text] : attributes) {
      if (key == wanted) return text;
    }
    return std::nullopt;
  }
};

// Takes the tags of a document one after the other.
class TagReader {
 public:
  TagReader(std::string_view document, XmlFault& fault) : rest_(document), fault_(fault) {
    if (rest_.starts_with("\xEF\xBB\xBF")) rest_.remove_prefix(3);
  }

  // The next tag; nothing at the end of the document and after a fault.
  std::optional<Tag> Next() {
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

  bool failed() const { return fault_.line != 0; }
  int line() const { return line_; }
  std::nullopt_t Fail(std::string text, int line) {
    if (!failed()) fault_ = {line, std::move(text)};
    return std::nullopt;
  }

 private:
  void Advance(std::size_t count) {
    line_ += static_cast<int>(
        std::count(rest_.begin(), rest_.begin() + static_cast<std::ptrdiff_t>(count), '\n'));
    rest_.remove_prefix(count);
  }

  // Moves to the next '<'; between the elements of these documents there are only blanks.
  bool SkipText() {
    std::size_t i = 0;
    while (i < rest_.size() && IsSpace(rest_[i])) ++i;
    Advance(i);
    if (rest_.empty()) return false;
    if (rest_[0] == '<') return true;
    Fail("text outside of the elements", line_);
    return false;
  }

  bool SkipTo(std::string_view end, const char* missing) {
    const std::size_t at = rest_.find(end);
    if (at == std::string_view::npos) {
      Fail(missing, line_);
      return false;
    }
    Advance(at + end.size());
    return true;
  }

  bool Declaration() {
    const std::string_view head = rest_.substr(0, rest_.find("?>"));
    if (FindIgnoringCase(head, "8859-1") != std::string_view::npos ||
        FindIgnoringCase(head, "1252") != std::string_view::npos) {
      latin_1_ = true;
    }
    if (FindIgnoringCase(head, "utf-16") != std::string_view::npos) {
      Fail("the encoding is not known", line_);
      return false;
    }
    return SkipTo("?>", "the declaration does not end");
  }

  std::optional<Tag> ReadTag() {
    Tag tag;
    tag.line = line_;
    Advance(1);
    tag.closes = rest_.starts_with('/');
    tag.opens = !tag.closes;
    if (tag.closes) Advance(1);
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
                    line_);
      }
    }
  }

  std::string TakeName() {
    std::size_t i = 0;
    while (i < rest_.size() && IsNameCharacter(rest_[i])) ++i;
    std::string name(rest_.substr(0, i));
    Advance(i);
    return name;
  }

  void SkipBlanks() {
    std::size_t i = 0;
    while (i < rest_.size() && IsSpace(rest_[i])) ++i;
    Advance(i);
  }

  bool TakeAttribute(Tag& tag) {
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
    std::string text;
    if (!Unescape(rest_.substr(1, end - 1), text)) return false;
    tag.attributes.emplace_back(std::move(name), std::move(text));
    Advance(end + 1);
    return true;
  }

  bool Unescape(std::string_view raw, std::string& text) const {
    while (!raw.empty()) {
      const char c = raw[0];
      if (c == '<') return false;
      if (c == '&') {
        const std::size_t end = raw.find(';');
        if (end == std::string_view::npos || !Reference(raw.substr(1, end - 1), text)) return false;
        raw.remove_prefix(end + 1);
        continue;
      }
      if (latin_1_) {
        AppendUtf8(text, static_cast<unsigned char>(c));
      } else {
        text += IsSpace(c) ? ' ' : c;
      }
      raw.remove_prefix(1);
    }
    return true;
  }

  static bool Reference(std::string_view name, std::string& text) {
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
    AppendUtf8(text, character);
    return true;
  }

  std::string_view rest_;
  XmlFault& fault_;
  int line_ = 1;
  bool latin_1_ = false;
};

// Builds the tree.
class RecordReader {
 public:
  RecordReader(std::string_view document, XmlFault& fault) : tags_(document, fault) {}

  std::optional<XmlRecord> Read() {
    XmlRecord root;
    if (!Open("morwend_xml") || !Open("table") || !Open("record")) return std::nullopt;
    if (!Record(root, 0) || !Close("table") || !Close("morwend_xml")) return std::nullopt;
    if (tags_.Next()) return tags_.Fail("another element follows the end", tags_.line());
    if (tags_.failed()) return std::nullopt;
    return root;
  }

 private:
  bool Take() {
    auto tag = tags_.Next();
    if (!tag) {
      tags_.Fail("the document ends before its last element", tags_.line());
      return false;
    }
    tag_ = std::move(*tag);
    return true;
  }

  bool Wrong(const std::string& wanted) {
    tags_.Fail(wanted + " should stand here, not " + (tag_.opens ? "<" : "</") + tag_.name + ">",
               tag_.line);
    return false;
  }

  bool Open(const std::string& name) {
    if (!Take()) return false;
    return tag_.name == name && tag_.opens && !tag_.closes ? true : Wrong("<" + name + ">");
  }
  bool Close(const std::string& name) {
    if (!Take()) return false;
    return tag_.name == name && !tag_.opens ? true : Wrong("</" + name + ">");
  }

  // The tag of the record has been taken.
  bool Record(XmlRecord& record, int depth) {
    record.line = tag_.line;
    record.name = tag_.Attribute("id").value_or("");
    if (tag_.closes) return true;
    if (depth > kDeepest) {
      tags_.Fail("records stand too deep in one another", tag_.line);
      return false;
    }
    for (;;) {
      if (!Take()) return false;
      if (tag_.name == "record" && !tag_.opens) return true;
      if (tag_.name == "record") {
        if (!Record(record.children.emplace_back(), depth + 1)) return false;
      } else if (tag_.name == "value" && tag_.opens) {
        if (!Value(record)) return false;
      } else {
        return Wrong("a record or a value");
      }
    }
  }

  bool Value(XmlRecord& record) {
    XmlValue value = {.name = tag_.Attribute("name").value_or(""),
                      .type = tag_.Attribute("type"),
                      .value = tag_.Attribute("value"),
                      .line = tag_.line};
    record.values.push_back(std::move(value));
    return tag_.closes || Close("value");
  }

  TagReader tags_;
  Tag tag_;
};

}  // namespace

std::optional<XmlRecord> ReadXmlRecord(std::string_view document, XmlFault& fault) {
  fault = {};
  return RecordReader(document, fault).Read();
}

}  // namespace tarvex
