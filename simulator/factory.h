// The device as it comes out of the box.
#pragma once

#include "simulator/model.h"

namespace simulator {

/// Interfaces lan0 (Dante primary), lan1 (control), lan2 (Dante secondary) and
/// lan3 (no role), all with dynamic addressing: a lease on lan1 and lan3, a
/// link-local address on the two Dante ports. No channel is subscribed.
Device FactoryDevice(int tx_channels, int rx_channels);

/// Another one of the same make: as FactoryDevice for 1; from 2 on with names, MAC
/// and IP addresses of its own.
Device FactoryDevice(int tx_channels, int rx_channels, int number);

/// The factory's interface of that name, or a wired one without an id.
Interface FactoryInterface(const std::string& name);

/// The id of an interface that has not been given one.
inline constexpr std::int32_t kNoInterface = -1;

/// The factory's channel of that number.
Channel FactoryChannel(std::int32_t id);

/// What a factory reset makes of a device with these interfaces and switch modes.
Network FactoryReset(const Network& network);

}  // namespace simulator
