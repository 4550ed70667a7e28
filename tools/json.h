// JSON whose members keep the order in which they were written: the order is
// part of what the tool promises.
#pragma once

#include <nlohmann/json.hpp>

namespace tool {

using Json = nlohmann::ordered_json;

}  // namespace tool
