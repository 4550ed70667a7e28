// JSON whose members keep the order in which they were written: the order is
// part of what the tool promises.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "terminal/printable.h"

namespace tool {

using Json = nlohmann::ordered_json;

/// A string as a terminal can show it in one line; any other value as JSON.
inline std::string Text(const Json& value) {
  return value.is_string() ? terminal::Printable(value.get<std::string>()) : value.dump();
}

}  // namespace tool
