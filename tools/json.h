// JSON, as in state documents.
#pragma once

#include <string>
#include <vector>

#include "state_document/json.h"
#include "terminal/joined.h"
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

/// The values of a list, as Text.
inline std::string Joined(const Json& values) {
  std::vector<std::string> texts;
  for (const Json& it : values) texts.push_back(Text(it));
  return terminal::Joined(texts);
}

}  // namespace tool
