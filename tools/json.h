// JSON, as in state documents.
#pragma once

#include <string>

#include "state_document/json.h"
#include "terminal/printable.h"

namespace tool {

using state_document::Json;

/// A string as a terminal can show it in one line; any other value as JSON.
inline std::string Text(const Json& value) {
  return value.is_string() ? terminal::Printable(value.get<std::string>()) : value.dump();
}

/// The same, of what a daemon may not report.
inline std::string TextOrUnknown(const Json& value) {
  return value.is_null() ? "unknown" : Text(value);
}

}  // namespace tool
