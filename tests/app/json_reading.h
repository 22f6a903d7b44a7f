// What a command printed with --json, as tests read it.
#pragma once

#include <concepts>
#include <cstddef>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace tarvex {

/// A JSON value. What is not there, or is not of the kind that is asked for, fails the test and
/// reads as null, 0 or "".
class JsonReading {
 public:
  explicit JsonReading(std::string_view text);

  JsonReading operator[](std::string_view name) const;
  JsonReading operator[](std::size_t index) const;
  bool Has(std::string_view name) const;
  bool isNull() const;
  /// Of a list or an object.
  std::size_t size() const;
  std::vector<JsonReading> values() const;
  double number() const;
  std::string text() const;
  /// As JSON.
  std::string written() const;

  friend bool operator==(const JsonReading& one, const JsonReading& other);
  friend bool operator==(const JsonReading& json, std::string_view text);
  friend bool operator==(const JsonReading& json, std::same_as<bool> auto value) {
    return json.IsBool(value);
  }
  template <typename Number>
    requires(std::integral<Number> || std::floating_point<Number>) && (!std::same_as<Number, bool>)
  friend bool operator==(const JsonReading& json, Number value) {
    return json.IsNumber(static_cast<double>(value));
  }
  friend std::ostream& operator<<(std::ostream& out, const JsonReading& json) {
    return out << json.written();
  }

 private:
  explicit JsonReading(std::shared_ptr<const nlohmann::ordered_json> value)
      : value_(std::move(value)) {}
  bool IsBool(bool value) const;
  bool IsNumber(double value) const;
  JsonReading Part(const nlohmann::ordered_json& part) const;

  std::shared_ptr<const nlohmann::ordered_json> value_;
};

}  // namespace tarvex
