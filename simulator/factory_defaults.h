// The settings that a device is delivered with.
#pragma once

#include "simulator/model.h"

namespace simulator {

/// Interfaces lan0 (Dante primary), lan1 (control), lan2 (Dante secondary) and
/// lan3 (no role), all with dynamic addressing: a lease on lan1 and lan3, a
/// link-local address on the two Dante ports. No channel is subscribed. From
/// `number` 2 on, names, MAC and IP addresses differ from those of every other
/// number.
Device FactoryDefaults(int tx_channels, int rx_channels, int number = 1);

/// The interface of that name; for another name, a wired interface without an id.
Interface FactoryDefaultInterface(const std::string& name);

/// The id of an interface that has not been given one.
inline constexpr std::int32_t kNoInterface = -1;

/// The channel with this id, whose names are the id in two digits.
Channel FactoryDefaultChannel(std::int32_t id);

/// The network settings of a device with these interfaces and switch modes after
/// a factory reset.
Network FactoryDefaultNetwork(const Network& network);

}  // namespace simulator
