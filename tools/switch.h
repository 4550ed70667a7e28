// The switch modes, as several commands read and set them.
#pragma once

#include <cstdint>

#include "NetworkgRPC.h"

namespace tool {

NetworkgRPC::SwitchMode ReadSwitchModeInEffect();

/// Selects a switch mode by the id that every getter reports. The library's
/// setter alone counts the modes from 1.
bool SelectSwitchMode(std::int32_t id);

}  // namespace tool
