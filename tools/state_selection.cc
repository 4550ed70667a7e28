#include "tools/state_selection.h"

#include <algorithm>

#include "state_document/compare.h"
#include "state_document/table.h"
#include "tools/failure.h"
#include "tools/json_path.h"

namespace tool {
namespace {

using state_document::EntryPath;
using state_document::MemberPath;

// The lists whose entries have a key; others are one value.
const char* KeyOf(const std::string& list) {
  if (list == "network.interfaces") return "name";
  if (list == "dante.tx_channels" || list == "dante.rx_channels") return "id";
  return list == "dante.routing" ? "rx_channel" : nullptr;
}

std::string KeyText(const Json& key) {
  return key.is_string() ? key.get<std::string>() : key.dump();
}

bool IsAnyNested(const std::vector<std::string>& paths, const std::string& path) {
  return std::any_of(paths.begin(), paths.end(),
                     [&](const std::string& it) { return AreNested(it, path); });
}

// Null if nothing is left. Members are kept that the paths contain, or that contain one.
Json Select(const Json& value, const std::string& path, const std::vector<std::string>& paths) {
  if (value.is_object()) {
    Json kept = Json::object();
    for (const auto& [name, member] : value.items()) {
      const Json part = Select(member, MemberPath(path, name), paths);
      if (!part.is_null() || (member.is_null() && IsAnyNested(paths, MemberPath(path, name))))
        kept[name] = part;
    }
    return kept.empty() ? Json() : kept;
  }
  const char* key = KeyOf(path);
  if (key == nullptr) return IsAnyNested(paths, path) ? value : Json();
  Json kept = Json::array();
  for (const Json& entry : value) {
    const std::string below = EntryPath(path, KeyText(entry[key]));
    if (!IsAnyNested(paths, below)) continue;
    Json part = path == "dante.routing" ? entry : Select(entry, below, paths);
    if (part.is_null()) continue;
    part[key] = entry[key];
    kept.push_back(part);
  }
  return kept.empty() ? Json() : kept;
}

}  // namespace

Json Selected(const Json& document, const std::vector<std::string>& paths) {
  for (const std::string& path : paths)
    if (ValuesAt(document, path).empty() || Select(document, "", {path}).is_null())
      throw Failure(ExitStatus::kNotFound, "the document has no setting at '" + path + "'");
  return Select(document, "", paths);
}

std::vector<std::string> RemoveMissing(Json& document, const Json& current) {
  std::vector<std::string> removed;
  for (const char* part : {"network", "dante"}) {
    if (!document.contains(part)) continue;
    for (auto& [name, list] : document[part].items()) {
      const std::string path = MemberPath(part, name);
      const char* key = KeyOf(path);
      if (key == nullptr) continue;
      const state_document::Index present(current[part][name], key);
      Json kept = Json::array();
      for (const Json& entry : list) {
        if (present.Find(entry[key]) != nullptr)
          kept.push_back(entry);
        else
          removed.push_back(EntryPath(path, KeyText(entry[key])));
      }
      list = kept;
    }
  }
  return removed;
}

}  // namespace tool
