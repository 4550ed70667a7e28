// Subscriptions as a grid of receive channels and sources.
#pragma once

#include <string>

#include "tools/json.h"

namespace tool {

/// Of a result of `routing list`: one row per receive channel, one column per source, and
/// what the columns are. A grid that is wider than 80 columns has one character per source,
/// with its number from top to bottom; what is still wider is printed in parts.
std::string ShowGrid(const Json& result);

}  // namespace tool
