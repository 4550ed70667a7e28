// What watch and wait observe: the settings, and what is in effect.
#pragma once

#include <string>

#include "tools/json.h"

namespace tool {

/// {"network": as in a state document, "live": what is in effect}
Json ObserveNetwork();
/// {"dante": as in a state document, "live": what is in effect}
Json ObserveDante();

/// A value that is waited for, at a path of what is observed.
struct Target {
  std::string path;  // empty: none
  std::string value;
};

/// Of "FIELD=VALUE", the value of an option. Throws kUsage.
Target TargetOf(const std::string& option, const std::string& text);
bool Holds(const Target& target, const Json& observed);

/// Throws kUsage for a path at which nothing can ever be.
void CheckPath(const std::string& option, const std::string& path);

}  // namespace tool
