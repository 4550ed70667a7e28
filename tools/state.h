// A device's settable state as one JSON document: see state_document/table.h.
#pragma once

#include <functional>
#include <string>

#include "state_document/compare.h"
#include "tools/command.h"
#include "tools/json.h"

namespace tool {

using state_document::Difference;
using state_document::Differences;
using state_document::Merged;
using state_document::ToJson;

/// The state of the device, as a document, and its two parts.
Json ReadState();
Json ReadNetworkState();
Json ReadDanteState();

/// The settable members of a document; the file "-" is standard input. Throws
/// a Failure if it cannot be read or is wrong.
Json ReadStateFile(const std::string& file);

/// What is read, also saved in a file unless that is "". A file that cannot be written is
/// named before the daemons are asked.
Json SavedTo(const std::string& file, const std::function<Json()>& read, const ToText& text);

/// One line per difference: "PATH: FROM -> TO".
std::string ShowDifferences(const Json& differences);

}  // namespace tool
