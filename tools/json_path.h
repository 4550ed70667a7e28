// Values inside a result, by the paths that diff and watch print.
#pragma once

#include <string>
#include <vector>

#include "tools/json.h"

namespace tool {

/// The values at `path`, such as "network.interfaces[lan0].stored.ip". An entry of a list
/// is named by its key (name, id or receive channel), or by its position from 0 if the
/// entries have none; "[]" stands for every entry. Empty if there is none.
std::vector<Json> ValuesAt(const Json& json, const std::string& path);

/// Whether one of the paths begins with the other, step by step: what stands at one then
/// contains what stands at the other.
bool AreNested(const std::string& path, const std::string& other);

/// The name of an entry of a list in a path.
std::string EntryName(const Json& entry, std::size_t position);

}  // namespace tool
