// Selects a switch mode by the id that every getter gives.
#pragma once

#include <cstdint>

#include "NetworkgRPC.h"

namespace tool {

/// The library's setter alone counts the modes from 1. Wraps as it does, so that
/// every id arrives.
inline bool SelectSwitchMode(std::int32_t id) {
  return NetworkgRPC::SetSwitchMode(static_cast<std::int32_t>(static_cast<std::uint32_t>(id) + 1U));
}

}  // namespace tool
