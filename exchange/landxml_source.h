// A LandXML text while it is read: its nodes by name, their numbers and points, the first problem
// with its line, the warnings.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <map>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "exchange/landxml.h"
#include "roads/curve_piece.h"

namespace tarvex {

/// Stations that disagree by more are reported.
inline constexpr double kStationWarning = 0.001;

/// Element names with any namespace prefix taken off.
std::string_view LocalName(const pugi::xml_node& node);
/// The first child of this name; an empty node when there is none.
pugi::xml_node Child(const pugi::xml_node& parent, std::string_view name);

class LandXmlSource {
 public:
  explicit LandXmlSource(std::string_view text) : text_(text) {}

  /// Of the texts in exchange_texts.h.
  using Arguments = std::initializer_list<std::string_view>;

  /// Keeps the first problem only, with its line. Every step asks for it.
  void Refuse(LandXmlFault fault, const pugi::xml_node& node, int text, Arguments arguments = {});
  void Refuse(LandXmlFault fault, std::ptrdiff_t offset, int text, Arguments arguments = {});
  bool refused() const { return failure_.has_value(); }
  /// Of a document that is refused.
  const Failure<LandXmlFault>& failure() const { return *failure_; }

  void Warn(int text, Arguments arguments = {});
  const std::vector<std::string>& warnings() const { return warnings_; }
  std::string LineText(const pugi::xml_node& node) const {
    return std::to_string(LineAt(node.offset_debug()));
  }

  /// A named point that others refer to (CgPoint).
  void NamePoint(const std::string& name, const std::string& coordinates);

  std::optional<double> Number(const pugi::xml_node& node, const char* attribute) const;
  /// Refuses the document when the number is missing or none.
  double NeedNumber(const pugi::xml_node& node, const char* attribute);
  /// The child of an element that is a point, by its numbers or by reference.
  PlanPoint NeedPoint(const pugi::xml_node& element, std::string_view name);

  /// Two numbers, blank separated; further ones are elevations.
  static std::optional<PlanPoint> Pair(std::string_view text);

 private:
  int LineAt(std::ptrdiff_t offset) const;

  std::string_view text_;
  std::optional<Failure<LandXmlFault>> failure_;
  std::vector<std::string> warnings_;
  std::map<std::string, std::string> points_;
};

}  // namespace tarvex
