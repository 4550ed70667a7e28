// JSON whose members keep the order in which they were written: a file that the
// simulator saves is read by people and compared line by line.
#pragma once

#include <nlohmann/json.hpp>

namespace simulator {

using Json = nlohmann::ordered_json;

}  // namespace simulator
