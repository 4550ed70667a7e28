#include "simulator/state_path.h"

#include <algorithm>
#include <stdexcept>

#include "state_document/table.h"

namespace simulator {
namespace {

using state_document::Kind;
using state_document::Node;

// A member of a document while a path is followed.
class Place {
 public:
  Place(Json& document, const std::string& wanted) : path(wanted), value(&document) {}

  void GoToMember(const std::string& name) {
    const Node* const member = node->Find(name);
    if (member == nullptr || name == "[]") Fail("unknown member '" + name + "'");
    if (value->is_null()) *value = Json::object();
    value = &(*value)[name];
    node = member;
  }

  void GoToEntry(const std::string& key) {
    const Node* const by = node->Key();
    if (by == nullptr) Fail("'[" + key + "]' is not after a list whose entries have a key");
    std::string known;
    for (Json& entry : *value) {
      const Json& own = entry.at(by->name);
      const std::string name = own.is_string() ? own.get<std::string>() : own.dump();
      known += (known.empty() ? "" : ", ") + name;
      if (name != key) continue;
      value = &entry;
      node = &node->children.front();
      return;
    }
    Fail("no entry '" + key + "'; there are " + (known.empty() ? "none" : known));
  }

  void Assign(const std::string& text) {
    const Kind kind = node->type.kind;
    *value = Json::parse(text, nullptr, false);
    const bool is_text = kind == Kind::kString || kind == Kind::kName ||
                         (kind == Kind::kNameOrNumber && !value->is_number_integer());
    // "100" is the name of a speed, not a number.
    const bool is_name = node->type.names != nullptr &&
                         std::find(node->type.names->begin(), node->type.names->end(), text) !=
                             node->type.names->end();
    if (is_text || is_name) *value = text;
    if (value->is_discarded()) Fail("'" + text + "' must be JSON");
  }

  [[noreturn]] void Fail(const std::string& reason) const {
    throw std::runtime_error("cannot set " + path + ": " + reason);
  }

 private:
  const std::string& path;
  Json* value;
  const Node* node = &state_document::Root();
};

}  // namespace

void Change(Json& document, const StateChange& change) {
  const std::string& path = change.path;
  Place place(document, path);
  std::size_t at = 0;
  while (at < path.size() || at == 0) {
    if (path[at] == '[') {
      const std::size_t end = std::min(path.find(']', at), path.size());
      place.GoToEntry(path.substr(at + 1, end - at - 1));
      at = end + 1;
      if (at < path.size() && path[at] == '.') ++at;
    } else {
      const std::size_t end = std::min(path.find_first_of(".[", at), path.size());
      place.GoToMember(path.substr(at, end - at));
      at = end < path.size() && path[end] == '.' ? end + 1 : end;
      if (at == 0) break;
    }
  }
  if (path.compare(0, 6, "faults") == 0 || path == "schema")
    place.Fail("not a setting; use fault and clear for faults");
  place.Assign(change.value);
}

}  // namespace simulator
