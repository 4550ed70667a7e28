// A device's state as one JSON document: what `networkgrpc export` prints, `diff`
// and `import` read, and what the simulator starts from and saves.
//
// One table says which members there are: path, type, range, and whether a real
// device can be given them. The rest of this library follows the table:
//
//   document.h  reads a document and reports what is wrong with file and line
//   compare.h   selects the settable members, merges and compares documents
//   names.h     names that stand for numbers
//
// tools/schema/state.schema.json, for other programs, is made from the table by
// tests/state_document/schema_test.cc.
//
// The form of a document is checked here, alike for every program. What a device
// makes of the values is up to the device: to its daemons, or to the simulator.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "state_document/json.h"
#include "state_document/names.h"

namespace state_document {

enum class Kind {
  kObject,
  kList,
  kString,
  kBoolean,
  kInteger,
  kName,         // one of Type::names
  kNameOrNumber  // the same, or a number: daemons of another version may have more
};

struct Type {
  Kind kind = Kind::kObject;
  std::int64_t least = 0;  // of a number
  std::uint64_t most = 0;
  const Names* names = nullptr;
  bool or_null = false;
};

/// How a member is used. A member without kSettable describes a simulated device
/// only: `import` and `diff` ignore it.
enum Use : unsigned {
  kSimulated = 0,
  kSettable = 1,
  kRequired = 2,
  kUnique = 4,                 // no two entries of a list have the same value
  kKey = kRequired | kUnique,  // tells the entries of a list apart
  kWhole = 8                   // is one setting: what is missing in it is empty or 0
};

/// One row of the table.
struct Member {
  const char* path;  // such as "network.interfaces[].name"
  Type type;
  unsigned use = kSimulated;
  const char* note = "";  // for readers of the schema
};

const std::vector<Member>& Table();

/// The same as a tree. Objects and lists that need no row of their own follow
/// from the paths.
struct Node {
  std::string name;  // in an object; "[]" for the entries of a list
  Type type;
  unsigned use = kSimulated;  // kSettable when anything below is
  std::string note;
  std::vector<Node> children;  // in the order in which they are written

  /// Null if there is none of that name.
  const Node* Find(const std::string& child) const;
  /// The member that tells the entries of this list apart; null if there is none.
  const Node* Key() const;
};

/// The document as a whole.
const Node& Root();

/// The path of a member of the object at `path`; the document's own path is empty.
std::string MemberPath(const std::string& path, const std::string& member);

/// The path of an entry of the list at `path`, by its position or its key.
std::string EntryPath(const std::string& path, const std::string& entry);

/// The name of a number; the number itself if it has none.
Json NameOf(const Names& names, std::int64_t number);

/// The other way, for a value that a document may have.
std::int32_t NumberOf(const Names& names, const Json& value);

}  // namespace state_document
