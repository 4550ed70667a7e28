// The settings of the Dante module, as several commands read and set them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ostrevan/grpcdapi.pb.h"
#include "tools/json.h"

namespace tool {

std::string ReadDeviceName();
std::uint32_t ReadSampleRate();
std::vector<std::uint32_t> ReadSampleRates();
/// In the daemon's unit.
std::uint32_t ReadLatency();
bool ReadAes67();
bool ReadTransmitDisabled();
bool ReadPtpSlaveOnly();
/// {"clock", "value1", "slave_only", "config": {"value1", "value2"}}. The daemon defines
/// the values; they and the clock are null if it does not report them.
Json ReadPtp();
/// Whether that clock follows or leads; false if it is not known.
bool IsSynchronised(const Json& clock);

void SetDeviceName(const std::string& name);
void SetSampleRate(std::uint32_t rate);
void SetLatency(std::uint32_t latency);
void SetAes67(bool on);
void SetTransmitDisabled(bool disabled);
void SetPtpSlaveOnly(bool on);

ostrevan::grpcdapi::Channels ReadTxChannels();
ostrevan::grpcdapi::Channels ReadRxChannels();
/// [{"id", "name"}, ...]
Json ToJson(const ostrevan::grpcdapi::Channels& channels);
void RenameTxChannel(std::int32_t id, const std::string& name);
void RenameRxChannel(std::int32_t id, const std::string& name);

/// One subscription per receive channel, with the id of that channel.
std::vector<ostrevan::grpcdapi::LinkInfo> ReadRouting(
    const ostrevan::grpcdapi::Channels& receivers);
void SetSubscription(const ostrevan::grpcdapi::LinkInfo& link);

}  // namespace tool
