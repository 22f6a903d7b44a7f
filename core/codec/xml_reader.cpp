#include "core/codec/xml_reader.h"

#include <utility>

#include "core/codec/xml_tags.h"

namespace tarvex {
namespace {

constexpr int kDeepest = 64;

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
    tags_.Fail(wanted + " should be here, not " + (tag_.opens ? "<" : "</") + tag_.name + ">",
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
      tags_.Fail("records are nested too deep", tag_.line);
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

  XmlTagReader tags_;
  XmlTag tag_;
};

}  // namespace

std::optional<XmlRecord> ReadXmlRecord(std::string_view document, XmlFault& fault) {
  fault = {};
  return RecordReader(document, fault).Read();
}

}  // namespace tarvex
