// Interfaces, switch modes and channels are found by their id.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace simulator {

/// The entry of `list` with this id; null if there is none.
template <class List>
auto FindById(List& list, std::int32_t id) -> decltype(&*std::begin(list)) {
  const auto found = std::find_if(std::begin(list), std::end(list),
                                  [id](const auto& entry) { return entry.id == id; });
  return found != std::end(list) ? &*found : nullptr;
}

}  // namespace simulator
