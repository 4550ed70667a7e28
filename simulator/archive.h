// Reads and writes one JSON object by one description of its members, so that
// the two directions cannot differ:
//
//   template <class Archive>
//   void Members(Archive& it, Thing& thing) {
//     it("name", thing.name);
//   }
//
// A member that the document lacks keeps the value that it has; a member that
// the description lacks is refused.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "simulator/document.h"

namespace simulator {

/// An enumeration that counts from 0, by its names; a number where it has none,
/// as daemons of another version may have more of them.
template <class Enum, std::size_t kCount>
struct Named {
  Named(Enum& named, const std::array<const char*, kCount>& by_number)
      : value(named), names(by_number) {}

  Enum& value;
  const std::array<const char*, kCount>& names;
};

class Reader {
 public:
  /// `object` is the value at `path` of the document.
  Reader(const Document& source, const Json& at, std::string where)
      : document(source), object(at), path(std::move(where)) {
    if (!object.is_object()) document.Refuse(path, "is not an object");
  }

  template <class Value>
  void operator()(const std::string& name, Value&& value) {
    known.insert(name);
    const auto member = object.find(name);
    if (member != object.end()) Read(*member, MemberPath(path, name), value);
  }

  bool Has(const std::string& name) const { return object.contains(name); }

  /// Runs what only reading needs: defaults, before the members that they are
  /// for, and checks, after the members that they look at.
  template <class Step>
  void WhenReading(Step&& step) {
    std::forward<Step>(step)(*this);
  }

  void Require(const std::string& name) const {
    if (!Has(name)) Refuse(name, "is missing");
  }

  [[noreturn]] void Refuse(const std::string& name, const std::string& reason) const {
    document.Refuse(name.empty() ? path : MemberPath(path, name), reason);
  }

  void RefuseUnknownMembers() const {
    for (const auto& member : object.items())
      if (known.count(member.key()) == 0) Refuse(member.key(), "is not known");
  }

 private:
  void Read(const Json& json, const std::string& at, std::string& text) const {
    if (!json.is_string()) document.Refuse(at, "is not a text");
    text = json.get<std::string>();
  }

  void Read(const Json& json, const std::string& at, bool& flag) const {
    if (!json.is_boolean()) document.Refuse(at, "is not true or false");
    flag = json.get<bool>();
  }

  template <class Number>
  std::enable_if_t<std::is_integral_v<Number>> Read(const Json& json, const std::string& at,
                                                    Number& number) const {
    constexpr auto kLeast = std::numeric_limits<Number>::min();
    constexpr auto kMost = std::numeric_limits<Number>::max();
    const bool fits = json.is_number_unsigned()
                          ? json.get<std::uint64_t>() <= static_cast<std::uint64_t>(kMost)
                          : json.is_number_integer() && std::is_signed_v<Number> &&
                                json.get<std::int64_t>() >= static_cast<std::int64_t>(kLeast);
    if (!fits)
      document.Refuse(at, "is not a whole number of " + std::to_string(kLeast) + " to " +
                              std::to_string(kMost));
    number = json.get<Number>();
  }

  template <class Enum, std::size_t kCount>
  void Read(const Json& json, const std::string& at, Named<Enum, kCount>& named) const {
    if (json.is_number()) {
      std::int32_t number = 0;
      Read(json, at, number);
      named.value = static_cast<Enum>(number);
      return;
    }
    std::string list;
    for (std::size_t number = 0; number < named.names.size(); ++number) {
      if (json == named.names[number]) {
        named.value = static_cast<Enum>(number);
        return;
      }
      list += (list.empty() ? "" : ", ") + std::string(named.names[number]);
    }
    document.Refuse(at, "is none of " + list + ", and no number");
  }

  template <class Value>
  void Read(const Json& json, const std::string& at, std::optional<Value>& value) const {
    value.reset();
    if (!json.is_null()) Read(json, at, value.emplace());
  }

  template <class Value>
  void Read(const Json& json, const std::string& at, std::vector<Value>& values) const {
    if (!json.is_array()) document.Refuse(at, "is not a list");
    values.clear();
    for (std::size_t i = 0; i < json.size(); ++i)
      Read(json[i], EntryPath(at, i), values.emplace_back());
  }

  template <class Struct>
  std::enable_if_t<std::is_class_v<Struct>> Read(const Json& json, const std::string& at,
                                                 Struct& value) const {
    Reader members(document, json, at);
    Members(members, value);
    members.RefuseUnknownMembers();
  }

  const Document& document;
  const Json& object;
  std::string path;
  std::set<std::string> known;
};

class Writer {
 public:
  template <class Value>
  void operator()(const std::string& name, Value&& value) {
    object[name] = Write(value);
  }

  template <class Step>
  void WhenReading(Step&&) {}

  Json Take() { return std::move(object); }

 private:
  static Json Write(std::string& text) { return text; }

  template <class Number>
  static std::enable_if_t<std::is_integral_v<Number>, Json> Write(Number& number) {
    return number;
  }

  template <class Enum, std::size_t kCount>
  static Json Write(Named<Enum, kCount>& named) {
    const auto number = static_cast<std::int64_t>(named.value);
    const bool has_name = number >= 0 && number < static_cast<std::int64_t>(kCount);
    return has_name ? Json(named.names[static_cast<std::size_t>(number)]) : Json(number);
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
