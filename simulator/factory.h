// The device as it comes out of the box.
#pragma once

#include "simulator/model.h"

namespace simulator {

/// Interfaces lan0 (Dante primary), lan1 (control), lan2 (Dante secondary) and
/// lan3 (no role), all with dynamic addressing: a lease on lan1 and lan3, a
/// link-local address on the two Dante ports. No channel is subscribed.
Device FactoryDevice(int tx_channels, int rx_channels);

}  // namespace simulator
