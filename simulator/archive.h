// Copies one JSON object to and from a record by one description, so that the two
// directions cannot differ:
//
//   template <class Archive>
//   void Members(Archive& it, Thing& thing) {
//     it("name", thing.name);
//   }
//
// A member that the object lacks keeps the value that it has. Nothing is checked
// here: the document that is read has passed state_document/document.h.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "simulator/json.h"
#include "state_document/table.h"

namespace simulator {

/// A number with names: an enumeration, or an integer.
template <class Number>
struct Named {
  Named(Number& named, const state_document::Names& by_number) : value(named), names(by_number) {}

  Number& value;
  const state_document::Names& names;
};

class Reader {
 public:
  explicit Reader(const Json& from) : object(from) {}

  template <class Value>
  void operator()(const char* name, Value&& value) {
    const auto member = object.find(name);
    if (member != object.end()) Read(*member, value);
  }

  bool Has(const char* name) const { return object.contains(name); }
  /// A member that the object has.
  const Json& Get(const char* name) const { return object.at(name); }

  /// Runs what only reading needs: defaults, before the members that they are
  /// for, and what follows from members, after these.
  template <class Step>
  void WhenReading(Step&& step) {
    std::forward<Step>(step)(*this);
  }

 private:
  static void Read(const Json& json, std::string& string) { string = json.get<std::string>(); }

  template <class Number>
  static std::enable_if_t<std::is_arithmetic_v<Number>> Read(const Json& json, Number& number) {
    number = json.get<Number>();
  }

  template <class Number>
  static void Read(const Json& json, Named<Number>& named) {
    named.value = static_cast<Number>(state_document::NumberOf(named.names, json));
  }

  template <class Value>
  static void Read(const Json& json, std::optional<Value>& value) {
    value.reset();
    if (!json.is_null()) Read(json, value.emplace());
  }

  template <class Value>
  static void Read(const Json& json, std::vector<Value>& values) {
    values.clear();
    for (const Json& entry : json) Read(entry, values.emplace_back());
  }

  template <class Struct>
  static std::enable_if_t<std::is_class_v<Struct>> Read(const Json& json, Struct& value) {
    Reader members(json);
    Members(members, value);
  }

  const Json& object;
};

class Writer {
 public:
  template <class Value>
  void operator()(const char* name, Value&& value) {
    object[name] = Write(value);
  }

  template <class Step>
  void WhenReading(Step&&) {}

  Json Take() { return std::move(object); }

 private:
  static Json Write(std::string& string) { return string; }

  template <class Number>
  static std::enable_if_t<std::is_arithmetic_v<Number>, Json> Write(Number& number) {
    return number;
  }

  template <class Number>
  static Json Write(Named<Number>& named) {
    return state_document::NameOf(named.names, static_cast<std::int64_t>(named.value));
  }

  template <class Value>
  static Json Write(std::optional<Value>& value) {
    return value.has_value() ? Write(*value) : Json(nullptr);
  }

  template <class Value>
  static Json Write(std::vector<Value>& values) {
    Json list = Json::array();
    for (Value& value : values) list.push_back(Write(value));
    return list;
  }

  template <class Struct>
  static std::enable_if_t<std::is_class_v<Struct>, Json> Write(Struct& value) {
    Writer members;
    Members(members, value);
    return members.Take();
  }

  Json object = Json::object();
};

}  // namespace simulator
