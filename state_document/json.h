// JSON whose members keep the order in which they were written: documents and the
// tool's output are read by people and compared line by line.
#pragma once

#include <nlohmann/json.hpp>

namespace state_document {

using Json = nlohmann::ordered_json;

}  // namespace state_document
