#include "app/cli/json_text.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace tarvex {
namespace {

using Library = nlohmann::ordered_json;

// UTF-8 JSON with the control characters escaped that JSON lets pass.
std::string WithoutControls(const std::string& json) {
  constexpr char kHex[] = "0123456789abcdef";
  std::string text;
  text.reserve(json.size() + 1);
  for (std::size_t i = 0; i < json.size(); ++i) {
    auto code = static_cast<unsigned char>(json[i]);
    const bool control = code == 0xC2 && (static_cast<unsigned char>(json[i + 1]) & 0xE0U) == 0x80;
    if (control) code = static_cast<unsigned char>(json[++i]);
    if (control || code == 0x7F) {
      text += std::string("\\u00") + kHex[code >> 4] + kHex[code & 15U];
    } else {
      text += json[i];
    }
  }
  return text;
}

// The value as the library has it, which writes numbers and escapes texts.
struct ToLibrary {
  Library operator()(const Json::List& list) const {
    Library::array_t values;
    values.reserve(list.size());
    for (const Json& json : list) values.push_back(std::visit(*this, json.value()));
    return values;
  }
  Library operator()(const Json::Object& object) const {
    Library::object_t members;
    members.reserve(object.size());
    for (const auto& [name, json] : object) {
      members.emplace_back(name, std::visit(*this, json.value()));
    }
    return members;
  }
  Library operator()(const auto& scalar) const { return scalar; }
};

std::string Written(const Json& json, int indent) {
  return WithoutControls(std::visit(ToLibrary(), json.value())
                             .dump(indent, ' ', false, Library::error_handler_t::replace));
}

}  // namespace

Json::Json(const Json& other) = default;
Json::Json(Json&& other) noexcept = default;
Json& Json::operator=(const Json& other) = default;
Json& Json::operator=(Json&& other) noexcept = default;
Json::~Json() = default;

Json::Json(std::initializer_list<Member> members) : value_(Object(members)) {}

Json Json::EmptyList() {
  Json json;
  json.value_ = List();
  return json;
}

Json Json::EmptyObject() {
  Json json;
  json.value_ = Object();
  return json;
}

Json& Json::operator[](std::string_view name) {
  auto& members = std::get<Object>(value_);
  const auto found = std::find_if(members.begin(), members.end(),
                                  [name](const Member& member) { return member.first == name; });
  if (found != members.end()) return found->second;
  return members.emplace_back(name, Json()).second;
}

void Json::Append(Json object) {
  for (auto& [name, value] : std::get<Object>(object.value_)) (*this)[name] = std::move(value);
}

void Json::Add(Json value) {
  std::get<List>(value_).push_back(std::move(value));
}

std::string JsonLine(const Json& json) {
  return Written(json, -1);
}

std::string JsonText(const Json& json) {
  constexpr int kIndent = 2;
  return Written(json, kIndent) + "\n";
}

Json PointJson(const Point& point) {
  return {{"id", point.id.view()},
          {"northing", point.at.northing},
          {"easting", point.at.easting},
          {"elevation", point.at.elevation},
          {"description", point.description.view()}};
}

}  // namespace tarvex
