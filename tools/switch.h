// The switch modes, as several commands read and set them.
#pragma once

#include <cstdint>

#include "ostrevan/networkmanager.pb.h"

namespace tool {

ostrevan::networkmanager::SwitchMode ReadSwitchModeInEffect();
ostrevan::networkmanager::SwitchMode ReadStoredSwitchMode();

/// Selects a switch mode by the id that every getter reports. The library's setter alone
/// counts the modes from 1.
void SelectSwitchMode(std::int32_t id);

}  // namespace tool
