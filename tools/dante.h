// The settings of the Dante module, as several commands read them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "DantegRPC.h"

namespace tool {

std::string ReadDeviceName();
/// Unsigned, as on the wire.
std::uint32_t ReadSampleRate();
std::vector<std::uint32_t> ReadSampleRates();
/// In the daemon's unit.
std::uint32_t ReadLatency();
bool ReadAes67();
bool ReadTransmitDisabled();
bool ReadPtpSlaveOnly();

std::vector<DantegRPC::Channel> ReadTxChannels();
std::vector<DantegRPC::Channel> ReadRxChannels();
std::vector<DantegRPC::ChannelLink> ReadRouting();

}  // namespace tool
