#include "state_document/compare.h"

#include <iterator>
#include <utility>

#include "state_document/table.h"

namespace state_document {
namespace {

void NoteKeyedLists(const Node& node, std::map<std::string, const Node*>& lists) {
  if (node.Key() != nullptr) lists[node.name] = &node;
  for (const Node& child : node.children) NoteKeyedLists(child, lists);
}

// Null for any other name.
const Node* KeyedList(const std::string& name) {
  static const auto lists = [] {
    std::map<std::string, const Node*> noted;
    NoteKeyedLists(Root(), noted);
    return noted;
  }();
  const auto found = lists.find(name);
  return found != lists.end() ? found->second : nullptr;
}

Json Settable(const Node& node, const Json& value) {
  if (!value.is_structured()) return value;
  Json result = value.is_array() ? Json::array() : Json::object();
  if (value.is_array())
    for (const Json& entry : value) result.push_back(Settable(node.children.front(), entry));
  else
    for (const auto& [name, member] : value.items())
      if (const Node& child = *node.Find(name); (child.use & kSettable) != 0)
        result[name] = Settable(child, member);
  return result;
}

// The value of a setting that is one as a whole; `given` is null for what the
// document lacks.
Json Completed(const Node& node, const Json& given) {
  if (node.type.kind == Kind::kObject && (given.is_object() || !node.type.or_null)) {
    Json result = Json::object();
    for (const Node& child : node.children)
      if ((child.use & kSettable) != 0)
        result[child.name] = Completed(child, given.value(child.name, Json()));
    return result;
  }
  if (!given.is_null() || node.type.or_null) return given;
  switch (node.type.kind) {
    case Kind::kList:
      return Json::array();
    case Kind::kString:
      return "";
    case Kind::kBoolean:
      return false;
    case Kind::kInteger:
      return 0;
    default:
      return (*node.type.names)[0];
  }
}

Json MergedLists(const Node& list, const Json& from, const Json& to) {
  const std::string key = list.Key()->name;
  const Node& node = list.children.front();
  const auto changed = [&](const Json& present, const Json& entry) {
    return (node.use & kWhole) != 0 ? Completed(node, entry) : Merged(present, entry);
  };
  const Index wanted(to, key);
  const Index present(from, key);
  Json merged = Json::array();
  for (const Json& entry : from) {
    const Json* other = wanted.Find(entry.at(key));
    merged.push_back(other != nullptr ? changed(entry, *other) : entry);
  }
  for (const Json& entry : to)
    if (present.Find(entry.at(key)) == nullptr) merged.push_back(changed(Json::object(), entry));
  return merged;
}

void Append(std::vector<Difference>& to, std::vector<Difference> more) {
  to.insert(to.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

std::vector<Difference> DifferencesOfLists(const std::string& path, const std::string& key,
                                           const Json& from, const Json& to) {
  std::vector<Difference> differences;
  const auto path_of = [&](const Json& value) {
    return EntryPath(path, value.is_string() ? value.get<std::string>() : value.dump());
  };
  const Index in_from(from, key);
  const Index in_to(to, key);
  for (const Json& entry : from) {
    const Json* other = in_to.Find(entry.at(key));
    Append(differences,
           Differences(path_of(entry.at(key)), entry, other != nullptr ? *other : Json()));
  }
  for (const Json& entry : to)
    if (in_from.Find(entry.at(key)) == nullptr)
      differences.push_back({path_of(entry.at(key)), nullptr, entry});
  return differences;
}

std::vector<Difference> DifferencesOfObjects(const std::string& path, const Json& from,
                                             const Json& to) {
  std::vector<Difference> differences;
  for (const auto& [name, value] : from.items()) {
    const std::string below = MemberPath(path, name);
    const auto other = to.find(name);
    const Node* list = KeyedList(name);
    if (other == to.end())
      differences.push_back({below, value, nullptr});
    else if (list != nullptr && value.is_array() && other->is_array())
      Append(differences, DifferencesOfLists(below, list->Key()->name, value, *other));
    else
      Append(differences, Differences(below, value, *other));
  }
  for (const auto& [name, value] : to.items())
    if (!from.contains(name)) differences.push_back({MemberPath(path, name), nullptr, value});
  return differences;
}

}  // namespace

Json Settable(const Json& document) { return Settable(Root(), document); }

Json Merged(const Json& from, const Json& to) {
  if (!from.is_object() || !to.is_object()) return to;
  Json merged = from;
  for (const auto& [name, value] : to.items()) {
    const Node* list = KeyedList(name);
    if (!merged.contains(name))
      merged[name] = value;
    else if (list != nullptr && value.is_array() && merged[name].is_array())
      merged[name] = MergedLists(*list, merged[name], value);
    else
      merged[name] = Merged(merged[name], value);
  }
  return merged;
}

std::vector<Difference> Differences(const std::string& path, const Json& from, const Json& to) {
  if (from.is_object() && to.is_object()) return DifferencesOfObjects(path, from, to);
  if (from == to) return {};
  return {{path, from, to}};
}

Json ToJson(const std::vector<Difference>& differences) {
  Json list = Json::array();
  for (const Difference& it : differences)
    list.push_back({{"path", it.path}, {"from", it.from}, {"to", it.to}});
  return list;
}

Index::Index(const Json& list, const std::string& key) {
  for (const Json& entry : list) entries.emplace(entry.at(key), &entry);
}

const Json* Index::Find(const Json& value) const {
  const auto found = entries.find(value);
  return found != entries.end() ? found->second : nullptr;
}

}  // namespace state_document
