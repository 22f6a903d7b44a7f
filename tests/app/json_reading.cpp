#include "tests/app/json_reading.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace tarvex {
namespace {

using Library = nlohmann::ordered_json;

std::shared_ptr<const Library> Parsed(std::string_view text) {
  auto value = std::make_shared<Library>(Library::parse(text, nullptr, false));
  if (!value->is_discarded()) return value;
  ADD_FAILURE() << "This is not JSON: " << text;
  return std::make_shared<Library>();
}

}  // namespace

JsonReading::JsonReading(std::string_view text) : value_(Parsed(text)) {}

// The parts share the life of the whole.
JsonReading JsonReading::Part(const Library& part) const {
  return JsonReading(std::shared_ptr<const Library>(value_, &part));
}

JsonReading JsonReading::operator[](std::string_view name) const {
  if (Has(name)) return Part(value_->at(std::string(name)));
  ADD_FAILURE() << "There is no \"" << name << "\" in " << *this;
  return JsonReading("null");
}

JsonReading JsonReading::operator[](std::size_t index) const {
  if (value_->is_array() && index < value_->size()) return Part((*value_)[index]);
  ADD_FAILURE() << "There is no number " << index << " in " << *this;
  return JsonReading("null");
}

bool JsonReading::Has(std::string_view name) const {
  return value_->is_object() && value_->contains(std::string(name));
}

bool JsonReading::isNull() const {
  return value_->is_null();
}

std::size_t JsonReading::size() const {
  return value_->is_structured() ? value_->size() : 0;
}

std::vector<JsonReading> JsonReading::values() const {
  std::vector<JsonReading> values;
  for (const Library& part : *value_) values.push_back(Part(part));
  return values;
}

double JsonReading::number() const {
  if (value_->is_number()) return value_->get<double>();
  ADD_FAILURE() << *this << " is not a number";
  return 0.0;
}

std::string JsonReading::text() const {
  if (value_->is_string()) return value_->get<std::string>();
  ADD_FAILURE() << *this << " is not a text";
  return "";
}

std::string JsonReading::written() const {
  return value_->dump();
}

bool JsonReading::IsBool(bool value) const {
  return value_->is_boolean() && value_->get<bool>() == value;
}

bool JsonReading::IsNumber(double value) const {
  return value_->is_number() && value_->get<double>() == value;
}

bool operator==(const JsonReading& one, const JsonReading& other) {
  return *one.value_ == *other.value_;
}

bool operator==(const JsonReading& json, std::string_view text) {
  return json.value_->is_string() && json.value_->get_ref<const std::string&>() == text;
}

}  // namespace tarvex
