#pragma once

#include <string>

namespace terminal {

/// The strings, with the separator between them.
template <class Strings>
std::string Joined(const Strings& strings, const char* separator = ", ") {
  std::string text;
  const char* before = "";
  for (const auto& it : strings) {
    text.append(before).append(it);
    before = separator;
  }
  return text;
}

}  // namespace terminal
