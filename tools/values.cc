#include "tools/values.h"

#include <algorithm>
#include <vector>

#include "tools/failure.h"
#include "tools/json_path.h"
#include "tools/output.h"

namespace tool {
namespace {

// Names of entries can contain commas.
std::vector<std::string> Split(const std::string& fields) {
  std::vector<std::string> list(1);
  bool inside = false;
  for (const char character : fields) {
    if (character == '[') inside = true;
    if (character == ']') inside = false;
    if (character == ',' && !inside)
      list.emplace_back();
    else
      list.back() += character;
  }
  return list;
}

bool IsNull(const Json& value) { return value.is_null(); }

// The longest part of the path that can be followed further; "" for the whole result.
std::string Level(const Json& result, const std::string& path) {
  bool inside = false;
  std::vector<std::string> parts;
  for (std::size_t i = 0; i < path.size(); ++i) {
    if (!inside && i != 0 && (path[i] == '.' || path[i] == '[')) parts.push_back(path.substr(0, i));
    if (path[i] == '[') inside = true;
    if (path[i] == ']') inside = false;
  }
  for (; !parts.empty(); parts.pop_back()) {
    const auto values = ValuesAt(result, parts.back());
    if (!std::all_of(values.begin(), values.end(), IsNull)) return parts.back();
  }
  return "";
}

std::string NamesIn(const Json& level) {
  constexpr std::size_t kMost = 16;
  if (!level.is_structured()) return "no fields";
  std::string names;
  std::size_t count = 0;
  for (const auto& [name, value] : level.items()) {
    if (count++ == kMost) return names + ", ...";
    names += names.empty() ? "" : ", ";
    names += level.is_array() ? "[" + EntryName(value, count - 1) + "]" : name;
    names += value.is_null() ? " (null)" : "";
  }
  return names.empty() ? "no entries" : names;
}

[[noreturn]] void ThrowMissing(const Json& result, const std::string& field) {
  const std::string level = Level(result, field);
  const auto values = level.empty() ? std::vector<Json>{result} : ValuesAt(result, level);
  const Json& first = *std::find_if_not(values.begin(), values.end(), IsNull);
  throw Failure(ExitStatus::kNotFound, "--get: '" + field + "' has no value: " +
                                           (level.empty() ? "the result" : "'" + level + "'") +
                                           " has " + NamesIn(first));
}

std::string Line(const Json& value) {
  return value.is_string() ? Text(value) + "\n" : JsonText(value);
}

}  // namespace

std::string FaultOfFields(const std::string& fields) {
  const auto list = Split(fields);
  const bool has_empty = std::find(list.begin(), list.end(), "") != list.end();
  return has_empty ? "'" + fields + "' must be a path or several, separated by commas" : "";
}

std::string ValueLines(const Json& result, const std::string& fields) {
  std::string lines;
  for (const std::string& field : Split(fields)) {
    const auto values = ValuesAt(result, field);
    if (std::all_of(values.begin(), values.end(), IsNull)) ThrowMissing(result, field);
    for (const Json& value : values) lines += Line(value);
  }
  return lines;
}

std::string ValueOrNullLines(const Json& result, const std::string& fields) {
  std::string lines;
  for (const std::string& field : Split(fields)) {
    const auto values = ValuesAt(result, field);
    if (values.empty()) lines += Line(nullptr);
    for (const Json& value : values) lines += Line(value);
  }
  return lines;
}

}  // namespace tool
