#include "tools/json_path.h"

namespace tool {
namespace {

// One step of a path: the name of a member, or an entry in brackets.
struct Step {
  bool is_entry = false;
  std::string name;
};

std::vector<Step> Steps(const std::string& path) {
  std::vector<Step> steps(1);
  for (const char character : path) {
    const bool inside = steps.back().is_entry;
    if (character == '[' && !inside)
      steps.push_back({true, ""});
    else if ((character == ']' && inside) || (character == '.' && !inside))
      steps.emplace_back();
    else
      steps.back().name += character;
  }
  return steps;  // what stands between "]" and "." is empty
}

// What tells the entries of a list apart; empty if nothing does.
std::string KeyOf(const Json& entry) {
  for (const char* key : {"rx_channel", "name", "id"})
    if (entry.is_object() && entry.contains(key))
      return entry[key].is_string() ? entry[key].get<std::string>() : entry[key].dump();
  return "";
}

bool IsCalled(const Json& entry, std::size_t position, const std::string& name) {
  if (name.empty()) return true;
  const std::string key = KeyOf(entry);
  if (key.empty()) return std::to_string(position) == name;
  return key == name || (entry.contains("id") && entry["id"].dump() == name);
}

void Collect(const Json& json, const std::vector<Step>& steps, std::size_t at,
             std::vector<Json>& values) {
  while (at < steps.size() && !steps[at].is_entry && steps[at].name.empty()) ++at;
  if (at == steps.size()) {
    values.push_back(json);
    return;
  }
  const Step& step = steps[at];
  if (!step.is_entry && json.is_object() && json.contains(step.name))
    Collect(json[step.name], steps, at + 1, values);
  if (!step.is_entry || !json.is_array()) return;
  for (std::size_t i = 0; i < json.size(); ++i)
    if (IsCalled(json[i], i, step.name)) Collect(json[i], steps, at + 1, values);
}

}  // namespace

std::vector<Json> ValuesAt(const Json& json, const std::string& path) {
  std::vector<Json> values;
  if (!path.empty()) Collect(json, Steps(path), 0, values);
  return values;
}

}  // namespace tool
