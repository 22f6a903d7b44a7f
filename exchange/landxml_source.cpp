#include "exchange/landxml_source.h"

#include <algorithm>

#include "core/text/number_text.h"
#include "core/text/string_table.h"
#include "core/text/text.h"
#include "exchange/exchange_texts.h"

namespace tarvex {

std::string_view LocalName(const pugi::xml_node& node) {
  const std::string_view name = node.name();
  return name.substr(name.find(':') + 1);
}

pugi::xml_node Child(const pugi::xml_node& parent, std::string_view name) {
  for (const pugi::xml_node& node : parent.children()) {
    if (LocalName(node) == name) return node;
  }
  return {};
}

int LandXmlSource::LineAt(std::ptrdiff_t offset) const {
  const auto end =
      std::min<std::size_t>(offset < 0 ? 0 : static_cast<std::size_t>(offset), text_.size());
  return 1 +
         static_cast<int>(std::count(text_.begin(), text_.begin() + static_cast<long>(end), '\n'));
}

void LandXmlSource::Refuse(LandXmlFault fault, std::ptrdiff_t offset, int text,
                           Arguments arguments) {
  if (refused()) return;
  const int line = LineAt(offset);
  failure_ = {.code = fault,
              .place = static_cast<std::size_t>(line),
              .text = Strings().Text(kTextLandXmlProblem,
                                     {std::to_string(line), Strings().Text(text, arguments)})};
}

void LandXmlSource::Refuse(LandXmlFault fault, const pugi::xml_node& node, int text,
                           Arguments arguments) {
  Refuse(fault, node.offset_debug(), text, arguments);
}

void LandXmlSource::Warn(int text, Arguments arguments) {
  if (warnings_.size() < kMostLineNotes) warnings_.push_back(Strings().Text(text, arguments));
}

void LandXmlSource::NamePoint(const std::string& name, const std::string& coordinates) {
  points_[name] = coordinates;
}

std::optional<double> LandXmlSource::Number(const pugi::xml_node& node,
                                            const char* attribute) const {
  const pugi::xml_attribute found = node.attribute(attribute);
  return found ? ParseNumber(found.value()) : std::nullopt;
}

double LandXmlSource::NeedNumber(const pugi::xml_node& node, const char* attribute) {
  const auto number = Number(node, attribute);
  if (!number) {
    Refuse(LandXmlFault::BadNumber, node, kTextAttributeUnusable, {LocalName(node), attribute});
  }
  return number.value_or(0.0);
}

std::optional<PlanPoint> LandXmlSource::Pair(std::string_view text) {
  text = WithoutOuterBlanks(text);
  const std::size_t gap = text.find_first_of(" \t\r\n");
  if (gap == std::string_view::npos) return std::nullopt;
  const std::string_view rest = WithoutLeadingBlanks(text.substr(gap));
  const auto first = ParseNumber(text.substr(0, gap));
  const auto second = ParseNumber(rest.substr(0, rest.find_first_of(" \t\r\n")));
  if (!first || !second) return std::nullopt;
  return PlanPoint{*first, *second};
}

PlanPoint LandXmlSource::NeedPoint(const pugi::xml_node& element, std::string_view name) {
  const pugi::xml_node node = Child(element, name);
  std::string_view text = node.child_value();
  const std::string_view reference = node.attribute("pntRef").value();
  if (!reference.empty()) {
    const auto found = points_.find(std::string(reference));
    if (found != points_.end()) text = found->second;
  }
  const auto point = Pair(text);
  if (!point) {
    Refuse(LandXmlFault::BadNumber, element, kTextPointUnusable, {LocalName(element), name});
  }
  return point.value_or(PlanPoint{});
}

}  // namespace tarvex
