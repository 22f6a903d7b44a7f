// JSON output: what every command prints with --json.
#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "core/points/point.h"

namespace tarvex {

/// A value that is to be written: null, true or false, a number, a text, a list, or an object whose
/// members keep the order in which they were put into it.
class Json {
 public:
  using Member = std::pair<std::string, Json>;
  using List = std::vector<Json>;
  using Object = std::vector<Member>;
  using Value = std::variant<std::nullptr_t, bool, std::int64_t, std::uint64_t, double, std::string,
                             List, Object>;

  Json() = default;  ///< null
  Json(const Json& other);
  Json(Json&& other) noexcept;
  Json& operator=(const Json& other);
  Json& operator=(Json&& other) noexcept;
  ~Json();
  Json(std::nullptr_t) {}
  Json(bool value) : value_(value) {}
  Json(double value) : value_(value) {}
  Json(std::signed_integral auto value) : value_(std::int64_t{value}) {}
  Json(std::unsigned_integral auto value) : value_(std::uint64_t{value}) {}
  Json(std::string text) : value_(std::move(text)) {}
  Json(std::string_view text) : value_(std::string(text)) {}
  Json(const char* text) : value_(std::string(text)) {}
  Json(const std::vector<std::string>& texts) : value_(List(texts.begin(), texts.end())) {}
  /// An object, as in Json{{"id", id}, {"elevation", 12.5}}.
  Json(std::initializer_list<Member> members);

  static Json EmptyList();
  static Json EmptyObject();

  /// The member of an object, added as null when it has none of this name.
  Json& operator[](std::string_view name);
  /// Puts another object's members behind those of this one.
  void Append(Json object);
  /// Puts a value at the end of a list.
  void Add(Json value);

  const Value& value() const { return value_; }

 private:
  Value value_;
};

/// One line, without a line end. Bytes that are not UTF-8 are replaced, so that it always parses,
/// and control characters that JSON lets pass (U+007F to U+009F) are escaped: a terminal obeys
/// them.
std::string JsonLine(const Json& json);

/// The same, indented, with a line end behind it.
std::string JsonText(const Json& json);

Json PointJson(const Point& point);

}  // namespace tarvex
