// What the Dante API daemon accepts, and what it does when it accepts.
//
// A function that changes something returns whether it was carried out; a
// refusal changes nothing. Everything takes effect at once.
#pragma once

#include "simulator/model.h"

namespace simulator {

/// Refuses a rate that the module does not list.
bool SetSampleRate(Dante& dante, std::uint32_t rate);

/// Refuses a latency below the minimum.
bool SetLatency(Dante& dante, std::uint32_t latency);

/// Refuses to turn AES67 on where the module cannot do it.
bool SetAes67(Dante& dante, bool enabled);

/// Labels one channel of `channels`, the transmit or the receive channels.
/// Refuses an unknown channel and an empty label.
bool SetChannelName(std::vector<Channel>& channels, std::int32_t id, const std::string& name);

/// True when the module has this receive channel.
bool HasRxChannel(const Dante& dante, std::int32_t id);

/// Subscribes a receive channel; a link without names and without a stream
/// removes its subscription. Refuses an unknown channel, names of which one is
/// missing, and a stream without an address or of an unknown encoding.
bool SetLink(Dante& dante, std::int32_t rx_channel, const Link& link);

}  // namespace simulator
