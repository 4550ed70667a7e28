// JSON whose members keep the order in which they were written: the order is
// part of what the tool promises.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace tool {

using Json = nlohmann::ordered_json;

/// A name, or the number that stands for one that has none.
inline std::string NameText(const Json& name) {
  return name.is_string() ? name.get<std::string>() : name.dump();
}

}  // namespace tool
