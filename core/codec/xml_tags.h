// The tags of a record document, one after the other: the lower layer of reading it.
//
// A "&" that begins no reference and a "<" inside of quotes are taken as they are, and so is a
// quote inside of the text of a value that fills its line as the writer makes it: texts reach
// these files as they were typed. References of control characters, which XML cannot hold, become
// blanks.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/codec/xml_record.h"

namespace tarvex {

struct XmlTag {
  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes;
  bool opens = false;
  bool closes = false;  ///< an empty element does both
  int line = 0;

  std::optional<std::string> Attribute(std::string_view wanted) const;
};

class XmlTagReader {
 public:
  /// Both outlive the reader.
  XmlTagReader(std::string_view document, XmlFault& fault);

  /// The next tag; nothing at the end of the document and after a fault.
  std::optional<XmlTag> Next();

  bool failed() const { return fault_.line != 0; }
  int line() const { return line_; }
  /// Keeps the first fault.
  std::nullopt_t Fail(std::string text, int line);

 private:
  void Advance(std::size_t count);
  bool SkipText();
  bool SkipTo(std::string_view end, const char* missing);
  bool Declaration();
  std::optional<XmlTag> ReadTag();
  bool TakeWrittenValue(XmlTag& tag);
  std::string TakeName();
  void SkipBlanks();
  bool TakeAttribute(XmlTag& tag);

  std::string_view rest_;
  XmlFault& fault_;
  int line_ = 1;
  bool latin1_ = false;
};

}  // namespace tarvex
