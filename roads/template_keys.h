// The keys of a template's sections: one table a section, each key with what it does.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "core/text/field_cursor.h"
#include "roads/road_template.h"

namespace tarvex {

/// The values behind a key; the last one asked for runs to the end of the line.
class TemplateValues {
 public:
  explicit TemplateValues(std::string_view text) : values_(text) {}

  double Number();
  /// `number` as it is; one out of range is remembered.
  double Noted(double number);
  int Integer();
  std::string_view Next() { return values_.Next(); }
  std::string_view Rest() const { return values_.rest(); }
  /// The rest without the blanks around it.
  std::string Word() const;
  /// True once a number was beyond kLargestTemplateNumber.
  bool out_of_range() const { return outOfRange_; }

 private:
  FieldCursor values_;
  bool outOfRange_ = false;
};

/// Where a section's lines go: the last subgrade, curb or median is the open one.
struct TemplateTarget {
  RoadTemplate& section;
  std::size_t side = 0;

  Surface& surface() { return section.surface[side]; }
  Subgrade& subgrade() { return section.subgrade[side].back(); }
  FillSide& fill() { return section.fill[side]; }
  CutSide& cut() { return section.cut[side]; }
  Curb& curb() { return section.curbs.back(); }
  Median& median() { return section.medians.back(); }
};

/// A key is six characters, compared with its padding.
struct TemplateKey {
  std::string_view key;
  void (*take)(TemplateTarget&, TemplateValues&);
};

using TemplateKeys = std::span<const TemplateKey>;
TemplateKeys SurfaceKeys();
TemplateKeys SubgradeKeys();
TemplateKeys FillKeys();
TemplateKeys CutKeys();
TemplateKeys SuperelevationKeys();
TemplateKeys RightOfWayKeys();
TemplateKeys BermKeys();
TemplateKeys DitchKeys();
TemplateKeys CurbKeys();
TemplateKeys MedianKeys();

}  // namespace tarvex
