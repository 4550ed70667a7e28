// The Dante module's settings as several commands read them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "DantegRPC.h"
#include "tools/json.h"

namespace tool {

std::string ReadDeviceName();
/// Unsigned, as the daemon has it.
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
