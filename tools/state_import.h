// networkgrpc import, and what changes several settings in the same way.
#pragma once

#include <functional>
#include <string>

#include "tools/tool.h"

namespace tool {

void AddImport(Tool& tool);

/// A change of several settings at once.
struct ChangeSet {
  Json document;               // the settings, as a state document
  std::function<Json()> read;  // the present state of at least these
  std::string subject;         // what the device has to match: "the document"
};

/// Shows the differences, asks, makes them, reads the settings back; returns what has
/// become of each, and throws the Failure that ended it with that.
Json Import(Tool& tool, const ChangeSet& changes);

/// The text for such a result.
std::string ShowImport(const Json& result, const std::string& subject);

}  // namespace tool
