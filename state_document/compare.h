// What two state documents have in common and what not. Lists whose entries have
// a key (see table.h) are compared entry by entry, all other lists as one value.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "state_document/json.h"

namespace state_document {

/// The members that a real device can be given.
Json Settable(const Json& document);

/// `from` with the values of `to`; what `to` lacks stays. Both are settable.
Json Merged(const Json& from, const Json& to);

/// One value that differs. Null: that side lacks it.
struct Difference {
  std::string path;  // such as "network.interfaces[lan0].ip"
  Json from;
  Json to;
};

/// What differs between two values at `path`, members in the order of `from`. A
/// keyed list is known by its name, wherever it is.
std::vector<Difference> Differences(const std::string& path, const Json& from, const Json& to);

/// [{"path": ..., "from": ..., "to": ...}, ...]
Json ToJson(const std::vector<Difference>& differences);

/// Finds the entries of a list by their key. The list must stay as it is.
class Index {
 public:
  Index(const Json& list, const std::string& key);

  /// The first entry with this key; null if there is none.
  const Json* Find(const Json& value) const;

 private:
  std::map<Json, const Json*> entries;
};

}  // namespace state_document
