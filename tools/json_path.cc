#include "tools/json_path.h"

#include <algorithm>

namespace tool {
namespace {

// One step of a path: the name of a member, or an entry in brackets.
struct PathStep {
  bool is_entry = false;
  std::string name;
};

std::vector<PathStep> SplitPath(const std::string& path) {
  std::vector<PathStep> steps(1);
  for (const char character : path) {
    const bool inside = steps.back().is_entry;
    if (character == '[' && !inside)
      steps.push_back({true, ""});
    else if ((character == ']' && inside) || (character == '.' && !inside))
      steps.emplace_back();
    else
      steps.back().name += character;
  }
  const auto is_empty = [](const PathStep& it) { return !it.is_entry && it.name.empty(); };
  steps.erase(std::remove_if(steps.begin(), steps.end(), is_empty), steps.end());
  return steps;
}

// The key of an entry of a list; empty if it has none.
std::string KeyOf(const Json& entry) {
  for (const char* key : {"rx_channel", "name", "id"})
    if (entry.is_object() && entry.contains(key))
      return entry[key].is_string() ? entry[key].get<std::string>() : entry[key].dump();
  return "";
}

bool IsCalled(const Json& entry, std::size_t position, const std::string& name) {
  if (name.empty()) return true;
  if (EntryName(entry, position) == name) return true;
  return entry.is_object() && entry.contains("id") && entry["id"].dump() == name;
}

void Collect(const Json& json, const std::vector<PathStep>& steps, std::size_t at,
             std::vector<Json>& values) {
  if (at == steps.size()) {
    values.push_back(json);
    return;
  }
  const PathStep& step = steps[at];
  if (!step.is_entry && json.is_object() && json.contains(step.name))
    Collect(json[step.name], steps, at + 1, values);
  if (!step.is_entry || !json.is_array()) return;
  for (std::size_t i = 0; i < json.size(); ++i)
    if (IsCalled(json[i], i, step.name)) Collect(json[i], steps, at + 1, values);
}

}  // namespace

std::string EntryName(const Json& entry, std::size_t position) {
  const std::string key = KeyOf(entry);
  return key.empty() ? std::to_string(position) : key;
}

std::vector<Json> ValuesAt(const Json& json, const std::string& path) {
  std::vector<Json> values;
  if (!path.empty()) Collect(json, SplitPath(path), 0, values);
  return values;
}

bool AreNested(const std::string& path, const std::string& other) {
  const std::vector<PathStep> one = SplitPath(path);
  const std::vector<PathStep> two = SplitPath(other);
  const auto is_same = [](const PathStep& a, const PathStep& b) {
    return a.is_entry == b.is_entry &&
           (a.name == b.name || (a.is_entry && (a.name.empty() || b.name.empty())));
  };
  const auto length = static_cast<std::ptrdiff_t>(std::min(one.size(), two.size()));
  return std::equal(one.begin(), one.begin() + length, two.begin(), is_same);
}

}  // namespace tool
