// Composing a raw record field by field.
#pragma once

#include <string>
#include <string_view>

#include "core/text/number_text.h"
#include "core/text/text.h"
#include "core/units/angle.h"

namespace tarvex {

/// A raw record in the making: `RecordText("LS").Number("HR", 1.5, 4).str()` is "\nLS,HR1.5000".
class RecordText {
 public:
  explicit RecordText(std::string_view code) : text_("\n") { text_ += code; }

  /// A field of text; a comma in it would start the next field and becomes "_".
  RecordText& Text(std::string_view tag, std::string_view value) {
    Tag(tag);
    for (const char c : OneLine(value)) text_ += c == ',' ? '_' : c;
    return *this;
  }
  RecordText& Number(std::string_view tag, double value, int decimals) {
    Tag(tag);
    AppendFixed(text_, value, decimals);
    return *this;
  }
  RecordText& Angle(std::string_view tag, double degrees, int decimals) {
    Tag(tag);
    text_ += PackedField(degrees, decimals);
    return *this;
  }
  /// The free description, always the last field.
  RecordText& Description(std::string_view text) {
    Tag("--");
    text_ += OneLine(text);
    return *this;
  }

  std::string str() const { return text_; }

 private:
  void Tag(std::string_view tag) {
    text_ += ',';
    text_ += tag;
  }

  std::string text_;
};

}  // namespace tarvex
