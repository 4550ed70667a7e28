// Parts of a state document.
#pragma once

#include <string>
#include <vector>

#include "tools/json.h"

namespace tool {

/// The settings of `document` at these paths, in the form of tools/json_path.h. A
/// subscription is one setting. Throws kNotFound for a path without a setting.
Json Selected(const Json& document, const std::vector<std::string>& paths);

/// Removes from the lists of `document` the entries that the device, in state `current`,
/// does not have; returns their paths.
std::vector<std::string> RemoveMissing(Json& document, const Json& current);

}  // namespace tool
