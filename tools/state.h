// The device's settable state as one JSON document: made of the device, checked
// when it comes from a file, compared, applied.
#pragma once

#include <string>
#include <vector>

#include "tools/daemon.h"
#include "tools/json.h"

namespace tool {

/// The document of the device as it is.
Json ReadState();

/// A document from a file, "-" being standard input; throws when it is not one,
/// with the path of what is wrong.
Json ReadStateFile(const std::string& file);

/// The members of a document that a device can be given: what describes a
/// simulated device is left out.
Json Settable(const Json& document);

/// One value that two documents do not share. Null is a value that one lacks.
struct Difference {
  std::string path;  // "network.interfaces[lan0].ip"
  Json from;
  Json to;
};

/// What differs between two values of the same form, below `path`.
std::vector<Difference> Differences(const std::string& path, const Json& from, const Json& to);

Json ToJson(const std::vector<Difference>& differences);
std::string ShowDifferences(const Json& differences);

/// `from` with what `to` has instead: members that `to` lacks stay.
Json Merged(const Json& from, const Json& to);

}  // namespace tool
