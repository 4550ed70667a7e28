#pragma once

#include <cstdlib>
#include <string>

namespace tool {

/// The value of an environment variable, empty if it is not set.
inline std::string Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace tool
