// What two state documents do not share.
#include "terminal/printable.h"
#include "tools/routing_json.h"
#include "tools/state.h"

namespace tool {
namespace {

// Lists whose entries are told apart by a member; other lists are one value.
std::string KeyOf(const std::string& list) {
  if (list == "interfaces") return "name";
  if (list == "tx_channels" || list == "rx_channels") return "id";
  return list == "routing" ? "rx_channel" : "";
}

std::string Below(const std::string& path, const std::string& member) {
  return path.empty() ? member : path + "." + member;
}

// `List` is Json, const or not; null when there is no such entry.
template <class List>
List* FindEntry(List& list, const std::string& key, const Json& value) {
  for (List& entry : list)
    if (entry.at(key) == value) return &entry;
  return nullptr;
}

void Append(std::vector<Difference>& to, std::vector<Difference> more) {
  to.insert(to.end(), more.begin(), more.end());
}

std::vector<Difference> OfLists(const std::string& path, const std::string& key, const Json& from,
                                const Json& to) {
  std::vector<Difference> differences;
  const auto entry = [&](const Json& value) { return path + "[" + NameText(value) + "]"; };
  for (const Json& it : from) {
    const Json* other = FindEntry(to, key, it.at(key));
    Append(differences, Differences(entry(it.at(key)), it, other != nullptr ? *other : Json()));
  }
  for (const Json& it : to)
    if (FindEntry(from, key, it.at(key)) == nullptr)
      differences.push_back({entry(it.at(key)), nullptr, it});
  return differences;
}

std::vector<Difference> OfObjects(const std::string& path, const Json& from, const Json& to) {
  std::vector<Difference> differences;
  for (const auto& [name, value] : from.items()) {
    const std::string below = Below(path, name);
    if (!to.contains(name)) {
      differences.push_back({below, value, nullptr});
      continue;
    }
    const std::string key = KeyOf(name);
    if (!key.empty() && value.is_array() && to[name].is_array())
      Append(differences, OfLists(below, key, value, to[name]));
    else
      Append(differences, Differences(below, value, to[name]));
  }
  for (const auto& [name, value] : to.items())
    if (!from.contains(name)) differences.push_back({Below(path, name), nullptr, value});
  return differences;
}

void MergeLists(const std::string& name, Json& merged, const Json& to) {
  const std::string key = KeyOf(name);
  for (const Json& entry : to) {
    Json* present = FindEntry(merged, key, entry.at(key));
    // A subscription is one setting: what its entry lacks is empty.
    if (name == "routing")
      (present != nullptr ? *present : merged.emplace_back()) = ToJson(LinkFromJson(entry));
    else if (present != nullptr)
      *present = Merged(*present, entry);
    else
      merged.push_back(entry);
  }
}

std::string ValueText(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

std::vector<Difference> Differences(const std::string& path, const Json& from, const Json& to) {
  if (from.is_object() && to.is_object()) return OfObjects(path, from, to);
  if (from == to) return {};
  return {{path, from, to}};
}

Json ToJson(const std::vector<Difference>& differences) {
  Json list = Json::array();
  for (const Difference& it : differences)
    list.push_back({{"path", it.path}, {"from", it.from}, {"to", it.to}});
  return list;
}

std::string ShowDifferences(const Json& differences) {
  std::string text;
  for (const Json& it : differences)
    text += terminal::Printable(it["path"].get<std::string>() + ": " + ValueText(it["from"]) +
                                " -> " + ValueText(it["to"])) +
            "\n";
  return text;
}

Json Merged(const Json& from, const Json& to) {
  if (!from.is_object() || !to.is_object()) return to;
  Json merged = from;
  for (const auto& [name, value] : to.items()) {
    if (!merged.contains(name))
      merged[name] = value;
    else if (!KeyOf(name).empty() && value.is_array() && merged[name].is_array())
      MergeLists(name, merged[name], value);
    else
      merged[name] = Merged(merged[name], value);
  }
  return merged;
}

}  // namespace tool
