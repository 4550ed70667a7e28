// A JSON document, comments allowed, that knows on which line each value stands.
#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "simulator/bad_document.h"
#include "simulator/json.h"

namespace simulator {

class Document {
 public:
  /// `name` stands for the text in messages, usually a file name. Throws
  /// BadDocument, also for a member that an object has twice.
  Document(const std::string& text, std::string name);

  const Json& Root() const { return root; }

  /// Throws BadDocument for the value at `path`, such as "network.ntp[0]"; for
  /// one that the document lacks, the line is that of what it would stand in.
  [[noreturn]] void Refuse(const std::string& path, const std::string& reason) const;

 private:
  std::string name;
  Json root;
  std::map<std::string, std::size_t> lines;  // by path
};

/// The path of one member of the object at `path`.
std::string MemberPath(const std::string& path, const std::string& member);

/// The path of one entry of the list at `path`.
std::string EntryPath(const std::string& path, std::size_t index);

}  // namespace simulator
